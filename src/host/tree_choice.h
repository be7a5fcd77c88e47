// Which objects of a scene a tree shows, and what it tells of them.
#pragma once

#include <cstdint>
#include <vector>

#include "host/model_scene.h"
#include "host/tree_properties.h"

namespace corvel::host {

struct TreeChoice {
  std::uint32_t depth = 0;          // levels from the top; 0: all
  std::vector<WideString> classes;  // "IfcWall" in any case, exactly these; empty: all
  bool properties = false;
};

// A choice, applied to a scene.
struct TreeLook {
  std::vector<bool> shown;  // by object; empty: all
  // Lines stand side by side: their parents need not be there.
  bool isFlat = false;
  const ModelProperties* properties = nullptr;  // null: none are told

  bool Shows(std::size_t index) const { return shown.empty() || shown[index]; }
};

// Without properties. Objects whose parents go in a circle are at the level at which they are
// shown.
TreeLook LookAt(const ModelScene& scene, const TreeChoice& choice);
// Those classes that are chosen and that no object is of, each with the nearest there is:
// "IfcWal; the nearest there is IfcWall".
std::vector<WideString> MissingClasses(const ModelScene& scene, const TreeChoice& choice);

}  // namespace corvel::host
