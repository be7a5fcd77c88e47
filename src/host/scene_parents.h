// Who is whose parent in a scene.
#pragma once

#include <cstdint>
#include <vector>

#include "host/model_scene.h"

namespace corvel::host {

// One member of one relation, by the numbers of their records.
struct ParentLink {
  std::uint32_t relation = 0;
  std::uint32_t child = 0;
  std::uint32_t parent = 0;
};

// Sets the parents of all objects, which stand by ascending number, as model_scene.h tells. Links
// may come in any order and name whatever they like; of relations with the same number the one that
// comes first counts.
void SettleParents(const std::vector<ParentLink>& links, std::vector<SceneObject>& objects);

// The same parents without circles, for whoever walks down from those without one: the member of a
// circle with the smallest number has none here.
std::vector<std::uint32_t> ParentsWithoutCircles(const std::vector<SceneObject>& objects);

}  // namespace corvel::host
