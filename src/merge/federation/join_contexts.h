// One context of a kind for all models.
#pragma once

#include <cstddef>
#include <unordered_set>
#include <vector>

#include "core/text.h"
#include "core/ticker.h"
#include "merge/federation/federated_model.h"

namespace corvel {

struct JoinedContexts {
  std::size_t joined = 0;   // contexts and sub-contexts that gave way
  std::size_t entered = 0;  // contexts of later inputs that the project did not know
  // Contexts of later inputs that an earlier one is equal to but for the coordinate system: "Model
  // (#12 of b.ifc)".
  std::vector<WideString> apart;
};

// A context of a later input gives way to an earlier input's of equal identifier, type, dimension,
// coordinate system, map conversion and true north; a sub-context to one of the same parent,
// identifier, type, target scale and view. The finest precision stays, in metres. No two of one
// input become one. Contexts that match none are entered in the list of the project. False: the
// user cancelled.
//
// `onOneMap`: inputs that stand in the coordinates of the first one, itself included. What they, or
// those behind them, say about the map counts no more among them. The others are none of them.
bool JoinContexts(FederatedModel& model, const std::unordered_set<const IfcDocument*>& onOneMap,
                  Ticker& ticker, JoinedContexts& counts);

}  // namespace corvel
