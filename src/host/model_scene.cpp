#include "host/model_scene.h"

#include <algorithm>
#include <exception>
#include <span>
#include <utility>

#include "host/hearing.h"
#include "host/model_opening.h"
#include "host/run_checks.h"
#include "host/scene_reader.h"
#include "schema/registry.h"

namespace corvel::host {

namespace {

void ReadOpened(Scanner& scanner, const WideString& path, SceneTexts texts, bool tolerant,
                ModelScene& scene) {
  if (tolerant) {
    if (auto told = NoModelFile(path, tolerant)) {
      scene.problems.push_back(std::move(*told));
      return;
    }
  }
  const auto header = ReadHeader(scanner, path, scene.problems);
  if (header == nullptr) return;
  const auto schema =
      ChooseSchema(header->schemaIdentifier, path, tolerant, scene.remarks, scene.problems);
  if (!schema) return;
  try {
    const FactoryTable& factories = FactoriesOf(*schema);
    scene.schema = schema;
    const auto others = tolerant ? BuiltFactories() : std::span<const FactoryTable* const>();
    if (!ReadSceneRecords(scanner, factories, texts, scene, others)) {
      scene.problems.emplace_back(u"The file ends inside of a string.");
      scene.isUnreadable = true;
    }
  } catch (const std::exception& error) {
    // Half a scene would have a merge drop the other half.
    ModelScene nothing;
    nothing.remarks = std::move(scene.remarks);
    nothing.problems = std::move(scene.problems);
    nothing.problems.push_back(Widen(error.what()));
    nothing.isUnreadable = true;
    scene = std::move(nothing);
  }
}

}  // namespace

WideView ModelScene::GuidOf(std::size_t index) const {
  if (labels.empty()) return {};
  const Label& label = labels[index];
  return WideView(texts).substr(label.start, label.guidLength);
}

WideView ModelScene::NameOf(std::size_t index) const {
  if (labels.empty()) return {};
  const Label& label = labels[index];
  return WideView(texts).substr(label.start + label.guidLength, label.nameLength);
}

const SceneObject* ModelScene::Find(std::uint32_t number) const {
  const auto found = std::lower_bound(
      objects.begin(), objects.end(), number,
      [](const SceneObject& object, std::uint32_t wanted) { return object.number < wanted; });
  return found == objects.end() || found->number != number ? nullptr : &*found;
}

ModelScene ReadScene(const WideString& path, SceneTexts texts, bool tolerant) {
  ModelScene scene;
  if (auto trouble = TroubleWithInput(path)) {
    scene.problems.push_back(std::move(*trouble));
    scene.isUnreadable = true;
    return scene;
  }
  std::vector<WideString> heard;
  {
    const Hearing problems(heard);
    const auto scanner = OpenModel(path, tolerant);
    if (scanner->IsOpen()) {
      ReadOpened(*scanner, path, texts, tolerant, scene);
    } else {
      scene.problems.emplace_back(u"Could not open the file");
      scene.isUnreadable = true;
    }
  }
  // Whatever a stream has to say, it could not deliver all that the file holds.
  if (!heard.empty()) scene.isUnreadable = true;
  scene.problems.insert(scene.problems.begin(), heard.begin(), heard.end());
  return scene;
}

}  // namespace corvel::host
