#include "merge/federation/renew_guids.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "core/entity_cast.h"
#include "core/guid.h"
#include "core/guid_table.h"
#include "core/root_interfaces.h"

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

std::size_t RenewGuidsWithin(IFC::MainContainer& container,
                             const std::vector<IFC::IfcEntity*>& roots, std::size_t input) {
  MetGuids met(container);
  return static_cast<std::size_t>(
      std::count_if(roots.begin(), roots.end(), [&](IFC::IfcEntity* const root) {
        return root->marker != IFC::kDeleted && met.Meet(*root, input);
      }));
}

bool RenewGuids(FederatedModel& model, Ticker& ticker, std::vector<RenewedGuid>& renewed) {
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
