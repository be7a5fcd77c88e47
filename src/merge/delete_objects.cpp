// The marking as a whole: which steps there are and in which order.

#include <algorithm>
#include <vector>

#include "merge/marking.h"

namespace corvel {

namespace {

bool IsOpening(const IFC::IfcEntity& entity) { return ClassIs(entity, u"IfcOpeningElement"); }

// All openings are deleted, none is saved.
void DeleteAllOpenings(const IFC::MainContainer& container, std::vector<MarkerPair>& deletePairs,
                       std::vector<MarkerPair>& savePairs) {
  const corvel::NumberTable& objects = container.originalEntities;
  for (const auto& [number, entity] : objects) {
    if (IsOpening(*entity)) deletePairs.push_back({number, number});
  }
  std::erase_if(savePairs, [&objects](const MarkerPair& pair) {
    const IFC::IfcEntity* const entity = objects.Find(pair.number);
    return entity != nullptr && IsOpening(*entity);
  });
}

bool HasUndecided(const IFC::MainContainer& container) {
  if (container.MarkersAreTrue()) return false;
  for (const auto& [number, entity] : container.entities) {
    if (IsUndecided(*entity)) return true;
  }
  return false;
}

// The share of a step that is worth the n-th part of a model's.
int Share(int n, int fileCount) { return std::max(n / std::max(fileCount, 1), 1); }

// The marking of one model while it runs.
class Marking {
 public:
  Marking(IFC::MainContainer& container, const MarkingOrder& order)
      : container_(container), order_(order) {}

  bool Run() { return Prepare() && MarkLists() && DeleteWhatFollows(); }

 private:
  Stage StageOf(int share, const WideString& text) const {
    return {order_.progress, Share(share, order_.fileCount), &text};
  }
  bool Tick(int share, int value, bool exactMode) const {
    return Ticker(StageOf(share, first_).CountedTo(value, exactMode)).Tick(value);
  }

  // Unmarked entities with their parents.
  bool Prepare() {
    if (!Tick(3, 10, false)) return false;
    container_.ResetMarkersAndFillParents();
    if (!Tick(3, 20, true)) return false;
    if (order_.deleteUnrelated) {
      DeleteUnrelatedObjects(container_, order_.project, order_.showError);
    }
    return Tick(5, 65, true);
  }

  // Saving comes second: what is in both lists stays.
  bool MarkLists() {
    if (order_.deleteOpenings) DeleteAllOpenings(container_, order_.deletePairs, order_.savePairs);
    MarkEntitiesAndChildrenToDelete(container_, order_.deletePairs);
    MarkEntitiesAndChildrenAndParentsToSave(container_, order_.savePairs, order_.deletePairs);
    Tell(MarkingStep::kChosen, !order_.deletePairs.empty());
    return Tick(5, 100, true);
  }

  bool DeleteWhatFollows() {
    Deletion deletion(container_);
    if (order_.deletePairs.empty()) deletion.NoteNothingIsDeleted();
    const Stage second = StageOf(5, second_);
    if (!DeleteParentsOfDeleted(container_, deletion, second)) return false;
    // Behind the first step that deletes: which elements are gone is known from here on.
    if (!order_.deleteOpenings) RemoveOpeningsFromDeleteList(container_, order_.deletePairs);
    if (!MarkDependentsToDelete(container_, deletion, order_.deletePairs, second)) return false;
    Tell(MarkingStep::kFollowed, deletion.AnyIsDeleted());
    if (!RemoveUnsavedEntities(container_, deletion, StageOf(10, third_))) return false;
    Tell(MarkingStep::kSwept, deletion.AnyIsDeleted());
    return true;
  }

  void Tell(MarkingStep step, bool anyIsDeleted) const {
    if (order_.listener != nullptr && *order_.listener) (*order_.listener)(step, anyIsDeleted);
  }

  IFC::MainContainer& container_;
  const MarkingOrder& order_;
  WideString first_ = u"1/3";
  WideString second_ = u"2/3";
  WideString third_ = u"3/3";
};

}  // namespace

bool DeleteObjects(IFC::MainContainer& container, const MarkingOrder& order) {
  return Marking(container, order).Run();
}

// An opening of a deleted element goes with it; one that lost only itself is spared what follows.
void RemoveOpeningsFromDeleteList(const IFC::MainContainer& container,
                                  std::vector<MarkerPair>& deletePairs) {
  std::erase_if(deletePairs, [&container](const MarkerPair& pair) {
    const IFC::IfcEntity* const entity = container.GetEntityByOrginalNumber(pair.number);
    const IFC::IfcEntity* const parent = container.GetEntityByOrginalNumber(pair.parentNumber);
    return entity != nullptr && IsOpening(*entity) && parent != nullptr && !IsDeleted(*parent);
  });
}

bool RemoveUnsavedEntities(IFC::MainContainer& container, const Stage& stage) {
  if (stage.callback == nullptr && !HasUndecided(container)) return true;
  Deletion deletion(container);
  return RemoveUnsavedEntities(container, deletion, stage);
}

}  // namespace corvel
