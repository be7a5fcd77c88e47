#include "merge/federation/relations/unique_members.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

#include "merge/federation/per_class.h"
#include "merge/federation/relations/survivors.h"
#include "schema/attributes.h"
#include "step/reader/parser.h"

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
  explicit RepeatedMembers(FederatedModel& model) : model_(model), survivors_(model) {}

  bool Run(Ticker& ticker) {
    model_.ForEachThatGaveWay([this](const IFC::IfcEntity& gone, const IFC::IfcEntity&) {
      gone_.try_emplace(FindFacts(gone), &gone);
    });
    if (OnlyRootsHoldThem()) return RunOverRoots(ticker);
    for (const auto& [number, entity] : model_.Container().entities) {
      if (entity->marker != IFC::kDeleted) DropFrom(*entity);
      if (!ticker.Advance()) return false;
    }
    return true;
  }

 private:
  using Places = std::vector<const AttributeFacts*>;

  // Of all classes. What was read with tolerance may hold anything anywhere.
  bool OnlyRootsHoldThem() const {
    for (std::size_t input = 0; input < model_.InputCount(); ++input) {
      if (model_.Document(input).GetParser().tolerance != nullptr) return false;
    }
    const auto& classes = model_.Merged().GetParser().factories->classes->classes;
    return std::all_of(classes.begin(), classes.end(), [this](const ClassFacts& facts) {
      return IsOrIsBelow(&facts, "IfcRoot") || PlacesOf(&facts).empty();
    });
  }

  bool RunOverRoots(Ticker& ticker) {
    const auto hasPlaces = [this](const ClassFacts* facts) { return !PlacesOf(facts).empty(); };
    for (std::size_t input = 0; input < model_.InputCount(); ++input) {
      const bool goesOn = model_.ForEachRootOf(
          input, ticker, hasPlaces, [this](IFC::IfcEntity& entity) { DropFrom(entity); });
      if (!goesOn) return false;
    }
    for (IFC::IfcEntity* const made : model_.MadeRoots()) {
      if (model_.Contains(*made)) DropFrom(*made);
    }
    return true;
  }

  void DropFrom(IFC::IfcEntity& entity) {
    const Places& places =
        places_.Of(entity, [this](const ClassFacts* facts) { return PlacesOf(facts); });
    for (const AttributeFacts* const facts : places) {
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

  // Where members stand once, and some that gave way may be among them.
  Places PlacesOf(const ClassFacts* facts) const {
    Places places;
    for (std::size_t i = 0; facts != nullptr && i < facts->AttributeCount(); ++i) {
      const AttributeFacts& attribute = facts->Attribute(i);
      if (!Refers(attribute.kind) || attribute.depth != 1) continue;
      const bool isSet = attribute.aggregates[0].kind == Aggregate::Kind::kSet;
      if (!isSet && !IsUniqueList(*facts, attribute)) continue;
      const bool admitsOne = std::any_of(gone_.begin(), gone_.end(), [&](const auto& gone) {
        return attribute.Admits(gone.second);
      });
      if (admitsOne) places.push_back(&attribute);
    }
    return places;
  }

  bool HasOneThatGaveWay(const EntityList& members) const {
    for (const IFC::IfcEntity* const member : members) {
      if (survivors_.HasGivenWay(member)) return true;
    }
    return false;
  }

  FederatedModel& model_;
  Survivors survivors_;
  // One of each class that gave way.
  std::unordered_map<const ClassFacts*, const IFC::IfcEntity*> gone_;
  PerClass<Places> places_;
};

}  // namespace

std::span<const UniqueList> UniqueLists() { return kUniqueLists; }

bool DropRepeatedMembers(FederatedModel& model, Ticker& ticker) {
  return RepeatedMembers(model).Run(ticker);
}

}  // namespace corvel
