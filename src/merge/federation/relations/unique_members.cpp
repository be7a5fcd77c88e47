#include "merge/federation/relations/unique_members.h"

#include <unordered_map>
#include <vector>

#include "merge/federation/per_class.h"
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
  using Places = std::vector<const AttributeFacts*>;

  void DropFrom(IFC::IfcEntity& entity) {
    for (const AttributeFacts* const facts : places_.Of(entity, PlacesOf)) {
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

  static Places PlacesOf(const ClassFacts* facts) {
    Places places;
    for (std::size_t i = 0; facts != nullptr && i < facts->AttributeCount(); ++i) {
      const AttributeFacts& attribute = facts->Attribute(i);
      if (!Refers(attribute.kind) || attribute.depth != 1) continue;
      const bool isSet = attribute.aggregates[0].kind == Aggregate::Kind::kSet;
      if (isSet || IsUniqueList(*facts, attribute)) places.push_back(&attribute);
    }
    return places;
  }

  bool HasOneThatGaveWay(const EntityList& members) const {
    for (const IFC::IfcEntity* const member : members) {
      if (member != nullptr && !member->inlineValue && !model_.Contains(*member)) return true;
    }
    return false;
  }

  FederatedModel& model_;
  PerClass<Places> places_;
};

}  // namespace

std::span<const UniqueList> UniqueLists() { return kUniqueLists; }

bool DropRepeatedMembers(FederatedModel& model, Ticker& ticker) {
  return RepeatedMembers(model).Run(ticker);
}

}  // namespace corvel
