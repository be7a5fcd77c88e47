// What cannot be without an object that is not in the model.
#pragma once

#include <cstddef>

#include "core/ticker.h"
#include "merge/federation/federated_model.h"

namespace corvel {

// Deletes objects that the schema wants to have a relation of a kind (an opening one with what it
// is in, to IFC2X3 a port one with its element; see relations/inverse_bounds.h) and whose relation
// did not come into the model, or lost an end that it cannot be without. What has none in its own
// file stays. Other relations lose what was deleted, and go when they were left without; what they
// leave behind goes in turn. What stands on their placements stands where it stood, as
// FoldPlacements has it. `deleted` counts objects and relations. False: the user cancelled, or
// (reported) there are no numbers left.
bool DeleteWhatLostItsHost(FederatedModel& model, Ticker& ticker, std::size_t& deleted);

}  // namespace corvel
