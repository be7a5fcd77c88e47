// What hangs on objects that others gave way to.
#pragma once

#include <cstddef>
#include <vector>

#include "core/text.h"
#include "core/ticker.h"
#include "merge/federation/federated_model.h"

namespace corvel {

struct MendedRelations {
  std::size_t left = 0;          // members that left a relation since an earlier one has them
  std::size_t united = 0;        // relations whose members went over to an earlier one
  std::size_t propertySets = 0;  // joined with one of the same name
  // Where the first won: "Pset_WallCommon.IsExternal of 'Wall' (#12)".
  std::vector<WideString> differences;
  std::vector<IFC::IfcEntity*> deleted;  // all that went
};

// To be called behind any step after which some objects stand for others, whoever chose them; does
// nothing where none do. What hung on one that gave way hangs on its survivor by then, and may be
// more than that can have:
// - a member that would be a part of two wholes leaves the relation of the later input, likewise
//   with types, hosts and materials; a relation without members goes;
// - of two relations where the schema allows one, the first takes the members of the other;
// - where it demands one, the object goes with its last relation;
// - property sets of one name become one, property by property, and the first wins. One that others
//   use is copied first. What IFC2X3 says about maps in property sets is left alone;
// - nothing stands twice in a SET or a LIST OF UNIQUE.
// What a source breaks by itself stays as it is. False: the user cancelled, or (reported) there is
// no number left for a copy.
bool MendRelations(FederatedModel& model, Ticker& ticker, MendedRelations& mended);

// Behind that, and not needed before Prune: leaves out shapes and other records that belonged to
// what gave way, or went in `mended`, and to nothing else. False: the user cancelled.
bool LeaveOutBelongings(FederatedModel& model, const MendedRelations& mended, Ticker& ticker,
                        std::size_t& leftOut);

}  // namespace corvel
