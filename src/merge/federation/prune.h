// Only what somebody needs.
#pragma once

#include <cstddef>
#include <vector>

#include "core/ticker.h"
#include "merge/federation/federated_model.h"

namespace corvel {

// Leaves out what nothing with a GUID leads to: shapes of products that are not there, contexts and
// unit assignments that nobody knows, loose points. What only points at others (styles, layers,
// aspects, properties of materials, map conversions; see pointing_classes.h) stays as far as what
// it describes, and lists of that are shorter by what went. Records of unknown classes stay with
// all that they refer to. False: the user cancelled.
bool Prune(FederatedModel& model, Ticker& ticker, std::size_t& pruned);

// The same among what these objects, which are not in the model any more, led to: the shape of a
// product that gave way goes unless somebody else has it too, and loose points of others stay, with
// all that they refer to.
bool PruneLeftBehind(FederatedModel& model, const std::vector<IFC::IfcEntity*>& gone,
                     Ticker& ticker, std::size_t& pruned);

}  // namespace corvel
