// One property set of a name for each object.
#pragma once

#include "core/ticker.h"
#include "merge/federation/federated_model.h"
#include "merge/federation/mend_relations.h"
#include "merge/federation/relations/bounded_relations.h"
#include "merge/federation/relations/relation_edits.h"

namespace corvel {

// Joins sets of properties or quantities that hang on one of `survivors` under one name, the first
// with those that came with others. False: the user cancelled, or (reported) there is no number
// left for a copy.
bool JoinPropertySets(FederatedModel& model, const Survivors& survivors, RelationEdits& edits,
                      MendedRelations& mended, Ticker& ticker);

}  // namespace corvel
