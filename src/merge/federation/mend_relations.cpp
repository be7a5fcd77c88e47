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

// Whatever belonged to these may have no other owner.
std::vector<IFC::IfcEntity*> Gone(const FederatedModel& model, const RelationEdits& edits) {
  std::vector<IFC::IfcEntity*> gone = edits.Deleted();
  model.ForEachThatGaveWay(
      [&](IFC::IfcEntity& entity, const IFC::IfcEntity& /*survivor*/) { gone.push_back(&entity); });
  return gone;
}

}  // namespace

bool MendRelations(FederatedModel& model, Ticker& ticker, MendedRelations& mended) {
  if (!model.HasSurvivors()) return true;
  const Survivors survivors = SurvivorsOf(model);
  BoundsOfRelations bounds(model.Release());
  RelationEdits edits(model, mended);
  return KeepWithinBounds(model, survivors, bounds, edits, mended, ticker) &&
         JoinPropertySets(model, survivors, edits, mended, ticker) &&
         DeleteOrphans(model, bounds, edits, ticker) && DropRepeatedMembers(model, ticker) &&
         PruneLeftBehind(model, Gone(model, edits), ticker, mended.leftBehind);
}

}  // namespace corvel
