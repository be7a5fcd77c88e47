// One map is enough for models that stand in the same coordinates.
#pragma once

#include <cstddef>
#include <vector>

#include "core/ticker.h"
#include "merge/federation/federated_model.h"

namespace corvel {

// Takes conversions and property sets out of the model, and what nothing needs without them:
// reference systems that no other conversion leads to or comes from, with their well-known texts;
// relations of the sets, and properties that no other set has. `dropped`: how many objects went in
// all. False: the user cancelled.
bool DropConversions(FederatedModel& model, const std::vector<IFC::IfcEntity*>& leftovers,
                     Ticker& ticker, std::size_t& dropped);

}  // namespace corvel
