// What the steps of the marking share. While a model is marked, the marker of an entity tells its
// fate: 0 not decided, kToSave, or kDeleted.
#pragma once

#include <algorithm>
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

// Compared letter by letter, since most names differ soon.
inline bool ClassIs(const IFC::IfcEntity& entity, WideView name) {
  const char16_t* at = entity.getClassName();
  for (const char16_t letter : name) {
    if (*at++ != letter) return false;
  }
  return *at == 0;
}

// The progress of one step.
struct MarkingProgress {
  ProgressCallback callback = nullptr;  // may be null: silent
  int share = 0;
  const WideString& prefix;

  // False when the user pressed cancel and confirmed it. A value that rounding has brought above
  // the maximum is sent as the maximum.
  bool Tick(int value, bool exactMode, int maximum) const {
    return callback == nullptr ||
           callback(std::min(value, maximum), share, &prefix, exactMode, maximum) ||
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

// The ticks of passes over the places of a model of which few are looked at: a tick is due behind
// every `block`th place, `tickCount` of them at most in all passes.
class PassTicks {
 public:
  PassTicks(const MarkingProgress& progress, std::size_t block, int tickCount, int maximum)
      : progress_(progress), counter_(block), tickCount_(tickCount), maximum_(maximum) {}

  void StartPass() { done_ = 0; }
  // The ticks of the places before `place`, of this pass. False when the user cancelled.
  bool UpTo(std::size_t place) {
    while (done_ < place && step_ < tickCount_) {
      const std::size_t pieces = std::min(place - done_, counter_.Left());
      done_ += pieces;
      if (counter_.Advance(pieces) && !progress_.Tick(++step_, false, maximum_)) return false;
    }
    done_ = place;
    return true;
  }

 private:
  const MarkingProgress& progress_;
  TickCounter counter_;
  int tickCount_;
  int maximum_;
  int step_ = 0;
  std::size_t done_ = 0;  // places of this pass
};

// The place of an entity of the model in the order of the numbers. Known from the making of a
// Deletion until anything else uses the visit stamp.
std::uint32_t PlaceOf(const IFC::IfcEntity& entity);

// Deletes entities one by one and knows at every moment who has a parent left.
//
// Holds as long as nothing else brings back entities of the model, and nothing is added.
class Deletion {
 public:
  struct Placed {
    IFC::IfcEntity* entity = nullptr;
    std::uint32_t place = 0;
  };

  // The parents lists of the model are filled.
  explicit Deletion(IFC::MainContainer& container);

  // Those who were undecided at the start, in the order of the numbers. Nobody becomes undecided
  // later, so the steps look at these alone.
  const std::vector<Placed>& Undecided() const { return undecided_; }

  // True also for an entity that never had a parent.
  static bool IsOrphan(IFC::IfcEntity& entity);

  // Deletes the entity, saved or not.
  void Delete(IFC::IfcEntity& entity);
  // The same, and what became an orphan by it.
  void DeleteWithOrphans(IFC::IfcEntity& entity);
  // Deletes the children that are orphans and not saved, and in turn theirs.
  void DeleteChildrenOf(IFC::IfcEntity& entity);

  // From here on it is written down who is deleted; Undo brings them back, undecided.
  void StartRecord();
  const std::vector<IFC::IfcEntity*>& Record() const { return record_; }
  void Undo();

 private:
  std::vector<Placed> undecided_;
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
