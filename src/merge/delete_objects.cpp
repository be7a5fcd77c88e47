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
  for (const auto& [number, entity] : container.entities) {
    if (IsUndecided(*entity)) return true;
  }
  return false;
}

// The marking of one model while it runs.
class Marking {
 public:
  Marking(IfcDocument& document, ProgressCallback progress, int fileCount)
      : document_(document), progress_(progress), fileCount_(std::max(fileCount, 1)) {}

  bool Run(std::vector<MarkerPair>& deletePairs, std::vector<MarkerPair>& savePairs,
           bool deleteUnrelated, bool deleteOpenings) {
    return Prepare(deleteUnrelated) && MarkLists(deletePairs, savePairs, deleteOpenings) &&
           DeleteWhatFollows(deletePairs, deleteOpenings);
  }

 private:
  // The share of a step that is worth the n-th part of a model's.
  int Share(int n) const { return std::max(n / fileCount_, 1); }

  MarkingProgress Progress(int share, const WideString& prefix) const {
    return {progress_, share, prefix};
  }

  // Unmarked entities with their parents.
  bool Prepare(bool deleteUnrelated) {
    IFC::MainContainer& container = *document_.mainContainer;
    if (!Progress(Share(3), first_).Tick(10, false, 10)) return false;
    container.ResetMarkersAndFillParents();
    if (!Progress(Share(3), first_).Tick(20, true, 20)) return false;
    if (deleteUnrelated) document_.DeleteUnrelatedObjects();
    return Progress(Share(5), first_).Tick(65, true, 65);
  }

  // Saving comes second: what is in both lists stays.
  bool MarkLists(std::vector<MarkerPair>& deletePairs, std::vector<MarkerPair>& savePairs,
                 bool deleteOpenings) {
    if (deleteOpenings) DeleteAllOpenings(*document_.mainContainer, deletePairs, savePairs);
    document_.MarkEntitiesAndChildrenToDelete(deletePairs);
    document_.MarkEntitiesAndChildrenAndParentsToSave(savePairs, deletePairs);
    return Progress(Share(5), first_).Tick(100, true, 100);
  }

  bool DeleteWhatFollows(std::vector<MarkerPair>& deletePairs, bool deleteOpenings) {
    IFC::MainContainer& container = *document_.mainContainer;
    Deletion deletion(container);
    const MarkingProgress second = Progress(Share(5), second_);
    if (!corvel::DeleteParentsOfDeleted(container, deletion, second)) return false;
    if (!deleteOpenings) document_.RemoveOpeningsFromDeleteList(deletePairs);
    return corvel::MarkDependentsToDelete(container, deletion, deletePairs, second) &&
           corvel::RemoveUnsavedEntities(container, deletion, Progress(Share(10), third_));
  }

  IfcDocument& document_;
  ProgressCallback progress_;
  int fileCount_;
  WideString first_ = u"1/3";
  WideString second_ = u"2/3";
  WideString third_ = u"3/3";
};

}  // namespace

bool IfcDocument::DeleteObjects(std::vector<MarkerPair>& deletePairs,
                                std::vector<MarkerPair>& savePairs, bool deleteUnrelated,
                                bool deleteOpenings, int fileCount) {
  return Marking(*this, progress_, fileCount)
      .Run(deletePairs, savePairs, deleteUnrelated, deleteOpenings);
}

// An opening of a deleted element goes with it; one that lost only itself is spared what follows.
void IfcDocument::RemoveOpeningsFromDeleteList(std::vector<MarkerPair>& deletePairs) const {
  std::erase_if(deletePairs, [this](const MarkerPair& pair) {
    const IFC::IfcEntity* const entity = mainContainer->GetEntityByOrginalNumber(pair.number);
    const IFC::IfcEntity* const parent = mainContainer->GetEntityByOrginalNumber(pair.parentNumber);
    return entity != nullptr && IsOpening(*entity) && parent != nullptr && !IsDeleted(*parent);
  });
}

bool IfcDocument::DeleteParentsOfDeleted(int share, const WideString& prefix) {
  Deletion deletion(*mainContainer);
  return corvel::DeleteParentsOfDeleted(*mainContainer, deletion, {progress_, share, prefix});
}

bool IfcDocument::MarkDependentsToDelete(const std::vector<MarkerPair>& deletePairs, int share,
                                         const WideString& prefix) {
  Deletion deletion(*mainContainer);
  return corvel::MarkDependentsToDelete(*mainContainer, deletion, deletePairs,
                                        {progress_, share, prefix});
}

bool IfcDocument::RemoveUnsavedEntities(ProgressCallback progress, int share,
                                        const WideString& prefix) {
  if (progress == nullptr && !HasUndecided(*mainContainer)) return true;
  Deletion deletion(*mainContainer);
  return corvel::RemoveUnsavedEntities(*mainContainer, deletion, {progress, share, prefix});
}

}  // namespace corvel
