#include "merge/federation/lost_hosts.h"

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

#include "core/entity_cast.h"
#include "core/root_interfaces.h"
#include "merge/federation/relations/bounded_relations.h"
#include "merge/federation/tree/fold_placements.h"
#include "schema/attributes.h"
#include "schema/interfaces/product.h"

namespace corvel {

namespace {

using Bound = BoundsOfRelations::Bound;

class HostSearch {
 public:
  explicit HostSearch(FederatedModel& model) : model_(model), bounds_(model.Release()) {}

  bool Run(Ticker& ticker, std::size_t& deleted) {
    const auto isDemanded = [this](const ClassFacts* facts) {
      const std::vector<Bound> bounds = bounds_.BoundsOf(facts);
      return std::any_of(bounds.begin(), bounds.end(),
                         [](const Bound& bound) { return bound.facts->least != 0; });
    };
    for (std::size_t input = 0; input < model_.InputCount(); ++input) {
      const bool goesOn = model_.ForEachRootThatCameWith(
          input, ticker, isDemanded, [this](IFC::IfcEntity& entity) { LookAt(entity); });
      if (!goesOn) return false;
    }
    MendedRelations counts;
    RelationEdits edits(model_, counts);
    if (!DeleteOrphans(model_, bounds_, edits, ticker, Hostless())) return false;
    deleted = edits.Deleted().size();
    return !PlacementsNeedProducts(model_) || Fold(edits.Deleted(), ticker);
  }

 private:
  // An object, and the index of what it needs.
  using Need = std::pair<IFC::IfcEntity*, std::size_t>;

  std::vector<IFC::IfcEntity*> Hostless() const {
    std::vector<IFC::IfcEntity*> hostless;
    std::set<IFC::IfcEntity*> seen;
    for (const Need& need : lost_) {
      if (!found_.contains(need) && seen.insert(need.first).second) hostless.push_back(need.first);
    }
    return hostless;
  }

  void LookAt(const IFC::IfcEntity& relation) {
    for (const Bound& bound : bounds_.Of(relation)) {
      if (bound.facts->least == 0) continue;
      const bool isWhole = model_.Contains(relation) && HasItsEnds(relation);
      ConstAttribute(relation, *bound.attribute).ForEach<IFC::IfcEntity*>([&](IFC::IfcEntity* end) {
        IFC::IfcEntity* const object = model_.InModel(end);
        if (object == nullptr || !bounds_.Binds(bound, *object)) return;
        // The rest goes when nothing leads to it.
        if (EntityCast<IFC::VirtualIfcRoot>(object) == nullptr) return;
        if (isWhole) {
          found_.insert({object, bound.index});
        } else {
          lost_.emplace_back(object, bound.index);
        }
      });
    }
  }

  // What stands on the placements of products that went.
  bool Fold(const std::vector<IFC::IfcEntity*>& gone, Ticker& ticker) {
    std::vector<IFC::IfcEntity*> left;
    for (IFC::IfcEntity* const entity : gone) {
      const auto* const product = EntityCast<IFC::VirtualIfcProduct>(entity);
      if (product == nullptr) continue;
      IFC::IfcEntity* const placement = model_.InModel(product->getObjectPlacement());
      if (placement != nullptr) left.push_back(placement);
    }
    std::size_t folded = 0;
    return FoldPlacements(model_, left, ticker, folded);
  }

  // Nothing that it cannot be without has been left out.
  bool HasItsEnds(const IFC::IfcEntity& relation) const {
    bool hasAll = true;
    for (const ConstAttribute attribute : AttributesOf(relation)) {
      if (attribute.Facts().depth != 0 || attribute.Facts().IsOptional()) continue;
      attribute.ForEach<IFC::IfcEntity*>([&](IFC::IfcEntity* end) {
        const bool isObject = end != nullptr && !end->inlineValue;
        hasAll = hasAll && (!isObject || model_.InModel(end) != nullptr);
      });
    }
    return hasAll;
  }

  FederatedModel& model_;
  BoundsOfRelations bounds_;
  std::set<Need> found_;  // asked for members alone
  std::vector<Need> lost_;
};

}  // namespace

bool DeleteWhatLostItsHost(FederatedModel& model, Ticker& ticker, std::size_t& deleted) {
  return HostSearch(model).Run(ticker, deleted);
}

}  // namespace corvel
