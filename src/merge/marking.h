// What the steps of the marking share. While a model is marked, the marker of an entity tells its
// fate: 0 not decided, kToSave, or kDeleted.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "core/document.h"
#include "core/entity.h"
#include "core/main_container.h"
#include "core/reporting.h"
#include "core/text.h"

namespace corvel {

inline bool IsDeleted(const IFC::IfcEntity& entity) { return entity.marker == IFC::kDeleted; }
inline bool IsUndecided(const IFC::IfcEntity& entity) { return entity.marker == IFC::kUnfiled; }
inline bool IsSaved(const IFC::IfcEntity& entity) { return entity.marker == IFC::kToSave; }

inline bool ClassIs(const IFC::IfcEntity& entity, WideView name) {
  return entity.getClassName() == name;
}

// The progress of one step.
struct MarkingProgress {
  ProgressCallback callback = nullptr;  // may be null: silent
  int share = 0;
  const WideString& prefix;

  // False when the user pressed cancel and confirmed it.
  bool Tick(int value, bool exactMode, int maximum) const {
    return callback == nullptr || callback(value, share, &prefix, exactMode, maximum) ||
           !AskCancelQuestion(SharedCancelTexts());
  }
};

// Says at which of many equal pieces of work a tick is due: at every `block`th, never for block 0.
class TickCounter {
 public:
  explicit TickCounter(std::size_t block) : block_(block), left_(block) {}

  // The number of pieces from here to the next tick.
  std::size_t Left() const { return block_ == 0 ? std::numeric_limits<std::size_t>::max() : left_; }
  // After `pieces` more, at most Left(): true when the tick is due.
  bool Advance(std::size_t pieces = 1) {
    if (block_ == 0 || (left_ -= pieces) != 0) return false;
    left_ = block_;
    return true;
  }

 private:
  std::size_t block_;
  std::size_t left_;
};

// Gives the entities of the model their places in the order of the numbers, for walks that need
// that order and have an entity at hand. Void after anything else that uses the visit stamp.
void NumberPlaces(IFC::MainContainer& container);
std::uint32_t PlaceOf(const IFC::IfcEntity& entity);

// Deletes entities one by one and knows at every moment who has a parent left.
//
// Holds as long as nothing else deletes or brings back entities of the model, and nothing is added.
class Deletion {
 public:
  // The parents lists of the model are filled.
  explicit Deletion(IFC::MainContainer& container);

  // True also for an entity that never had a parent.
  static bool IsOrphan(const IFC::IfcEntity& entity) { return entity.liveParents == 0; }

  // Deletes the entity, saved or not.
  void Delete(IFC::IfcEntity& entity);
  // The same, and what became an orphan by it.
  void DeleteWithOrphans(IFC::IfcEntity& entity);
  // Deletes the children that are orphans and not saved, and in turn theirs.
  void DeleteChildrenOf(IFC::IfcEntity& entity);
  void DeleteIfOrphan(IFC::IfcEntity* entity);  // null: nothing

  // From here on it is written down who is deleted; Undo brings them back, undecided.
  void StartRecord();
  const std::vector<IFC::IfcEntity*>& Record() const { return record_; }
  void Undo();

 private:
  void DeleteQueuedOrphans();

  IFC::ChildQueue children_;
  IFC::ChildQueue orphans_;
  bool isRecording_ = false;
  std::vector<IFC::IfcEntity*> record_;
};

// The steps of IfcDocument::DeleteObjects that share one Deletion.
bool DeleteParentsOfDeleted(IFC::MainContainer& container, Deletion& deletion,
                            const MarkingProgress& progress);
bool MarkDependentsToDelete(IFC::MainContainer& container, Deletion& deletion,
                            const std::vector<MarkerPair>& deletePairs,
                            const MarkingProgress& progress);
bool RemoveUnsavedEntities(IFC::MainContainer& container, Deletion& deletion,
                           const MarkingProgress& progress);

}  // namespace corvel
