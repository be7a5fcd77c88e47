// One site, one building and one storey in the place of those of several models.
#pragma once

#include <cstddef>
#include <vector>

#include "core/reporting.h"
#include "core/text.h"
#include "core/ticker.h"
#include "merge/federation/choices.h"
#include "merge/federation/federated_model.h"
#include "merge/federation/tree/spatial_structure.h"

namespace corvel {

struct JoinedTrees {
  std::size_t joined = 0;  // objects that gave way
  std::size_t parts = 0;   // objects with another shape, which became parts of the survivor
  std::size_t folded = 0;  // placements that had stood on those of objects that gave way
  // A line for each time that several would have matched: "IfcBuildingStorey 'Level 1' (#12 of
  // a.ifc), ...".
  std::vector<WideString> ambiguous;
};

// What the step is told beside the model. All of it is borrowed; `showError` is not null.
struct TreeTask {
  const FederationChoices& choices;
  const GuidsAsRead& guids;
  ErrorReporter showError;
};

// Finds what is one (tree_matching.h), and lets the later objects give way to the earliest.
// Relations still name both: mending them is another step's work. One with a shape of its own gives
// way only to an equal shape at the same place, and becomes a part of the survivor otherwise.
// Nothing moves: in releases where a placement lives with its product, what stood on that of an
// object that gave way stands in its place on what that stood on. False: the user cancelled, or it
// has been reported: mistakes in the map of the user, or no numbers left.
bool JoinTrees(FederatedModel& model, const TreeTask& task, Ticker& ticker, JoinedTrees& counts);

// Whether the map can be read, before the models are. False: mistakes have been reported.
bool TreeMapIsGood(const WideString& path, ErrorReporter showError);

// Writes what that would do to the file that the choices name, and changes nothing; where they say
// nothing of what to join by, the model is taken for one building. False: the user cancelled, or it
// has been reported.
bool ProposeTree(FederatedModel& model, const TreeTask& task, Ticker& ticker);

}  // namespace corvel
