#include "merge/marking.h"

namespace corvel {

namespace {

// Only what is filed is anybody's parent: a value that stands in a record is a part of it.
bool CountsAsParent(const IFC::IfcEntity& entity) { return !entity.inlineValue; }

// Places are stamps above all that walks stamp with.
constexpr std::uint32_t kFirstPlace = 0x80000000u;

}  // namespace

void NumberPlaces(IFC::MainContainer& container) {
  std::uint32_t stamp = kFirstPlace;
  for (const auto& at : container.entities) {
    at.entity->visitStamp = stamp++;
  }
}

std::uint32_t PlaceOf(const IFC::IfcEntity& entity) { return entity.visitStamp - kFirstPlace; }

Deletion::Deletion(IFC::MainContainer& container) {
  for (const auto& at : container.entities) {
    at.entity->liveParents = 0;
  }
  for (const auto& at : container.entities) {
    const bool lives = !IsDeleted(*at.entity);
    at.entity->collectChildren(children_);
    while (!children_.IsEmpty()) {
      IFC::IfcEntity* const child = children_.TakeBack().entity;
      if (child == nullptr) continue;
      if (child->inlineValue) {
        child->liveParents = lives ? 1 : 0;  // it stands in this record and nowhere else
      } else if (lives) {
        ++child->liveParents;
      }
    }
  }
}

void Deletion::Delete(IFC::IfcEntity& entity) {
  if (IsDeleted(entity)) return;
  entity.marker = IFC::kDeleted;
  if (isRecording_) record_.push_back(&entity);
  if (!CountsAsParent(entity)) return;
  entity.collectChildren(children_);
  while (!children_.IsEmpty()) {
    IFC::IfcEntity* const child = children_.TakeBack().entity;
    if (child != nullptr) --child->liveParents;
  }
}

void Deletion::DeleteWithOrphans(IFC::IfcEntity& entity) {
  Delete(entity);
  DeleteChildrenOf(entity);
}

void Deletion::DeleteChildrenOf(IFC::IfcEntity& entity) {
  entity.collectChildren(orphans_);
  DeleteQueuedOrphans();
}

void Deletion::DeleteIfOrphan(IFC::IfcEntity* entity) {
  orphans_.Append(entity, true);
  DeleteQueuedOrphans();
}

void Deletion::DeleteQueuedOrphans() {
  while (!orphans_.IsEmpty()) {
    IFC::IfcEntity* const entity = orphans_.TakeBack().entity;
    if (entity == nullptr || !IsUndecided(*entity) || !IsOrphan(*entity)) continue;
    Delete(*entity);
    entity->collectChildren(orphans_);
  }
}

void Deletion::StartRecord() {
  isRecording_ = true;
  record_.clear();
}

void Deletion::Undo() {
  isRecording_ = false;
  for (IFC::IfcEntity* const entity : record_) {
    entity->marker = IFC::kUnfiled;
    if (!CountsAsParent(*entity)) continue;
    entity->collectChildren(children_);
    while (!children_.IsEmpty()) {
      IFC::IfcEntity* const child = children_.TakeBack().entity;
      if (child != nullptr) ++child->liveParents;
    }
  }
  record_.clear();
}

}  // namespace corvel
