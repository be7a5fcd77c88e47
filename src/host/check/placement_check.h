// Placements that stand on each other in a circle.
#pragma once

#include <vector>

#include "core/entity.h"
#include "host/check/findings.h"

namespace corvel::host {

// One finding a circle, at its smallest number. Placements are given in the order of their numbers.
// Takes visit stamps.
void CheckPlacements(const std::vector<IFC::IfcEntity*>& placements, Findings& findings);

}  // namespace corvel::host
