// What says the same is written once.
#pragma once

#include <cstddef>

#include "core/ticker.h"
#include "merge/federation/federated_model.h"
#include "step/numbers/number_form.h"

namespace corvel {

// Of equal objects without identity of their own the first that is met stays, and the others give
// way to it (sharing_plan.h tells the classes). Equal are two that are written alike, with numbers
// as `numbers` says, when what they refer to counts as the same where it is equal, and about which
// the relations that only point at objects say the same. Never become one: what would be twice in a
// set then, members of different owners, and what refers to itself over others. A second call finds
// nothing; for its sake told reals become the whole numbers that they are written as
// (whole_reals.h). `shared`: the objects that gave way. False: the user cancelled; the markers are
// void.
//
// Linear in the records. Takes 10 bytes for each object that could be shared, and 12 for each
// relation that points at one.
bool ShareEqual(FederatedModel& model, NumberForm numbers, Ticker& ticker, std::size_t& shared);

}  // namespace corvel
