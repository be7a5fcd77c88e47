#include "merge/federation/relations/unique_members.h"

#include "schema/attributes.h"

namespace corvel {

namespace {

constexpr UniqueList kUniqueLists[] = {
    {"IfcComplexProperty", "HasProperties"},
    {"IfcConstraintAggregationRelationship", "RelatedConstraints"},
    {"IfcCost", "Quantities"},
    {"IfcCostValue", "CostModifiers"},
    {"IfcGrid", "UAxes"},
    {"IfcGrid", "VAxes"},
    {"IfcGrid", "WAxes"},
    {"IfcMaintenanceRecord", "Records"},
    {"IfcPath", "EdgeList"},
    {"IfcPolyLoop", "Polygon"},
    {"IfcPolygonalFaceSet", "Faces"},
    {"IfcProjectOrderRecord", "Records"},
    {"IfcTypeObject", "HasPropertySets"},
    {"IfcTypeProduct", "RepresentationMaps"},
    {"IfcVirtualGridIntersection", "IntersectingAxes"},
};

bool IsUniqueList(const ClassFacts& facts, const AttributeFacts& attribute) {
  for (const ClassFacts* at = &facts; at != nullptr; at = at->supertype) {
    for (const UniqueList& list : kUniqueLists) {
      if (list.className == at->name && list.attribute == attribute.name) return true;
    }
  }
  return false;
}

class RepeatedMembers {
 public:
  explicit RepeatedMembers(FederatedModel& model) : model_(model) {}

  bool Run(Ticker& ticker) {
    for (const auto& [number, entity] : model_.Container().entities) {
      if (entity->marker != IFC::kDeleted) DropFrom(*entity);
      if (!ticker.Advance()) return false;
    }
    return true;
  }

 private:
  void DropFrom(IFC::IfcEntity& entity) {
    for (const AttributeFacts* const facts : PlacesOf(entity)) {
      const Attribute place(entity, *facts);
      const auto* const members = place.As<EntityList>();
      if (members == nullptr || members->size() < 2 || !HasOneThatGaveWay(*members)) continue;
      // By whom they stand for; a member that is there twice under its own name stays.
      std::unordered_map<const IFC::IfcEntity*, const IFC::IfcEntity*> met;
      place.RemoveReferences([&](IFC::IfcEntity* member) {
        const IFC::IfcEntity* const there = model_.InModel(member);
        if (there == nullptr) return false;
        const auto [first, isNew] = met.try_emplace(there, member);
        return !isNew && first->second != member;
      });
    }
  }

  const std::vector<const AttributeFacts*>& PlacesOf(const IFC::IfcEntity& entity) {
    const ClassFacts* const facts = FindFacts(entity);
    const auto [known, isNew] = places_.try_emplace(facts);
    if (!isNew || facts == nullptr) return known->second;
    for (std::size_t i = 0; i < facts->AttributeCount(); ++i) {
      const AttributeFacts& attribute = facts->Attribute(i);
      if (!Refers(attribute.kind) || attribute.depth != 1) continue;
      const bool isSet = attribute.aggregates[0].kind == Aggregate::Kind::kSet;
      if (isSet || IsUniqueList(*facts, attribute)) known->second.push_back(&attribute);
    }
    return known->second;
  }

  bool HasOneThatGaveWay(const EntityList& members) const {
    for (const IFC::IfcEntity* const member : members) {
      if (member != nullptr && !member->inlineValue && !model_.Contains(*member)) return true;
    }
    return false;
  }

  FederatedModel& model_;
  std::unordered_map<const ClassFacts*, std::vector<const AttributeFacts*>> places_;
};

}  // namespace

std::span<const UniqueList> UniqueLists() { return kUniqueLists; }

bool DropRepeatedMembers(FederatedModel& model, Ticker& ticker) {
  return RepeatedMembers(model).Run(ticker);
}

}  // namespace corvel
