#include <unordered_map>
#include <vector>

#include "merge/federation/relations/bounded_relations.h"
#include "schema/attributes.h"

namespace corvel {

namespace {

using Bound = BoundsOfRelations::Bound;

class OrphanSearch {
 public:
  OrphanSearch(FederatedModel& model, BoundsOfRelations& bounds, RelationEdits& edits)
      : model_(model), bounds_(bounds), edits_(edits) {}

  bool Run(const std::vector<IFC::IfcEntity*>& known, Ticker& ticker) {
    if (known.empty() && !MayLeaveOrphans()) return true;
    if (!Gather(ticker)) return false;
    for (IFC::IfcEntity* const orphan : known) edits_.Delete(*orphan);
    // What is deleted on the way gets its turn behind the rest.
    for (std::size_t next = 0; next < edits_.Deleted().size();) {
      const IFC::IfcEntity& deleted = *edits_.Deleted()[next++];
      TakeFromRelations(deleted);
      DeleteOrphansOf(deleted);
    }
    return true;
  }

 private:
  bool MayLeaveOrphans() {
    for (const IFC::IfcEntity* const deleted : edits_.Deleted()) {
      for (const Bound& bound : bounds_.Of(*deleted)) {
        if (bound.facts->least != 0) return true;
      }
    }
    return false;
  }

  bool Gather(Ticker& ticker) {
    const auto isRelation = [](const ClassFacts* facts) {
      return IsOrIsBelow(facts, "IfcRelationship");
    };
    for (std::size_t input = 0; input < model_.InputCount(); ++input) {
      const bool goesOn =
          model_.ForEachRootOf(input, ticker, isRelation, [this](IFC::IfcEntity& entity) {
            for (const Attribute attribute : AttributesOf(entity)) {
              attribute.ForEach<IFC::IfcEntity*>([&](IFC::IfcEntity* referred) {
                if (const auto* const there = model_.InModel(referred)) {
                  relationsOf_[there].push_back(&entity);
                }
              });
            }
          });
      if (!goesOn) return false;
    }
    return true;
  }

  // The deleted object leaves the relations that it stands in; these go where it was the last.
  void TakeFromRelations(const IFC::IfcEntity& deleted) {
    const auto found = relationsOf_.find(&deleted);
    if (found == relationsOf_.end()) return;
    for (IFC::IfcEntity* const relation : found->second) {
      if (model_.Contains(*relation)) TakeFrom(*relation);
    }
  }

  void TakeFrom(IFC::IfcEntity& relation) {
    for (const Attribute attribute : AttributesOf(relation)) {
      RelationEdits::Members gone;
      attribute.ForEach<IFC::IfcEntity*>([&](IFC::IfcEntity* referred) {
        if (IsDeleted(referred)) gone.insert(referred);
      });
      if (!gone.empty() && !edits_.Leave(relation, attribute.Facts(), gone)) return;
    }
  }

  // A typed value in the record stands nowhere in the model, and is there all the same.
  bool IsDeleted(IFC::IfcEntity* referred) const {
    return referred != nullptr && !referred->inlineValue && model_.InModel(referred) == nullptr;
  }

  void DeleteOrphansOf(const IFC::IfcEntity& relation) {
    for (const Bound& bound : bounds_.Of(relation)) {
      if (bound.facts->least == 0) continue;
      ConstAttribute(relation, *bound.attribute).ForEach<IFC::IfcEntity*>([&](IFC::IfcEntity* end) {
        IFC::IfcEntity* const object = model_.InModel(end);
        if (object == nullptr || !bounds_.Binds(bound, *object)) return;
        if (!HasRelation(*object, *bound.facts)) edits_.Delete(*object);
      });
    }
  }

  bool HasRelation(const IFC::IfcEntity& object, const InverseBound& wanted) {
    const auto found = relationsOf_.find(&object);
    if (found == relationsOf_.end()) return false;
    for (IFC::IfcEntity* const relation : found->second) {
      if (!model_.Contains(*relation)) continue;
      for (const Bound& bound : bounds_.Of(*relation)) {
        if (bound.facts == &wanted && StandsIn(*relation, bound, object)) return true;
      }
    }
    return false;
  }

  bool StandsIn(const IFC::IfcEntity& relation, const Bound& bound, const IFC::IfcEntity& object) {
    bool found = false;
    ConstAttribute(relation, *bound.attribute).ForEach<IFC::IfcEntity*>([&](IFC::IfcEntity* end) {
      found = found || model_.InModel(end) == &object;
    });
    return found;
  }

  FederatedModel& model_;
  BoundsOfRelations& bounds_;
  RelationEdits& edits_;
  std::unordered_map<const IFC::IfcEntity*, std::vector<IFC::IfcEntity*>> relationsOf_;
};

}  // namespace

bool DeleteOrphans(FederatedModel& model, BoundsOfRelations& bounds, RelationEdits& edits,
                   Ticker& ticker, const std::vector<IFC::IfcEntity*>& known) {
  return OrphanSearch(model, bounds, edits).Run(known, ticker);
}

}  // namespace corvel
