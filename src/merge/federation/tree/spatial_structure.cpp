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

std::string_view GuidOf(IFC::IfcEntity& entity) {
  const auto* const root = EntityCast<IFC::VirtualIfcRoot>(&entity);
  return root == nullptr ? std::string_view() : root->getGlobalId();
}

SpatialRole RoleOfClass(const ClassFacts* facts) {
  for (; facts != nullptr; facts = facts->supertype) {
    const std::string_view name = facts->name;
    if (name == "IfcSite") return SpatialRole::kSite;
    if (name == "IfcBuilding" || name == "IfcFacility") return SpatialRole::kFacility;
    if (name == "IfcBuildingStorey") return SpatialRole::kStorey;
    if (name == "IfcFacilityPart") return SpatialRole::kPart;
    if (name == "IfcRelAggregates") return SpatialRole::kAggregation;
  }
  return SpatialRole::kOther;
}

class Collector {
 public:
  Collector(const GuidsAsRead& asRead, SpatialStructure& structure)
      : asRead_(asRead), structure_(structure) {}

  bool Collect(const FederatedModel& model, std::size_t input, Ticker& ticker) {
    known_.clear();
    aggregations_.clear();
    const auto hasRole = [](const ClassFacts* facts) {
      return RoleOfClass(facts) != SpatialRole::kOther;
    };
    const bool goesOn = model.ForEachRootOf(input, ticker, hasRole,
                                            [&](IFC::IfcEntity& entity) { Look(entity, input); });
    if (!goesOn) return false;
    tops_.clear();
    PutTogether();
    return true;
  }
  void Collect(const std::vector<IFC::IfcEntity*>& objects) {
    for (IFC::IfcEntity* const entity : objects) Look(*entity, 0);
    PutTogether();
  }

 private:
  void PutTogether() {
    for (const IFC::IfcEntity* const aggregation : aggregations_) Enter(*aggregation);
    PlaceFromTheTop();
  }

  void Look(IFC::IfcEntity& entity, std::size_t input) {
    const SpatialRole role = roles_.Of(entity);
    if (role == SpatialRole::kAggregation) {
      aggregations_.push_back(&entity);
      return;
    }
    SpatialObject& object = structure_.objects.emplace_back();
    object.entity = &entity;
    object.input = input;
    object.level.rank = role == SpatialRole::kSite       ? SpatialRank::kSite
                        : role == SpatialRole::kFacility ? SpatialRank::kFacility
                                                         : SpatialRank::kPart;
    object.level.composition = CompositionOf(entity);
    object.isStorey = role == SpatialRole::kStorey;
    const auto read = asRead_.find(&entity);
    object.guid = read == asRead_.end() ? GuidOf(entity) : read->second;
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

  const GuidsAsRead& asRead_;
  SpatialStructure& structure_;
  ClassQuestion isProject_{"IfcProject"};
  SpatialRoles roles_;
  // Of the input whose turn it is.
  std::unordered_map<const IFC::IfcEntity*, SpatialObject*> known_;
  std::unordered_set<const SpatialObject*> partsOfSomething_;
  std::vector<const IFC::IfcEntity*> aggregations_;
  std::vector<SpatialObject*> tops_;
};

}  // namespace

SpatialRole SpatialRoles::Of(const IFC::IfcEntity& entity) {
  return known_.Of(entity, RoleOfClass);
}

void NoteSpatialGuids(const SortedObjects& records, GuidsAsRead& guids) {
  const SortedObjects::Classes spatial = records.ClassesThat([](const ClassFacts* facts) {
    const SpatialRole role = RoleOfClass(facts);
    return role != SpatialRole::kOther && role != SpatialRole::kAggregation;
  });
  const std::vector<IFC::IfcEntity*>& roots = records.Roots();
  for (std::size_t i = 0; i < roots.size(); ++i) {
    if (spatial.HasThatOf(i)) guids.emplace(roots[i], GuidOf(*roots[i]));
  }
}

bool CollectSpatialStructure(const FederatedModel& model, const GuidsAsRead& asRead, Ticker& ticker,
                             SpatialStructure& structure) {
  Collector collector(asRead, structure);
  for (std::size_t input = 0; input < model.InputCount(); ++input) {
    if (!collector.Collect(model, input, ticker)) return false;
  }
  return true;
}

void CollectSpatialStructure(const std::vector<IFC::IfcEntity*>& objects,
                             SpatialStructure& structure) {
  Collector({}, structure).Collect(objects);
}

}  // namespace corvel
