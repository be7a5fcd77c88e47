#include "host/tree_text.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "host/display_text.h"
#include "host/scene_parents.h"

namespace corvel::host {

namespace {

// Who comes below whom, in the order of showing.
class Branches {
 public:
  explicit Branches(const std::vector<SceneObject>& objects)
      : parents_(ParentsWithoutCircles(objects)),
        firstChild_(objects.size(), kNoObject),
        next_(objects.size(), kNoObject) {
    // Whoever comes last stands first in the list of his parent.
    for (auto i = static_cast<std::uint32_t>(objects.size()); i-- > 0;) {
      std::uint32_t& first = parents_[i] == kNoObject ? firstRoot_ : firstChild_[parents_[i]];
      next_[i] = first;
      first = i;
    }
  }

  std::uint32_t First() const { return firstRoot_; }

  // The object shown behind this one; `depth` is this one's and becomes that one's.
  std::uint32_t After(std::uint32_t at, std::size_t& depth) const {
    if (firstChild_[at] != kNoObject) {
      ++depth;
      return firstChild_[at];
    }
    while (next_[at] == kNoObject && parents_[at] != kNoObject) {
      at = parents_[at];
      --depth;
    }
    return next_[at];
  }

 private:
  std::vector<std::uint32_t> parents_;
  std::vector<std::uint32_t> firstChild_;
  std::vector<std::uint32_t> next_;
  std::uint32_t firstRoot_ = kNoObject;
};

WideString Indent(std::size_t depth) {
  constexpr std::size_t kStep = 2;
  WideString indent(std::min<std::size_t>(depth, kDeepestIndent) * kStep, u' ');
  if (depth > kDeepestIndent) indent += u"[" + Widen(std::to_string(depth)) + u"] ";
  return indent;
}

WideString LineOf(const ModelScene& scene, std::uint32_t index, const TreeLook& look) {
  const SceneObject& object = scene.objects[index];
  const WideView guid = scene.GuidOf(index);
  const WideView name = scene.NameOf(index);
  WideString line = u"#" + ToWide(object.number) + u" " + Widen(scene.ClassOf(object)) + u" ";
  line += guid.empty() ? WideString(u"-") : Printable(guid);
  if (!name.empty()) line += u" " + Printable(name);
  if (look.properties == nullptr) return line + u"\n";
  for (const auto& [property, value] : look.properties->Of(object.number)) {
    line += u"  | " + Printable(FromUtf8(property)) + u" = " + Printable(FromUtf8(value));
  }
  return line + u"\n";
}

}  // namespace

bool WriteTreeText(const ModelScene& scene, const TextSink& sink, const TreeLook& look) {
  const Branches branches(scene.objects);
  std::size_t depth = 0;
  for (std::uint32_t at = branches.First(); at != kNoObject; at = branches.After(at, depth)) {
    if (!look.Shows(at)) continue;
    if (!sink(Indent(look.isFlat ? 0 : depth) + LineOf(scene, at, look))) return false;
  }
  return true;
}

bool WriteEntriesText(WideView path, const std::vector<FileStream::ArchiveEntry>& entries,
                      const TextSink& sink) {
  for (const FileStream::ArchiveEntry& entry : entries) {
    const WideString line = Printable(path) + u"|" + Printable(entry.name) + u"  " +
                            Widen(std::to_string(entry.bytes)) + u" bytes\n";
    if (!sink(line)) return false;
  }
  return true;
}

}  // namespace corvel::host
