#include <algorithm>

#include "merge/marking.h"

namespace corvel {

namespace {

// Places are stamps above all that walks stamp with.
constexpr std::uint32_t kFirstPlace = 0x80000000u;

// Of an entity with more parents it is remembered how many are known to be gone.
constexpr std::size_t kFewParents = 8;

}  // namespace

std::uint32_t PlaceOf(const IFC::IfcEntity& entity) { return entity.visitStamp - kFirstPlace; }

Deletion::Deletion(IFC::MainContainer& container) {
  container.NoteChangedMarkers();
  std::uint32_t place = 0;
  for (const auto& [number, entity] : container.entities) {
    entity->visitStamp = kFirstPlace + place;
    entity->goneParents = 0;
    if (IsUndecided(*entity)) undecided_.push_back({entity, place});
    ++place;
  }
}

// The parents that are gone stay so, save for an Undo: over all questions each parent of an entity
// is passed once.
bool Deletion::IsOrphan(IFC::IfcEntity& entity) {
  const auto parents = entity.parents.Members();
  if (parents.size() <= kFewParents) {
    return std::all_of(parents.begin(), parents.end(),
                       [](const IFC::IfcEntity* parent) { return IsDeleted(*parent); });
  }
  std::uint32_t& gone = entity.goneParents;
  while (gone < parents.size() && IsDeleted(*parents[gone])) ++gone;
  return gone == parents.size();
}

void Deletion::Delete(IFC::IfcEntity& entity) {
  if (IsDeleted(entity)) return;
  entity.marker = IFC::kDeleted;
  anyIsDeleted_ = true;
  if (isRecording_) record_.push_back(&entity);
}

void Deletion::DeleteWithOrphans(IFC::IfcEntity& entity) {
  Delete(entity);
  DeleteChildrenOf(entity);
}

void Deletion::DeleteChildrenOf(IFC::IfcEntity& entity) {
  entity.CollectAllChildren(orphans_);
  while (!orphans_.IsEmpty()) {
    IFC::IfcEntity* const child = orphans_.TakeBack().entity;
    if (child == nullptr || !IsUndecided(*child) || !IsOrphan(*child)) continue;
    Delete(*child);
    child->CollectAllChildren(orphans_);
  }
}

void Deletion::StartRecord() {
  isRecording_ = true;
  anyWasDeleted_ = anyIsDeleted_;
  record_.clear();
}

void Deletion::Undo() {
  isRecording_ = false;
  anyIsDeleted_ = anyWasDeleted_;
  for (IFC::IfcEntity* const entity : record_) {
    entity->marker = IFC::kUnfiled;
    entity->CollectAllChildren(children_);
    while (!children_.IsEmpty()) {
      IFC::IfcEntity* const child = children_.TakeBack().entity;
      // A parent that was counted as gone is back.
      if (child != nullptr) child->goneParents = 0;
    }
  }
  record_.clear();
}

}  // namespace corvel
