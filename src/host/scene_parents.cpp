#include "host/scene_parents.h"

#include <algorithm>

namespace corvel::host {

namespace {

std::uint32_t IndexOf(const std::vector<SceneObject>& objects, std::uint32_t number) {
  const auto found = std::lower_bound(
      objects.begin(), objects.end(), number,
      [](const SceneObject& object, std::uint32_t wanted) { return object.number < wanted; });
  if (found == objects.end() || found->number != number) return kNoObject;
  return static_cast<std::uint32_t>(found - objects.begin());
}

std::uint32_t FirstProject(const std::vector<SceneObject>& objects) {
  const auto found = std::find_if(objects.begin(), objects.end(),
                                  [](const SceneObject& object) { return object.isProject; });
  return found == objects.end() ? kNoObject : static_cast<std::uint32_t>(found - objects.begin());
}

// `member` is of a circle, which loses one of its links here.
void BreakCircle(std::vector<std::uint32_t>& parents, std::uint32_t member) {
  std::uint32_t first = member;
  for (std::uint32_t at = parents[member]; at != member; at = parents[at]) {
    first = std::min(first, at);
  }
  parents[first] = kNoObject;
}

}  // namespace

void SettleParents(const std::vector<ParentLink>& links, std::vector<SceneObject>& objects) {
  constexpr std::uint32_t kNoRelation = 0xFFFFFFFFu;
  const std::uint32_t firstProject = FirstProject(objects);
  std::vector<std::uint32_t> relationOf(objects.size(), kNoRelation);
  for (const ParentLink& link : links) {
    const std::uint32_t child = IndexOf(objects, link.child);
    if (child == kNoObject || child == firstProject || link.relation >= relationOf[child]) continue;
    const std::uint32_t parent = IndexOf(objects, link.parent);
    if (parent == kNoObject || parent == child) continue;
    relationOf[child] = link.relation;
    objects[child].parent = parent;
  }
  for (std::uint32_t i = 0; i < objects.size(); ++i) {
    if (objects[i].parent == kNoObject && i != firstProject) objects[i].parent = firstProject;
  }
}

std::vector<std::uint32_t> ParentsWithoutCircles(const std::vector<SceneObject>& objects) {
  std::vector<std::uint32_t> parents;
  parents.reserve(objects.size());
  for (const SceneObject& object : objects) parents.push_back(object.parent);
  constexpr std::uint32_t kUnseen = kNoObject;
  std::vector<std::uint32_t> seenFrom(objects.size(), kUnseen);
  for (std::uint32_t start = 0; start < parents.size(); ++start) {
    std::uint32_t at = start;
    for (; at != kNoObject && seenFrom[at] == kUnseen; at = parents[at]) seenFrom[at] = start;
    if (at != kNoObject && seenFrom[at] == start) BreakCircle(parents, at);
  }
  return parents;
}

}  // namespace corvel::host
