// What the steps of the marking share. While a model is marked, the marker of an entity tells its
// fate: 0 not decided, kToSave, or kDeleted.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/entity.h"
#include "core/main_container.h"
#include "core/reporting.h"
#include "core/text.h"
#include "core/ticker.h"
#include "merge/marker_pair.h"
#include "merge/marking_steps.h"

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

// The progress ticks of a step that passes over the entities of a model, often more than once. The
// step visits few entities and skips the rest; skipped ones count as well. A tick is due after
// every `block` entities, and a step sends `tickCount` ticks at most, all its passes together.
class PassTicks {
 public:
  PassTicks(const Stage& stage, std::size_t block, int tickCount)
      : ticker_(stage, {.block = block, .most = tickCount}) {}

  void StartPass() { done_ = 0; }
  // The ticks of the places before `place`, of this pass. False when the user cancelled.
  bool UpTo(std::size_t place) {
    const std::size_t pieces = place - done_;
    done_ = place;
    return ticker_.Advance(pieces);
  }

 private:
  Ticker ticker_;
  std::size_t done_ = 0;  // places of this pass
};

// The place of an entity: its index when the entities of the model are ordered by number. Stored in
// the visit stamps by the constructor of Deletion, so valid until something else writes those.
std::uint32_t PlaceOf(const IFC::IfcEntity& entity);

// Deletes entities one by one and keeps track of which entities have lost all their parents.
//
// Meanwhile no other code may undelete entities of the model or add any.
class Deletion {
 public:
  struct Placed {
    IFC::IfcEntity* entity = nullptr;
    std::uint32_t place = 0;
  };

  // The parents lists of the model are filled.
  explicit Deletion(IFC::MainContainer& container);

  // The entities that were undecided at construction, by ascending number. No entity becomes
  // undecided that was not so then: the steps need to look at these only.
  const std::vector<Placed>& Undecided() const { return undecided_; }

  // All parents of the entity are deleted, or it never had one.
  static bool IsOrphan(IFC::IfcEntity& entity);

  // To be called before the first deletion by those who know that neither an entity of the model
  // nor a value in its record is deleted.
  void NoteNothingIsDeleted() { anyIsDeleted_ = false; }
  // True as long as nobody knows better.
  bool AnyIsDeleted() const { return anyIsDeleted_; }

  // Deletes the entity, even one that is marked to be saved.
  void Delete(IFC::IfcEntity& entity);
  // Deletes the entity, then DeleteChildrenOf it.
  void DeleteWithOrphans(IFC::IfcEntity& entity);
  // Deletes those children of the entity that are undecided and orphans, then likewise the children
  // of each deleted child.
  void DeleteChildrenOf(IFC::IfcEntity& entity);

  // Starts an empty list of deleted entities; each later deletion is added to it. Undo makes all
  // entities of the list undecided again.
  void StartRecord();
  const std::vector<IFC::IfcEntity*>& Record() const { return record_; }
  void Undo();

 private:
  std::vector<Placed> undecided_;
  IFC::ChildQueue children_;
  IFC::ChildQueue orphans_;
  bool anyIsDeleted_ = true;
  bool isRecording_ = false;
  bool anyWasDeleted_ = true;  // when the record was begun
  std::vector<IFC::IfcEntity*> record_;
};

// The steps of the marking, in their order; see IfcDocument::DeleteObjects, which is all of them.
// They look up objects by original number and skip numbers that the model does not have. Those with
// a result give false when the user cancelled.

// Marks the objects as deleted, and what they refer to directly.
void MarkEntitiesAndChildrenToDelete(IFC::MainContainer& container,
                                     const std::vector<MarkerPair>& deletePairs);
// Marks as saved the objects, all that they refer to by whatever way, and the host's parents above
// them with what these cannot do without. Takes back marks of the step before.
void MarkEntitiesAndChildrenAndParentsToSave(IFC::MainContainer& container,
                                             const std::vector<MarkerPair>& savePairs,
                                             const std::vector<MarkerPair>& deletePairs);
// Marks all that hangs together with the project as saved. False (reported) without one.
bool DeleteUnrelatedObjects(IFC::MainContainer& container, const IFC::IfcEntity* project,
                            ErrorReporter showError);
// Everything that hangs together with `entity` over its parents, or over what it refers to.
void VisitParentsAndSave(IFC::MainContainer& container, const IFC::IfcEntity& entity);
void VisitChildrenAndSave(IFC::MainContainer& container, const IFC::IfcEntity& entity);
// The rest need the parents lists; those that take a Deletion share one.
//
// Deletes what has lost a mandatory reference or the last member of a list that it lives on, until
// nothing more has.
bool DeleteParentsOfDeleted(IFC::MainContainer& container, Deletion& deletion, const Stage& stage);
// Takes the openings out of the list of which the parent is not deleted.
void RemoveOpeningsFromDeleteList(const IFC::MainContainer& container,
                                  std::vector<MarkerPair>& deletePairs);
// Of the objects in the list: deletes the property relations none of whose objects is left, with
// their sets, and the shapes of sites.
bool MarkDependentsToDelete(IFC::MainContainer& container, Deletion& deletion,
                            const std::vector<MarkerPair>& deletePairs, const Stage& stage);
// Deletes what is undecided and hangs together with nothing that is saved.
bool RemoveUnsavedEntities(IFC::MainContainer& container, Deletion& deletion, const Stage& stage);
// With a Deletion of its own. A silent stage costs a walk where nothing is undecided.
bool RemoveUnsavedEntities(IFC::MainContainer& container, const Stage& stage);

// What is to be marked, and how. The lists are changed on the way.
struct MarkingOrder {
  std::vector<MarkerPair>& deletePairs;
  std::vector<MarkerPair>& savePairs;
  bool deleteUnrelated = false;  // what doesn't hang together with `project` goes
  bool deleteOpenings = false;   // all openings go
  int fileCount = 1;             // models of the run, for the progress
  ProgressCallback progress = nullptr;
  const IFC::IfcEntity* project = nullptr;  // looked at for `deleteUnrelated` alone
  ErrorReporter showError = nullptr;
  const MarkingListener* listener = nullptr;
};
// All of it, as IfcDocument::DeleteObjects.
bool DeleteObjects(IFC::MainContainer& container, const MarkingOrder& order);

}  // namespace corvel
