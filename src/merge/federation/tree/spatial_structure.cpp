#include "merge/federation/tree/spatial_structure.h"

#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "core/entity_cast.h"
#include "core/root_interfaces.h"
#include "merge/federation/attribute_values.h"
#include "merge/federation/tree/spatial_names.h"

namespace corvel {

namespace {

std::string_view WordOf(const IFC::IfcEntity& entity, std::string_view attribute) {
  const auto found = AttributesOf(entity).Find(attribute);
  return found ? found->EnumerationName() : std::string_view();
}

Composition CompositionOf(const IFC::IfcEntity& entity) {
  const std::string_view word = WordOf(entity, "CompositionType");
  if (word == "COMPLEX") return Composition::kComplex;
  return word == "PARTIAL" ? Composition::kPartial : Composition::kElement;
}

std::string KindOf(const IFC::IfcEntity& entity) {
  std::string kind = FindFacts(entity)->name;
  const std::string_view type = WordOf(entity, "PredefinedType");
  if (!type.empty() && type != "NOTDEFINED") kind.append(" ").append(type);
  return kind;
}

class Collector {
 public:
  Collector(FederatedModel& model, SpatialStructure& structure)
      : model_(model), structure_(structure) {}

  bool Collect(std::size_t input, Ticker& ticker) {
    known_.clear();
    aggregations_.clear();
    const bool goesOn =
        model_.ForEachOf(input, ticker, [&](IFC::IfcEntity& entity) { Look(entity, input); });
    if (!goesOn) return false;
    tops_.clear();
    for (const IFC::IfcEntity* const aggregation : aggregations_) Enter(*aggregation);
    PlaceFromTheTop();
    return true;
  }

 private:
  enum class Role : std::uint8_t { kOther, kSite, kFacility, kPart, kStorey, kAggregation };

  Role RoleOf(const IFC::IfcEntity& entity) {
    const auto [known, isNew] = roles_.try_emplace(FindFacts(entity), Role::kOther);
    if (isNew) known->second = RoleOfClass(known->first);
    return known->second;
  }

  static Role RoleOfClass(const ClassFacts* facts) {
    for (; facts != nullptr; facts = facts->supertype) {
      const std::string_view name = facts->name;
      if (name == "IfcSite") return Role::kSite;
      if (name == "IfcBuilding" || name == "IfcFacility") return Role::kFacility;
      if (name == "IfcBuildingStorey") return Role::kStorey;
      if (name == "IfcFacilityPart") return Role::kPart;
      if (name == "IfcRelAggregates") return Role::kAggregation;
    }
    return Role::kOther;
  }

  void Look(IFC::IfcEntity& entity, std::size_t input) {
    const Role role = RoleOf(entity);
    if (role == Role::kOther) return;
    if (role == Role::kAggregation) {
      aggregations_.push_back(&entity);
      return;
    }
    SpatialObject& object = structure_.objects.emplace_back();
    object.entity = &entity;
    object.input = input;
    object.level.rank = role == Role::kSite       ? SpatialRank::kSite
                        : role == Role::kFacility ? SpatialRank::kFacility
                                                  : SpatialRank::kPart;
    object.level.composition = CompositionOf(entity);
    object.isStorey = role == Role::kStorey;
    const auto* const root = EntityCast<IFC::VirtualIfcRoot>(&entity);
    if (root != nullptr && root->getGlobalId() != nullptr) object.guid = root->getGlobalId();
    object.name = ComparableName(TextOf(entity, "Name"));
    object.isGeneric = IsGenericName(object.name);
    object.kind = KindOf(entity);
    known_.emplace(&entity, &object);
  }

  void Enter(const IFC::IfcEntity& aggregation) {
    const IFC::IfcEntity* const whole = ReferenceOf(aggregation, "RelatingObject");
    const EntityList* const parts = ReferencesOf(aggregation, "RelatedObjects");
    if (whole == nullptr || parts == nullptr) return;
    const auto above = known_.find(whole);
    const bool isProject = above == known_.end() && isProject_.IsTrueOf(*whole);
    if (above == known_.end() && !isProject) return;
    for (const IFC::IfcEntity* const part : *parts) {
      const auto below = known_.find(part);
      if (below == known_.end()) continue;
      SpatialObject* const object = below->second;
      if (!partsOfSomething_.insert(object).second) continue;
      if (isProject) {
        tops_.push_back(object);
      } else {
        object->parent = above->second;
        above->second->children.push_back(object);
      }
    }
  }

  // Everything has one parent at most, so that what is reached from the project is reached once.
  void PlaceFromTheTop() {
    for (SpatialObject* const top : tops_) top->isPlaced = true;
    while (!tops_.empty()) {
      const SpatialObject& object = *tops_.back();
      tops_.pop_back();
      for (SpatialObject* const child : object.children) {
        const auto kindOfLevel = [](const SpatialLevel& level) {
          return std::pair(level.rank, level.composition);
        };
        if (kindOfLevel(child->level) == kindOfLevel(object.level)) {
          child->level.nesting = object.level.nesting + 1;
        }
        child->isPlaced = object.level < child->level;
        if (child->isPlaced) tops_.push_back(child);
      }
    }
    partsOfSomething_.clear();
  }

  FederatedModel& model_;
  SpatialStructure& structure_;
  ClassQuestion isProject_{"IfcProject"};
  std::unordered_map<const ClassFacts*, Role> roles_;
  // Of the input whose turn it is.
  std::unordered_map<const IFC::IfcEntity*, SpatialObject*> known_;
  std::unordered_set<const SpatialObject*> partsOfSomething_;
  std::vector<const IFC::IfcEntity*> aggregations_;
  std::vector<SpatialObject*> tops_;
};

}  // namespace

bool CollectSpatialStructure(FederatedModel& model, Ticker& ticker, SpatialStructure& structure) {
  Collector collector(model, structure);
  for (std::size_t input = 0; input < model.InputCount(); ++input) {
    if (!collector.Collect(input, ticker)) return false;
  }
  return true;
}

}  // namespace corvel
