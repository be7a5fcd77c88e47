// Relations that two models share.
#pragma once

#include <cstddef>

#include "core/ticker.h"
#include "merge/federation/federated_model.h"

namespace corvel {

// A relation gives way to one of an earlier input that differs in GUID, owner history and related
// members alone, and the members that it lacks go over to it. References to objects with a GUID are
// equal if they lead to one object of the model, all else counts by value. False: the user
// cancelled.
bool UniteRelations(FederatedModel& model, Ticker& ticker, std::size_t& united);

}  // namespace corvel
