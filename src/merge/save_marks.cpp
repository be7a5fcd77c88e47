// The first two steps of the marking: what the lists of the host say outright.

#include <unordered_map>
#include <utility>
#include <vector>

#include "merge/marking.h"

namespace corvel {

namespace {

using ParentNumbers = std::unordered_map<const IFC::IfcEntity*, std::uint32_t>;

// Marks as saved. An entity whose whole tree was marked is remembered by its stamp, so that a
// shared tree is walked once for the model and a circle ends.
class SaveMarks {
 public:
  SaveMarks(IFC::MainContainer& container, ParentNumbers parentNumbers)
      : container_(container),
        parentNumbers_(std::move(parentNumbers)),
        generation_(IFC::NextVisitGeneration()) {}

  // The object, all that it refers to by whatever way, and what it hangs on.
  void Save(IFC::IfcEntity& object) {
    MarkTree(object);
    MarkUpward(object);
  }

 private:
  void MarkTree(IFC::IfcEntity& root) {
    queue_.Append(&root, false);
    while (!queue_.IsEmpty()) {
      IFC::IfcEntity* const entity = queue_.TakeBack().entity;
      if (entity == nullptr || entity->visitStamp == generation_) continue;
      entity->visitStamp = generation_;
      entity->marker = IFC::kToSave;
      entity->CollectAllChildren(queue_);
    }
  }

  // What the record of `parent` cannot do without. Not its optional references and lists, which
  // would drag the siblings along.
  void MarkMandatoryChildren(const IFC::IfcEntity& parent) {
    parent.CollectAllChildren(queue_);
    while (!queue_.IsEmpty()) {
      const IFC::ChildRef child = queue_.TakeBack();
      if (child.entity == nullptr || child.canLose || IsSaved(*child.entity)) continue;
      child.entity->marker = IFC::kToSave;
      child.entity->CollectAllChildren(queue_);
    }
  }

  // Along the parents that the host knows, up to one that is saved already. The parents themselves
  // are marked at the end: one that comes up again before must not count as saved.
  void MarkUpward(const IFC::IfcEntity& object) {
    std::vector<IFC::IfcEntity*> chain;
    const std::uint32_t turn = IFC::NextVisitGeneration();
    for (IFC::IfcEntity* parent = ParentOf(object); parent != nullptr && !IsSaved(*parent);
         parent = ParentOf(*parent)) {
      if (parent->visitStamp == turn) break;
      parent->visitStamp = turn;
      chain.push_back(parent);
      if (ClassIs(*parent, u"IfcProject")) MarkTreeOf(*parent);
      MarkMandatoryChildren(*parent);
    }
    for (IFC::IfcEntity* const parent : chain) parent->marker = IFC::kToSave;
  }

  IFC::IfcEntity* ParentOf(const IFC::IfcEntity& object) const {
    const auto found = parentNumbers_.find(&object);
    if (found == parentNumbers_.end() || found->second == 0) return nullptr;
    return container_.GetEntityByOrginalNumber(found->second);
  }

  void MarkTreeOf(const IFC::IfcEntity& project) {
    IFC::ChildQueue children;
    project.CollectAllChildren(children);
    while (!children.IsEmpty()) {
      IFC::IfcEntity* const child = children.TakeBack().entity;
      if (child != nullptr) MarkTree(*child);
    }
  }

  IFC::MainContainer& container_;
  ParentNumbers parentNumbers_;
  std::uint32_t generation_;
  IFC::ChildQueue queue_;
};

void NoteParents(const IFC::MainContainer& container, const std::vector<MarkerPair>& pairs,
                 ParentNumbers& parentNumbers) {
  for (const MarkerPair& pair : pairs) {
    if (pair.number == pair.parentNumber) continue;
    const IFC::IfcEntity* const entity = container.GetEntityByOrginalNumber(pair.number);
    if (entity != nullptr) parentNumbers[entity] = pair.parentNumber;
  }
}

}  // namespace

// One level only. An owner history is nobody's own.
void MarkEntitiesAndChildrenToDelete(IFC::MainContainer& container,
                                     const std::vector<MarkerPair>& deletePairs) {
  container.NoteChangedMarkers();
  IFC::ChildQueue children;
  for (const MarkerPair& pair : deletePairs) {
    IFC::IfcEntity* const entity = container.GetEntityByOrginalNumber(pair.number);
    if (entity == nullptr) continue;
    entity->CollectAllChildren(children);
    while (!children.IsEmpty()) {
      IFC::IfcEntity* const child = children.TakeBack().entity;
      if (child == nullptr || ClassIs(*child, u"IfcOwnerHistory")) continue;
      child->marker = IFC::kDeleted;
    }
    entity->marker = IFC::kDeleted;
  }
}

void MarkEntitiesAndChildrenAndParentsToSave(IFC::MainContainer& container,
                                             const std::vector<MarkerPair>& savePairs,
                                             const std::vector<MarkerPair>& deletePairs) {
  container.NoteChangedMarkers();
  ParentNumbers parentNumbers;
  NoteParents(container, deletePairs, parentNumbers);
  NoteParents(container, savePairs, parentNumbers);
  SaveMarks marks(container, std::move(parentNumbers));
  for (const MarkerPair& pair : savePairs) {
    IFC::IfcEntity* const entity = container.GetEntityByOrginalNumber(pair.number);
    if (entity != nullptr) marks.Save(*entity);
  }
}

}  // namespace corvel
