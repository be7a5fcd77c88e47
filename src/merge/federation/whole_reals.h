// Reals whose text would be that of a whole number.
#pragma once

#include "core/ticker.h"
#include "merge/federation/federated_model.h"
#include "merge/federation/sharing_plan.h"

namespace corvel {

// A real that is no whole number may be written as one when 15 digits are all it gets: as 5.8E+03,
// which is 5800 and would be written as 5800. the next time. Such a real becomes the number that
// its text says, so that a second writing changes nothing. Linear in the records. False: the user
// cancelled.
bool MakeRealsAsWritten(FederatedModel& model, SharingPlans& plans, Ticker& ticker);

}  // namespace corvel
