// A GUID of its own for every object.
#pragma once

#include <cstddef>
#include <vector>

#include "core/ticker.h"
#include "merge/federation/federated_model.h"

namespace corvel {

// The objects of one input among themselves: each but the first (by number) of those that share a
// GUID gets another one. `records` are its own; `input` is the position
// of the model. Before the fold, which would give them GUIDs by chance. Gives the number of objects
// that got one.
std::size_t RenewGuidsWithin(IFC::MainContainer& container, SortedObjects& records,
                             std::size_t input);

struct RenewedGuid {
  IFC::IfcEntity* object = nullptr;
  std::size_t input = 0;
};

// The same among all inputs behind the fold: who comes first keeps his. New GUIDs are made from the
// old one and the position of the input, so that the same merge gives the same ones again. False:
// the user cancelled.
bool RenewGuids(FederatedModel& model, Ticker& ticker, std::vector<RenewedGuid>& renewed);

}  // namespace corvel
