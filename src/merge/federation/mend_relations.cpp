#include "merge/federation/mend_relations.h"

#include "merge/federation/prune.h"
#include "merge/federation/relations/bounded_relations.h"
#include "merge/federation/relations/property_sets.h"
#include "merge/federation/relations/unique_members.h"

namespace corvel {

bool MendRelations(FederatedModel& model, Ticker& ticker, MendedRelations& mended) {
  const Survivors survivors(model);
  if (survivors.IsEmpty()) return true;
  BoundsOfRelations bounds(model.Release());
  RelationEdits edits(model, mended);
  return KeepWithinBounds(model, survivors, bounds, edits, mended, ticker) &&
         JoinPropertySets(model, survivors, edits, mended, ticker) &&
         DeleteOrphans(model, bounds, edits, ticker) && DropRepeatedMembers(model, ticker);
}

bool LeaveOutBelongings(FederatedModel& model, const MendedRelations& mended, Ticker& ticker,
                        std::size_t& leftOut) {
  std::vector<IFC::IfcEntity*> gone = mended.deleted;
  model.ForEachThatGaveWay(
      [&](IFC::IfcEntity& entity, const IFC::IfcEntity& /*survivor*/) { gone.push_back(&entity); });
  return PruneLeftBehind(model, gone, ticker, leftOut);
}

}  // namespace corvel
