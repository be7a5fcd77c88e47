// A model stays on the map where it is though its coordinates are moved.
#pragma once

#include "merge/document.h"
#include "merge/federation/place/map_reference.h"

namespace corvel {

// `shift` is what all of `document` was moved by, in metres. Changes what the operations of
// `reference` begin with, in the model and in the reference itself. False when there is no number
// left for a new object, which has been reported.
bool MoveConversions(IfcDocument& document, MapReference& reference, const Triple& shift);

}  // namespace corvel
