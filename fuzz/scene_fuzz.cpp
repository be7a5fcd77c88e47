// Any bytes, in windows of any size: the reader of scenes ends, the borders of its windows do not
// show, and what it gives holds together. The first byte of the input is the size of the windows.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "host/scene_of_text.h"
#include "host/tree_text.h"

namespace {

using namespace corvel::host;

void Demand(bool holds) {
  if (!holds) std::abort();
}

void CheckObjects(const ModelScene& scene) {
  std::uint32_t last = 0;
  for (std::size_t i = 0; i < scene.objects.size(); ++i) {
    const SceneObject& object = scene.objects[i];
    Demand(object.number > last && object.classId < scene.classes.size());
    Demand(object.parent == kNoObject || object.parent < scene.objects.size());
    Demand(object.parent != i);
    last = object.number;
  }
}

std::string TextOf(const ModelScene& scene) {
  std::string text;
  std::size_t lines = 0;
  WriteTreeText(scene, [&](corvel::WideView line) {
    text += corvel::ToUtf8(line);
    return ++lines <= scene.objects.size();
  });
  Demand(lines == scene.objects.size());
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  const std::size_t windowSize = data[0] % 64 + 1u;
  const ModelScene whole = SceneOf(bytes, SceneTexts::kGuidsAndNames, size);
  const ModelScene pieces = SceneOf(bytes, SceneTexts::kGuidsAndNames, windowSize);
  CheckObjects(whole);
  Demand(Described(whole) == Described(pieces));
  Demand(TextOf(whole) == TextOf(pieces));
  Demand(Described(whole) == Described(SceneOf(bytes, SceneTexts::kNone, windowSize)));
  return 0;
}
