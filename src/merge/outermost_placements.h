// Where a whole model can be moved: the placements that the placements of all products hang on.
#pragma once

#include "merge/document.h"
#include "schema/interfaces/geometry.h"

namespace corvel {

// What is done with them.
class PlacementAction {
 public:
  virtual ~PlacementAction() = default;
  // An outermost local placement, once. False: nothing can be done with it. For a member of a
  // circle true means that the circle is open now.
  virtual bool Place(IFC::VirtualLocalPlacement& outermost) = 0;
  // A blank placement that a product without one has just got. It is filed nowhere.
  virtual void PlaceNew(IFC::VirtualLocalPlacement& made) = 0;
};

// Gives `action` the outermost placements of the products of `document`. Those on a grid or along a
// line are none, nor is what hangs on such. Placements that go in a circle have no outermost: the
// one that the way from a product comes to a second time takes its part.
//
// `action` may file new objects, none of which is a product, and hang what it is given on one of
// them. Ends early when the model is out of numbers. All markers but those of new objects are 0.
// One walk over the model, however long its chains of placements are.
void ForEachOutermostPlacement(IfcDocument& document, PlacementAction& action);

}  // namespace corvel
