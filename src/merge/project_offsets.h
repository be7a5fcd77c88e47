// Models stand in the merged file where the host shows them.
#pragma once

#include <array>

#include "merge/document.h"
#include "merge/host_scene.h"

namespace corvel {

// Hangs the products of `document` below one new placement that carries what the host moves
// `project` by, and the centre of the scene; coordinates are not rewritten. Nothing happens when
// the model is not moved.
//
// The outermost local placement of each product becomes relative to the new one. It is left alone,
// with all that hangs on it, when it is placed on a grid or along a line, or in 2D. A product
// without a placement gets one at the origin. Placements that go in a circle have no outermost: the
// one that the way from a product comes to a second time takes its part, which opens the circle.
//
// All markers are 0 afterwards but those of the new entities: kNewRootPlacement on the new
// placement, their numbers on the others. Trouble with the length unit is reported. One walk over
// the model, however long its chains of placements are.
//
// By how much it was moved, in its length unit, stands in `applied`, if that is not null; what is
// not moved leaves it alone.
//
// False when there are not enough numbers left for the new entities, which has been reported: the
// model is then half moved, and of no use.
bool ApplyProjectOffsets(IfcDocument& document, HostObject project, HostScene& scene,
                         std::array<double, 3>* applied = nullptr);

// Whether ApplyProjectOffsets would do anything.
bool IsMoved(HostObject project, HostScene& scene);

// By how much the host shows the project away from its own coordinates, in millimetres.
std::array<double, 3> OffsetOf(HostObject project, HostScene& scene);

}  // namespace corvel
