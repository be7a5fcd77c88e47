// What would become one, and why, for people to read and to change.
#pragma once

#include <functional>
#include <string>

#include "merge/federation/federated_model.h"
#include "merge/federation/tree/spatial_structure.h"

namespace corvel {

// Whether an object keeps its shape and becomes a part of its survivor.
using BecomesPart = std::function<bool(const SpatialObject& object)>;

// A text in UTF-8 with a line for each object behind the matching, in the order of the trees, as
// tree_map.h reads it: "join 2:GUID 1:GUID ; IfcSite 'Hill' to 'Hill': equal name". In front the
// names of the inputs, at the end the objects of which several would have matched.
std::string TreeList(const FederatedModel& model, SpatialStructure& structure,
                     const BecomesPart& becomesPart);

}  // namespace corvel
