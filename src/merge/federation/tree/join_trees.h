// One site, one building and one storey in the place of those of several models.
#pragma once

#include <cstddef>
#include <vector>

#include "core/text.h"
#include "core/ticker.h"
#include "merge/federation/choices.h"
#include "merge/federation/federated_model.h"
#include "merge/federation/tree/spatial_structure.h"
#include "merge/federation/tree/world_places.h"

namespace corvel {

struct JoinedTrees {
  std::size_t joined = 0;  // objects that gave way
  std::size_t parts = 0;   // objects with another shape, which became parts of the survivor
  std::size_t folded = 0;  // placements that had stood on those of objects that gave way
  // A line for each time that several would have matched: "IfcBuildingStorey 'Level 1' (#12 of
  // a.ifc), ...".
  std::vector<WideString> ambiguous;
};

// Finds what is one (tree_matching.h), and lets the later objects give way to the earliest.
// Relations still name both: mending them is another step's work. One with a shape of its own gives
// way only to an equal shape at the same place, and becomes a part of the survivor otherwise.
// Nothing moves: in releases where a placement lives with its product, what stood on that of an
// object that gave way stands in its place on what that stood on. False: the user cancelled, or
// there were no numbers left, which has been reported.
bool JoinTrees(FederatedModel& model, const FederationChoices& choices, Ticker& ticker,
               JoinedTrees& counts);

// The first half of that, which changes nothing.
bool FindOneTree(FederatedModel& model, const FederationChoices& choices, WorldPlaces& places,
                 Ticker& ticker, SpatialStructure& structure);

}  // namespace corvel
