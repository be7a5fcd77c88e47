#include "merge/federation/mend_relations.h"

#include "core/entity_cast.h"
#include "core/root_interfaces.h"
#include "merge/federation/prune.h"
#include "merge/federation/relations/bounded_relations.h"
#include "merge/federation/relations/property_sets.h"
#include "merge/federation/relations/unique_members.h"

namespace corvel {

namespace {

// Those that may stand in a relation or have one.
Survivors RootsThatSurvived(const FederatedModel& model) {
  Survivors survivors;
  model.ForEachThatGaveWay([&](const IFC::IfcEntity& /*gone*/, IFC::IfcEntity& survivor) {
    if (EntityCast<IFC::VirtualIfcRoot>(&survivor) != nullptr) survivors.insert(&survivor);
  });
  return survivors;
}

}  // namespace

bool MendRelations(FederatedModel& model, Ticker& ticker, MendedRelations& mended) {
  const Survivors survivors = RootsThatSurvived(model);
  if (survivors.empty()) return true;
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
