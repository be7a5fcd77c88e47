// The sites, buildings and storeys of a model, for people.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/text.h"
#include "merge/document.h"

namespace corvel::host {

struct SpatialFacts {
  std::uint32_t number = 0;  // of its record
  std::string className;     // "IfcBuildingStorey"
  std::string guid;
  WideString name;
  // Of a storey, in metres. What its Elevation says, and how high it stands above the origin of the
  // model (see merge/federation/tree/storey_heights.h).
  std::optional<double> elevationMetres;
  std::optional<double> heightMetres;
  bool operator==(const SpatialFacts&) const = default;
};

struct SpatialTree {
  std::vector<SpatialFacts> sites;      // in the order of their numbers
  std::vector<SpatialFacts> buildings;  // bridges, roads and the like among them
  std::vector<SpatialFacts> storeys;    // the lowest first; parts of other facilities are none
  bool operator==(const SpatialTree&) const = default;
};

// Of a model that has been read and not been folded into another. It stays as it is. `objects`:
// those of it that stand in the tree and those that say so (SpatialRoles), by number.
SpatialTree SpatialTreeOf(IfcDocument& document, const std::vector<IFC::IfcEntity*>& objects);

}  // namespace corvel::host
