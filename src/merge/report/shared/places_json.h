// Where products stand, and the tree that they hang in, for programs.
#pragma once

#include <vector>

#include "merge/report/shared/json_text.h"
#include "merge/report/shared/report_places.h"

namespace corvel {

// Children by their position in the list, the root first.
void AddTree(const std::vector<SpatialNode>& tree, JsonText& json);
// Null for null.
void AddPlaces(const ModelPlaces* places, JsonText& json);

}  // namespace corvel
