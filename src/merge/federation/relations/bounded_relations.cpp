#include "merge/federation/relations/bounded_relations.h"

#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "merge/federation/attribute_values.h"
#include "merge/federation/relations/related_list.h"
#include "merge/federation/same_value.h"
#include "schema/attributes.h"

namespace corvel {

namespace {

using Bound = BoundsOfRelations::Bound;

class BoundsKeeper {
 public:
  BoundsKeeper(FederatedModel& model, const Survivors& survivors, BoundsOfRelations& bounds,
               RelationEdits& edits, MendedRelations& mended)
      : model_(model), survivors_(survivors), bounds_(bounds), edits_(edits), mended_(mended) {}

  bool Run(Ticker& ticker) {
    const auto isBounded = [this](const ClassFacts* facts) {
      const std::vector<Bound> bounds = bounds_.BoundsOf(facts);
      return std::any_of(bounds.begin(), bounds.end(),
                         [](const Bound& bound) { return bound.facts->most != 0; });
    };
    for (std::size_t input = 0; input < model_.InputCount(); ++input) {
      const bool goesOn = model_.ForEachRootOf(input, ticker, isBounded,
                                               [this](IFC::IfcEntity& entity) { Keep(entity); });
      if (!goesOn) return false;
    }
    return true;
  }

 private:
  // The first relation in which an object stands, and as which of those that it stands for.
  struct Place {
    IFC::IfcEntity* relation = nullptr;
    const IFC::IfcEntity* as = nullptr;
  };
  using Key = std::pair<const IFC::IfcEntity*, std::size_t>;  // the object, and the bound
  struct HashOfKey {
    std::size_t operator()(const Key& key) const {
      return std::hash<const void*>()(key.first) * 31 + key.second;
    }
  };

  // Members leave before the relation as a whole goes to another one, which takes who is left.
  void Keep(IFC::IfcEntity& relation) {
    const auto bounds = bounds_.Of(relation);
    for (const Bound& bound : bounds) {
      if (bound.attribute->depth == 1 && !KeepMembers(relation, bound)) return;
    }
    for (const Bound& bound : bounds) {
      if (bound.attribute->depth == 0 && !KeepSingle(relation, bound)) return;
    }
  }

  // The earlier place of `as`, or null: then this is the first, or as good as that.
  const Place* EarlierPlace(IFC::IfcEntity& relation, const Bound& bound, IFC::IfcEntity* as) {
    if (bound.facts->most == 0 || !survivors_.MayStandFor(as)) return nullptr;
    IFC::IfcEntity* const object = model_.InModel(as);
    if (object == nullptr || !survivors_.Contain(object)) return nullptr;
    if (!bounds_.Binds(bound, *object)) return nullptr;
    Place& first = places_[{object, bound.index}];
    if (first.relation == nullptr) first = {&relation, as};
    // What one input says twice is its own affair.
    return first.as == as ? nullptr : &first;
  }

  bool KeepMembers(IFC::IfcEntity& relation, const Bound& bound) {
    const auto* const members = Attribute(relation, *bound.attribute).As<EntityList>();
    if (members == nullptr) return true;
    RelationEdits::Members leaving;
    for (IFC::IfcEntity* const member : *members) {
      const Place* const place = EarlierPlace(relation, bound, member);
      if (place == nullptr) continue;
      leaving.insert(member);
      ListDifference(*place->relation, relation, *member, bound);
    }
    return leaving.empty() || edits_.Leave(relation, *bound.attribute, leaving);
  }

  bool KeepSingle(IFC::IfcEntity& relation, const Bound& bound) {
    auto* const* const single = Attribute(relation, *bound.attribute).As<IFC::IfcEntity*>();
    if (single == nullptr) return true;
    const Place* const place = EarlierPlace(relation, bound, *single);
    if (place == nullptr) return true;
    const AttributeFacts* const list = ListOfRelated(relation);
    if (list == nullptr) return edits_.Leave(relation, *bound.attribute, {});
    Unite(*place->relation, relation, *list);
    return false;
  }

  void Unite(IFC::IfcEntity& first, IFC::IfcEntity& later, const AttributeFacts& list) {
    const auto* const coming = Attribute(later, list).As<EntityList>();
    RelationEdits::Members& members = MembersOf(first, list.name);
    for (std::size_t i = 0; coming != nullptr && i < coming->size(); ++i) {
      IFC::IfcEntity* const member = (*coming)[i];
      const IFC::IfcEntity* const object = model_.InModel(member);
      if (object == nullptr || !members.insert(object).second) continue;
      AppendReference(first, list.name, *member, model_.Container().Pool());
    }
    ++mended_.united;
    edits_.Delete(later);
  }

  // As they stand in the model; they are asked for when a relation gets its first members.
  RelationEdits::Members& MembersOf(const IFC::IfcEntity& relation, std::string_view list) {
    const auto [found, isNew] = members_.try_emplace(&relation);
    const EntityList* const members = isNew ? ReferencesOf(relation, list) : nullptr;
    for (std::size_t i = 0; members != nullptr && i < members->size(); ++i) {
      found->second.insert(model_.InModel((*members)[i]));
    }
    return found->second;
  }

  void ListDifference(const IFC::IfcEntity& first, const IFC::IfcEntity& later,
                      IFC::IfcEntity& member, const Bound& bound) {
    if (bound.facts->relation != "IfcRelAssociatesMaterial") return;
    const IFC::IfcEntity* const here = model_.InModel(ReferenceOf(first, "RelatingMaterial"));
    const IFC::IfcEntity* const there = model_.InModel(ReferenceOf(later, "RelatingMaterial"));
    if (SameByValue(here, there, 0.0)) return;
    mended_.differences.push_back(u"Material of " + DisplayName(*model_.InModel(&member)));
  }

  FederatedModel& model_;
  const Survivors& survivors_;
  BoundsOfRelations& bounds_;
  RelationEdits& edits_;
  MendedRelations& mended_;
  std::unordered_map<Key, Place, HashOfKey> places_;
  std::unordered_map<const IFC::IfcEntity*, RelationEdits::Members> members_;
};

}  // namespace

bool KeepWithinBounds(FederatedModel& model, const Survivors& survivors, BoundsOfRelations& bounds,
                      RelationEdits& edits, MendedRelations& mended, Ticker& ticker) {
  return BoundsKeeper(model, survivors, bounds, edits, mended).Run(ticker);
}

}  // namespace corvel
