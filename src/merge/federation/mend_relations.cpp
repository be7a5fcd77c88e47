#include "merge/federation/mend_relations.h"

#include "merge/federation/prune.h"
#include "merge/federation/relations/bounded_relations.h"
#include "merge/federation/relations/property_sets.h"
#include "merge/federation/relations/unique_members.h"

namespace corvel {

namespace {

Survivors SurvivorsOf(const FederatedModel& model) {
  Survivors survivors;
  model.ForEachThatGaveWay([&](const IFC::IfcEntity& /*gone*/, const IFC::IfcEntity& survivor) {
    survivors.insert(&survivor);
  });
  return survivors;
}

}  // namespace

bool MendRelations(FederatedModel& model, Ticker& ticker, MendedRelations& mended) {
  if (!model.HasSurvivors()) return true;
  const Survivors survivors = SurvivorsOf(model);
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
