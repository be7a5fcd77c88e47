// Objects that two models share.
#pragma once

#include <cstddef>

#include "core/ticker.h"
#include "merge/federation/federated_model.h"

namespace corvel {

struct JoinedObjects {
  std::size_t joined = 0;        // objects and property sets that gave way
  std::size_t applications = 0;  // likewise
};

// An object that is no relation gives way to one of an earlier input with its GUID, class and
// content. Content is every attribute but the owner history, and openings, projections, ports,
// parts and the type; an opening, a port or a part of an element is also in the same element. A
// reference to an object with a GUID is equal if that gave way to the other one, or is it; all else
// counts by value, but placements by their position in the world. Equal applications become one
// too. Placements of objects that gave way do likewise, so that what stands on them has the same
// place in all releases. False: the user cancelled.
bool JoinEqualObjects(FederatedModel& model, Ticker& ticker, JoinedObjects& counts);

}  // namespace corvel
