#include "merge/federation/federated_model.h"

#include <stdexcept>
#include <utility>

#include "merge/federation/shared_guids.h"
#include "schema/registry.h"
#include "step/reader/parser.h"

namespace corvel {

FederatedModel::FederatedModel(std::vector<IfcDocument*> documents,
                               std::vector<std::shared_ptr<SortedObjects>> records)
    : documents_(std::move(documents)), sorted_(documents_.size()) {
  // What was made for a later model since then is among its objects too.
  for (std::size_t input = 0; input < records.size(); ++input) {
    if (ObjectsOf(input).SharesAllWith(RecordsOf(input)))
      sorted_[input] = std::move(records[input]);
  }
}

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

SortedObjects& FederatedModel::SortedOf(std::size_t input) const {
  std::shared_ptr<SortedObjects>& sorted = sorted_[input];
  if (sorted == nullptr) sorted = std::make_shared<SortedObjects>(ObjectsOf(input));
  return *sorted;
}

const std::vector<IFC::IfcEntity*>& FederatedModel::HoldersOfSharedGuids() const {
  if (holdersOfSharedGuids_) return *holdersOfSharedGuids_;
  std::vector<IFC::IfcEntity*> roots;
  std::vector<std::uint64_t> hashes;
  for (std::size_t input = 0; input < InputCount(); ++input) {
    SortedObjects& sorted = SortedOf(input);
    roots.insert(roots.end(), sorted.Roots().begin(), sorted.Roots().end());
    const std::vector<std::uint64_t>& more = sorted.GuidHashes();
    hashes.insert(hashes.end(), more.begin(), more.end());
  }
  std::vector<IFC::IfcEntity*> repeated;
  for (const std::size_t place : PlacesOfRepeated(hashes)) repeated.push_back(roots[place]);
  return holdersOfSharedGuids_.emplace(corvel::HoldersOfSharedGuids(repeated));
}

std::size_t FederatedModel::ObjectCount() const {
  std::size_t count = 0;
  for (std::size_t input = 0; input < InputCount(); ++input) count += ObjectsOf(input).Size();
  return count;
}

}  // namespace corvel
