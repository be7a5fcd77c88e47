#include "merge/federation/federated_model.h"

#include <stdexcept>
#include <utility>

#include "core/entity_cast.h"
#include "core/root_interfaces.h"
#include "merge/federation/per_class.h"
#include "schema/registry.h"
#include "step/reader/parser.h"

namespace corvel {

namespace {

enum class Family : std::uint8_t { kOther, kRoot, kResource };

Family FamilyOf(IFC::IfcEntity& entity, const ClassFacts* facts) {
  if (EntityCast<IFC::VirtualIfcRoot>(&entity) != nullptr) return Family::kRoot;
  for (const char* const resource :
       {"IfcRepresentationContext", "IfcCoordinateOperation", "IfcApplication"}) {
    if (IsOrIsBelow(facts, resource)) return Family::kResource;
  }
  return Family::kOther;
}

}  // namespace

FederatedModel::FederatedModel(std::vector<IfcDocument*> documents)
    : documents_(std::move(documents)), sorted_(documents_.size()) {}

std::optional<SchemaNamespace> FederatedModel::Release() const {
  const FactoryTable* const classes = Merged().GetParser().factories;
  const auto is = [classes](SchemaNamespace release) {
    try {
      return &FactoriesOf(release) == classes;
    } catch (const std::logic_error&) {  // not of this build
      return false;
    }
  };
#define CORVEL_RELEASE(name) \
  if (is(SchemaNamespace::name)) return SchemaNamespace::name;
#include "step/releases.inc"
#undef CORVEL_RELEASE
  return {};
}

IFC::IfcEntity* FederatedModel::LastSurvivor(IFC::IfcEntity* entity) const {
  for (auto next = survivors_.find(entity); next != survivors_.end();
       next = survivors_.find(entity)) {
    entity = next->second;
  }
  return entity;
}

IFC::IfcEntity* FederatedModel::InModel(IFC::IfcEntity* entity) const {
  // Most objects stand for themselves.
  if (entity == nullptr || Contains(*entity)) return entity;
  entity = LastSurvivor(entity);
  if (entity->marker == IFC::kDeleted) return nullptr;
  // The projects of the inputs have the number of the one that they gave way to.
  return Container().entities.Find(entity->marker);
}

void FederatedModel::Settle() {
  for (const auto& [gone, survivor] : survivors_) gone->marker = LastSurvivor(survivor)->marker;
}

void FederatedModel::GiveWay(IFC::IfcEntity& entity, IFC::IfcEntity& survivor) {
  Container().EraseEntity(entity.marker);
  Container().OverwriteMarker(&entity, &survivor);
  survivors_.emplace(&entity, &survivor);
}

void FederatedModel::GiveWayForGood(std::uint32_t number, IFC::IfcEntity& entity,
                                    const IFC::IfcEntity& survivor) {
  Container().EraseEntity(number);
  Container().OverwriteMarker(&entity, &survivor);
}

void FederatedModel::Delete(IFC::IfcEntity& entity) {
  entity.marker = IFC::kDeleted;
  Container().NoteChangedMarkers();
}

IFC::IfcEntity* FederatedModel::MakeRoot(const char* className) {
  IFC::IfcEntity* const made = Merged().CreateESet(className);
  if (made != nullptr) madeRoots_.push_back(made);
  return made;
}

bool FederatedModel::AddRoot(IFC::IfcEntity& made) {
  Container().AddEntity(&made);
  if (!Contains(made)) return false;
  madeRoots_.push_back(&made);
  return true;
}

// What the first reads under its own numbers is its own; all that came is in its store as well.
const NumberTable& FederatedModel::ObjectsOf(std::size_t input) const {
  const IfcDocument& merged = Merged();
  return input == 0 ? merged.mainContainer->originalEntities
                    : merged.absorbedContainers[input - 1]->entities;
}

const NumberTable& FederatedModel::RecordsOf(std::size_t input) const {
  const IfcDocument& merged = Merged();
  return input == 0 ? merged.mainContainer->originalEntities
                    : merged.absorbedContainers[input - 1]->originalEntities;
}

const FederatedModel::Sorted& FederatedModel::SortedOf(std::size_t input) const {
  std::optional<Sorted>& sorted = sorted_[input];
  if (sorted) return *sorted;
  sorted.emplace();
  PerClass<Family> families;
  for (const auto& [number, entity] : ObjectsOf(input)) {
    const Family family = families.Of(*entity, [&, object = entity](const ClassFacts* facts) {
      return FamilyOf(*object, facts);
    });
    if (family == Family::kRoot) sorted->roots.push_back(entity);
    if (family == Family::kResource) sorted->resources.push_back(entity);
  }
  return *sorted;
}

std::size_t FederatedModel::ObjectCount() const {
  std::size_t count = 0;
  for (std::size_t input = 0; input < InputCount(); ++input) count += ObjectsOf(input).Size();
  return count;
}

}  // namespace corvel
