#include "merge/outermost_placements.h"

#include <algorithm>
#include <unordered_set>
#include <vector>

#include "core/entity_cast.h"
#include "core/main_container.h"
#include "schema/interfaces/product.h"

namespace corvel {

namespace {

using IFC::IfcEntity;
using IFC::VirtualLocalPlacement;

// Each placement is visited once: the top of the chain above a visited one has had its turn. So no
// walk comes to what a top was hung on.
class ProductWalk {
 public:
  ProductWalk(IfcDocument& document, PlacementAction& action)
      : document_(document), action_(action), generation_(IFC::NextVisitGeneration()) {}

  // New objects are filed while the walk goes on, ahead of it for the most part.
  void Run() {
    const IFC::MainContainer& container = *document_.mainContainer;
    for (const auto& [number, entity] : container.entities) {
      if (container.HasRunOutOfNumbers()) return;
      if (auto* const product = EntityCast<IFC::VirtualIfcProduct>(entity)) Visit(*product);
    }
  }

 private:
  void Visit(IFC::VirtualIfcProduct& product);
  void VisitTopAbove(VirtualLocalPlacement& placement);
  void VisitCircle(VirtualLocalPlacement& firstRepeated);

  IfcDocument& document_;
  PlacementAction& action_;
  std::uint32_t generation_;
  std::vector<VirtualLocalPlacement*> way_;  // kept for its storage
  // Members of circles that could not be opened where they were entered. A product that enters
  // them elsewhere may do it.
  std::unordered_set<VirtualLocalPlacement*> closedCircles_;
};

void ProductWalk::Visit(IFC::VirtualIfcProduct& product) {
  if (IfcEntity* const own = product.getObjectPlacement()) {
    if (auto* const local = EntityCast<VirtualLocalPlacement>(own)) VisitTopAbove(*local);
    return;
  }
  // It would be given a placement of its own release, which can be put nowhere in this model.
  if (product.carries) return;
  VirtualLocalPlacement* const made = product.getRootPlacement(document_.mainContainer->Pool());
  if (made != nullptr && made->marker == IFC::kMadePlacement) action_.PlaceNew(*made);
}

void ProductWalk::VisitTopAbove(VirtualLocalPlacement& placement) {
  way_.clear();
  VirtualLocalPlacement* at = &placement;
  while (at->visitStamp != generation_) {
    at->visitStamp = generation_;
    way_.push_back(at);
    IfcEntity* const relativeTo = at->getPlacementRelTo();
    auto* const next = EntityCast<VirtualLocalPlacement>(relativeTo);
    if (next == nullptr) {
      const bool isOnAnotherKind = relativeTo != nullptr;  // a grid, a line
      if (!isOnAnotherKind) action_.Place(*at);
      return;
    }
    at = next;
  }
  // Met on this way, `at` closes a circle; met on an earlier one, it has had its turn,
  // and nothing is found.
  const auto circle = std::find(way_.begin(), way_.end(), at);
  closedCircles_.insert(circle, way_.end());
  if (closedCircles_.count(at) != 0) VisitCircle(*at);
}

void ProductWalk::VisitCircle(VirtualLocalPlacement& firstRepeated) {
  auto* next = EntityCast<VirtualLocalPlacement>(firstRepeated.getPlacementRelTo());
  if (!action_.Place(firstRepeated)) return;
  closedCircles_.erase(&firstRepeated);
  for (; next != &firstRepeated;
       next = EntityCast<VirtualLocalPlacement>(next->getPlacementRelTo())) {
    closedCircles_.erase(next);
  }
}

}  // namespace

void ForEachOutermostPlacement(IfcDocument& document, PlacementAction& action) {
  ProductWalk(document, action).Run();
}

}  // namespace corvel
