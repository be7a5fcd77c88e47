// A model as a whole at another place.
#pragma once

#include "merge/document.h"
#include "merge/federation/tree/transform.h"

namespace corvel {

// Stands everything in `document` at `place`, which is in its length unit: what the products hang
// on gets a new outermost placement; in IFC2X3, where a placement has to place a product, the new
// place is multiplied into what was outermost. A line of the world moves as well, from IFC4X2 on;
// what is on a grid moves with the grid. A product without a placement gets one.
//
// All markers are 0 afterwards but those of the new objects. False when there are not enough
// numbers left for these, which has been reported. Linear in the model.
bool PlaceModel(IfcDocument& document, const Transform& place);

// An IfcAxis2Placement3D with all that it says; null when the model is out of numbers.
IFC::IfcEntity* NewAxesAt(IfcDocument& document, const Transform& place);

}  // namespace corvel
