// The last step of the marking: of what is undecided, only that stays which hangs together with
// something saved.
//
// An undecided entity is linked when a way along parents and children, over undecided entities
// only, leads to a saved one. One that is not linked goes, with all that it hangs together with.
// One that is linked goes too if it is of a class that has links through what it shares with
// others, and all its parents are deleted; and that may cut the links of entities behind it, in
// ascending number.
//
// Asking each entity by a search of its own is quadratic. But who is cut off by whom can be known
// beforehand: entities of those classes with deleted parents go when their turn comes, linked or
// not. So a first run tells when each entity will go at the latest (Removals); then the best way of
// each entity to a saved one, which is the way whose first cut comes last, tells until when it is
// linked (Links); and then each turn is decided by a comparison.

#include <algorithm>
#include <cstdint>
#include <queue>
#include <unordered_map>
#include <utility>
#include <vector>

#include "merge/marking.h"

namespace corvel {

namespace {

constexpr std::size_t kTicks = 100;
constexpr int kLastTick = 100;

// Values of IfcEntity::walkResult in this step.
constexpr std::uint8_t kNotReached = 0;
constexpr std::uint8_t kReached = 1;
constexpr std::uint8_t kToBeRemoved = 2;
constexpr std::uint8_t kAwaited = 4;  // not reached, and among those that all have to be

// A moment is the place of the entity whose turn it is. In the visit stamp it stands above all that
// walks stamp with.
using Moment = std::uint32_t;
constexpr Moment kFirstMoment = 0x80000000u;
constexpr Moment kNever = 0xFFFFFFFFu;

// Linked to saved entities by what they share with them, so that their own parents decide.
bool IsLinkedByItsChildren(const IFC::IfcEntity& entity) {
  return ClassIs(entity, u"IfcAxis2Placement3D") ||
         ClassIs(entity, u"IfcConnectionSurfaceGeometry");
}

bool HasLostItsParents(IFC::IfcEntity& entity) {
  return !entity.parents.IsEmpty() && Deletion::IsOrphan(entity) && IsLinkedByItsChildren(entity);
}

// Until when each undecided entity is linked.
class Links {
 public:
  explicit Links(Deletion& deletion) : deletion_(deletion) {}

  void Find() {
    ScheduleRemovals();
    FindNeighboursOfSaved();
    Spread();
  }

  static bool IsLinked(const IFC::IfcEntity& entity, Moment now) {
    return entity.walkResult == kReached && entity.visitStamp >= now;
  }

 private:
  // The moment of an entity is when it will be removed, kNever for most.
  void ScheduleRemovals() {
    deletion_.StartRecord();
    std::size_t recorded = 0;
    for (const auto [entity, place] : deletion_.Undecided()) {
      if (!IsUndecided(*entity) || !HasLostItsParents(*entity)) continue;
      deletion_.DeleteWithOrphans(*entity);
      for (; recorded < deletion_.Record().size(); ++recorded) {
        deletion_.Record()[recorded]->walkResult = kToBeRemoved;
        deletion_.Record()[recorded]->visitStamp = kFirstMoment + place;
      }
    }
    removed_ = deletion_.Record();
    deletion_.Undo();
  }

  void FindNeighboursOfSaved() {
    for (const Deletion::Placed& at : deletion_.Undecided()) {
      if (!IsUndecided(*at.entity)) continue;
      if (Prepare(*at.entity)) Reach(*at.entity, kNever);
    }
    for (IFC::IfcEntity* const value : values_) {
      if (IsNextToSaved(*value)) Reach(*value, kNever);
      valueQueue_.Clear();
    }
    for (IFC::IfcEntity* const entity : removed_) {
      if (entity->walkResult == kToBeRemoved) entity->walkResult = kNotReached;
    }
  }

  // Sets the moment of an entity and of the values in its record. True when a neighbour is saved.
  bool Prepare(IFC::IfcEntity& entity) {
    SetMoment(entity);
    if (entity.walkResult == kNotReached) {
      entity.walkResult = kAwaited;
      ++awaited_;
    }
    const bool found = IsNextToSaved(entity);
    while (!valueQueue_.IsEmpty()) {
      IFC::IfcEntity* const child = valueQueue_.TakeBack().entity;
      if (child == nullptr || !child->inlineValue || !IsUndecided(*child)) continue;
      SetMoment(*child);
      NoteReferencesOf(*child);
      child->CollectAllChildren(valueQueue_);
    }
    return found;
  }

  static void SetMoment(IFC::IfcEntity& entity) {
    if (entity.walkResult == kToBeRemoved) return;
    entity.walkResult = kNotReached;
    entity.visitStamp = kNever;
  }

  // A value that refers to an entity is not among that one's parents.
  void NoteReferencesOf(IFC::IfcEntity& value) {
    value.CollectAllChildren(children_);
    if (!children_.IsEmpty()) values_.push_back(&value);
    while (!children_.IsEmpty()) {
      const IFC::IfcEntity* const child = children_.TakeBack().entity;
      if (child != nullptr) valuesWithReference_.emplace(child, &value);
    }
  }

  // Appends the values in its record.
  bool IsNextToSaved(const IFC::IfcEntity& entity) {
    const auto parents = entity.parents.Members();
    bool found = std::any_of(parents.begin(), parents.end(),
                             [](const IFC::IfcEntity* parent) { return IsSaved(*parent); });
    entity.CollectAllChildren(children_);
    while (!children_.IsEmpty()) {
      IFC::IfcEntity* const child = children_.TakeBack().entity;
      if (child == nullptr) continue;
      found = found || IsSaved(*child);
      if (child->inlineValue) valueQueue_.Append(child, false);
    }
    return found;
  }

  // There is a way from the entity on that is not cut before `moment`.
  void Reach(IFC::IfcEntity& entity, Moment moment) {
    if (!IsUndecided(entity) || entity.walkResult == kReached) return;
    const Moment cut = std::min(moment, entity.visitStamp);
    if (cut == kNever) {
      Note(entity, kNever);
      uncut_.push_back(&entity);
    } else {
      cut_.emplace(cut, &entity);
    }
  }

  void Note(IFC::IfcEntity& entity, Moment moment) {
    if (entity.walkResult == kAwaited) --awaited_;
    entity.walkResult = kReached;
    entity.visitStamp = moment;
  }

  // The ways that are cut last come first, so that the first one to reach an entity is its best.
  // Once all are reached, as they mostly are, what is left of the ways leads to nobody new.
  void Spread() {
    for (std::size_t i = 0; i < uncut_.size() && !AllAreReached(); ++i) Pass(*uncut_[i], kNever);
    while (!cut_.empty() && !AllAreReached()) {
      const auto [moment, entity] = cut_.top();
      cut_.pop();
      if (entity->walkResult == kReached) continue;
      Note(*entity, moment);
      Pass(*entity, moment);
    }
  }

  bool AllAreReached() const { return awaited_ == 0 && removed_.empty(); }

  // Everything that the entity is a parent or a child of has a way over it.
  void Pass(IFC::IfcEntity& entity, Moment moment) {
    for (IFC::IfcEntity* const parent : entity.parents.Members()) Reach(*parent, moment);
    const auto [first, last] = valuesWithReference_.equal_range(&entity);
    for (auto value = first; value != last; ++value) Reach(*value->second, moment);
    if (entity.inlineValue) return;
    entity.CollectAllChildren(children_);
    while (!children_.IsEmpty()) {
      IFC::IfcEntity* const child = children_.TakeBack().entity;
      if (child != nullptr) Reach(*child, moment);
    }
  }

  Deletion& deletion_;
  std::vector<IFC::IfcEntity*> removed_;
  std::vector<IFC::IfcEntity*> values_;  // with references
  std::unordered_multimap<const IFC::IfcEntity*, IFC::IfcEntity*> valuesWithReference_;
  std::size_t awaited_ = 0;
  std::vector<IFC::IfcEntity*> uncut_;  // reached by a way without end, in that order
  std::priority_queue<std::pair<Moment, IFC::IfcEntity*>> cut_;
  IFC::ChildQueue children_;
  IFC::ChildQueue valueQueue_;
};

class UnsavedEntities {
 public:
  explicit UnsavedEntities(Deletion& deletion) : deletion_(deletion) {}

  bool Remove(std::size_t entityCount, const Stage& stage) {
    Links(deletion_).Find();
    PassTicks ticks(stage.CountedTo(kLastTick, false),
                    std::max<std::size_t>(entityCount / kTicks, 1), kLastTick);
    for (const auto [entity, place] : deletion_.Undecided()) {
      if (!ticks.UpTo(place)) return false;
      if (IsUndecided(*entity)) Decide(*entity, kFirstMoment + place);
    }
    return ticks.UpTo(entityCount);
  }

 private:
  void Decide(IFC::IfcEntity& entity, Moment now) {
    if (!Links::IsLinked(entity, now)) {
      DeleteTree(entity);
    } else if (HasLostItsParents(entity)) {
      deletion_.DeleteWithOrphans(entity);
    }
  }

  // All undecided entities that it hangs together with.
  void DeleteTree(IFC::IfcEntity& root) {
    queue_.Append(&root, true);
    while (!queue_.IsEmpty()) {
      IFC::IfcEntity* const entity = queue_.TakeBack().entity;
      if (entity == nullptr || !IsUndecided(*entity)) continue;
      deletion_.Delete(*entity);
      for (IFC::IfcEntity* const parent : entity->parents.Members()) queue_.Append(parent, true);
      entity->CollectAllChildren(queue_);
    }
  }

  Deletion& deletion_;
  IFC::ChildQueue queue_;
};

}  // namespace

bool RemoveUnsavedEntities(IFC::MainContainer& container, Deletion& deletion, const Stage& stage) {
  return UnsavedEntities(deletion).Remove(container.entities.Size(), stage);
}

}  // namespace corvel
