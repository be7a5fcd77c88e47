#include "host/tree_choice.h"

#include <algorithm>
#include <optional>

#include "host/nearest_name.h"
#include "host/scene_parents.h"

namespace corvel::host {

namespace {

// From 1 at the top. Each object is looked at once: a chain upwards ends at one that is known.
std::vector<std::uint32_t> LevelsOf(const ModelScene& scene) {
  const std::vector<std::uint32_t> parents = ParentsWithoutCircles(scene.objects);
  std::vector<std::uint32_t> levels(parents.size(), 0);
  std::vector<std::uint32_t> chain;
  for (std::uint32_t i = 0; i < parents.size(); ++i) {
    for (std::uint32_t at = i; at != kNoObject && levels[at] == 0; at = parents[at]) {
      chain.push_back(at);
    }
    for (; !chain.empty(); chain.pop_back()) {
      const std::uint32_t parent = parents[chain.back()];
      levels[chain.back()] = parent == kNoObject ? 1 : levels[parent] + 1;
    }
  }
  return levels;
}

bool IsAmong(const std::vector<WideString>& names, const std::string& name) {
  const WideString sought = ToLowerAscii(Widen(name));
  return std::any_of(names.begin(), names.end(),
                     [&](const WideString& one) { return ToLowerAscii(one) == sought; });
}

}  // namespace

TreeLook LookAt(const ModelScene& scene, const TreeChoice& choice) {
  TreeLook look;
  look.isFlat = !choice.classes.empty();
  if (choice.depth == 0 && choice.classes.empty()) return look;
  std::vector<bool> wanted;
  for (const std::string& name : scene.classes) {
    wanted.push_back(choice.classes.empty() || IsAmong(choice.classes, name));
  }
  const std::vector<std::uint32_t> levels =
      choice.depth == 0 ? std::vector<std::uint32_t>() : LevelsOf(scene);
  for (std::size_t i = 0; i < scene.objects.size(); ++i) {
    const bool isNear = levels.empty() || levels[i] <= choice.depth;
    look.shown.push_back(isNear && wanted[scene.objects[i].classId]);
  }
  return look;
}

std::vector<WideString> MissingClasses(const ModelScene& scene, const TreeChoice& choice) {
  std::vector<WideString> missing;
  for (const WideString& name : choice.classes) {
    const bool isThere =
        std::any_of(scene.classes.begin(), scene.classes.end(),
                    [&](const std::string& known) { return IsAmong({name}, known); });
    if (isThere) continue;
    const std::optional<std::string> nearest = NearName(ToUtf8(name), scene.classes);
    missing.push_back(nearest ? name + u"; the nearest there is " + Widen(*nearest) : name);
  }
  return missing;
}

}  // namespace corvel::host
