// No more relations of a kind than an object may have.
#pragma once

#include <vector>

#include "core/ticker.h"
#include "merge/federation/federated_model.h"
#include "merge/federation/mend_relations.h"
#include "merge/federation/relations/inverse_bounds.h"
#include "merge/federation/relations/relation_edits.h"
#include "merge/federation/relations/survivors.h"

namespace corvel {

// Of relations that `survivors` have too many of by now, later ones lose the member, or give the
// members of theirs to the first. False: the user cancelled.
bool KeepWithinBounds(FederatedModel& model, const Survivors& survivors, BoundsOfRelations& bounds,
                      RelationEdits& edits, MendedRelations& mended, Ticker& ticker);

// Deletes what the schema wants to have a relation of a kind, and lost the last one of it in
// `edits`; then what refers to that and cannot be without it, and so on. `known` (in the model,
// each once) is treated as such an object. False: the user cancelled.
bool DeleteOrphans(FederatedModel& model, BoundsOfRelations& bounds, RelationEdits& edits,
                   Ticker& ticker, const std::vector<IFC::IfcEntity*>& known = {});

}  // namespace corvel
