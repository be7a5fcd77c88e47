#include "merge/federation/renew_guids.h"

#include <string>
#include <string_view>

#include "core/entity_cast.h"
#include "core/guid.h"
#include "core/guid_table.h"
#include "core/root_interfaces.h"
#include "merge/federation/shared_guids.h"

namespace corvel {

namespace {

// The objects that were met, by GUID. The texts live in the pools of the models.
class MetGuids {
 public:
  explicit MetGuids(IFC::MainContainer& container) : container_(container) {}

  // True when the object had to get a new GUID. Empty ones are nobody's.
  bool Meet(IFC::IfcEntity& entity, std::size_t input) {
    auto* const root = EntityCast<IFC::VirtualIfcRoot>(&entity);
    if (root == nullptr) return false;
    const std::string_view old = root->getGlobalId();
    if (old.empty() || met_.Enter(old, root)) return false;
    const char* const renewed = Unused(old, input);
    met_.Enter(renewed, root);
    root->setGlobalId(renewed);
    return true;
  }

 private:
  // The position of the input comes last, so that inputs never share a number.
  const char* Unused(std::string_view old, std::size_t input) {
    for (std::uint64_t turn = 0;; ++turn) {
      const std::string guid = DeriveGuid(old, (turn << 32) + input);
      if (met_.Find(guid) == nullptr) return container_.Pool().InternNarrow(guid);
    }
  }

  IFC::MainContainer& container_;
  GuidTable met_;
};

}  // namespace

std::size_t RenewGuidsWithin(IFC::MainContainer& container, SortedObjects& records,
                             std::size_t input) {
  const std::vector<IFC::IfcEntity*>& roots = records.Roots();
  const auto isKept = [](const IFC::IfcEntity& root) { return root.marker != IFC::kDeleted; };
  std::vector<IFC::IfcEntity*> repeated;
  for (const std::size_t place : PlacesOfRepeated(records.GuidHashes())) {
    if (isKept(*roots[place])) repeated.push_back(roots[place]);
  }
  if (HoldersOfSharedGuids(repeated).empty()) return 0;
  MetGuids met(container);
  std::size_t renewed = 0;
  for (std::size_t i = 0; i < roots.size(); ++i) {
    if (!isKept(*roots[i]) || !met.Meet(*roots[i], input)) continue;
    records.NoteNewGuid(i);
    ++renewed;
  }
  return renewed;
}

bool RenewGuids(FederatedModel& model, Ticker& ticker, std::vector<RenewedGuid>& renewed) {
  std::vector<IFC::IfcEntity*> holders = model.HoldersOfSharedGuids();
  std::erase_if(holders, [&](const IFC::IfcEntity* holder) { return !model.Contains(*holder); });
  if (HoldersOfSharedGuids(holders).empty()) return true;
  MetGuids met(model.Container());
  for (std::size_t input = 0; input < model.InputCount(); ++input) {
    const bool goesOn = model.ForEachRootOf(input, ticker, [&](IFC::IfcEntity& entity) {
      if (met.Meet(entity, input)) renewed.push_back({&entity, input});
    });
    if (!goesOn) return false;
  }
  return true;
}

}  // namespace corvel
