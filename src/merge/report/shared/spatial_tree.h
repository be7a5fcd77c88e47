// The tree of a result: the project, and what stands in it down to rooms.
#pragma once

#include <vector>

#include "merge/report/shared/model_places.h"
#include "merge/report/shared/report_places.h"

namespace corvel {

// From the project, as aggregations lead; what they don't lead to hangs at the end of the root. An
// object that others gave way to names the inputs of those too. Empty without a project.
std::vector<SpatialNode> CollectSpatialTree(const IfcDocument& merged,
                                            const std::vector<PlacedInput>& inputs);

}  // namespace corvel
