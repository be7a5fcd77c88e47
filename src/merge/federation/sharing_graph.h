// What in one model ties objects to their place: owners, relations that only point at them, and
// sets in which they must not become one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <tuple>
#include <utility>
#include <vector>

#include "core/child_queue.h"
#include "core/ticker.h"
#include "merge/federation/federated_model.h"
#include "merge/federation/sharing_plan.h"
#include "schema/attributes.h"

namespace corvel {

// What is known of an object while equal ones are looked for.
enum class SharingMark : std::uint32_t {
  kCandidate = 1,  // in the model, and of a class whose objects may become one
  kOwned = 2,      // by one owner
  kDescribed = 4,  // something only points at it
  kPinned = 8,     // stays by itself
  // Of one pass over the objects:
  kOpen = 16,
  kDone = 32,
  kLone = 64,          // as kPinned
  kRefersToGone = 128  // to a candidate by one that gave way to it
};

// Takes no memory of its own: marks stand in the stamps of the objects, so that no other walk may
// use these meanwhile.
class SharingMarks {
 public:
  SharingMarks();

  bool Has(const IFC::IfcEntity& entity, SharingMark mark) const {
    return (MarksOf(entity) & static_cast<std::uint32_t>(mark)) != 0;
  }
  void Set(IFC::IfcEntity& entity, SharingMark mark) const {
    entity.visitStamp = first_ + (MarksOf(entity) | static_cast<std::uint32_t>(mark));
  }
  void ForgetPass(IFC::IfcEntity& entity) const {
    constexpr std::uint32_t kOfObject = 15;
    entity.visitStamp = first_ + (MarksOf(entity) & kOfObject);
  }

 private:
  static constexpr std::uint32_t kStamps = 256;
  std::uint32_t MarksOf(const IFC::IfcEntity& entity) const {
    const std::uint32_t marks = entity.visitStamp - first_;
    return marks < kStamps ? marks : 0;
  }

  std::uint32_t first_;
};

class SharingGraph {
 public:
  // A relation that only points at an object, by their numbers.
  struct Description {
    std::uint32_t described = 0;
    std::uint32_t describing = 0;
    std::uint32_t end = 0;  // which of the attributes that describe (SharingPlan::described)
    bool operator<(const Description& other) const {
      return std::tie(described, describing, end) <
             std::tie(other.described, other.describing, other.end);
    }
  };

  // Borrowed. Markers are true.
  explicit SharingGraph(FederatedModel& model) : model_(model) {}

  // Once, first. False: the user cancelled.
  bool Gather(Ticker& ticker);
  // Of members of one set that have the same marker, pins all but the first. False: the user
  // cancelled.
  bool PinEqualMembers(Ticker& ticker, std::size_t& pinned);

  const SharingMarks& Marks() const { return marks_; }
  SharingPlans& Plans() { return plans_; }
  const SharingPlan& PlanOf(const IFC::IfcEntity& entity) { return plans_.Of(entity); }
  std::size_t CandidateCount() const { return candidates_; }
  // By the number that the object is filed under, in ascending order.
  std::span<const Description> DescriptionsOf(std::uint32_t number) const;
  // The object in the model that a reference leads to; null for none.
  IFC::IfcEntity* Target(IFC::IfcEntity* referred) const;

  // Calls `action` with each object that an attribute refers to, also in typed values; deleted ones
  // are left out.
  template <class Action>
  void ForEachReferred(IFC::IfcEntity& entity, const AttributeFacts& facts, Action action) {
    Attribute(entity, facts).ForEach<IFC::IfcEntity*>([&](IFC::IfcEntity* referred) {
      if (referred == nullptr || referred->marker == IFC::kDeleted) return;
      if (!referred->inlineValue) {
        action(*referred);
      } else if (!plans_.Of(*referred).references.empty()) {
        ForEachInValue(*referred, action);
      }
    });
  }

 private:
  template <class Action>
  void ForEachInValue(const IFC::IfcEntity& value, Action& action) {
    IFC::ChildQueue children;
    value.CollectAllChildren(children);
    while (!children.IsEmpty()) {
      IFC::IfcEntity* const child = children.TakeBack().entity;
      if (child == nullptr || child->marker == IFC::kDeleted) continue;
      if (child->inlineValue) {
        child->CollectAllChildren(children);
      } else {
        action(*child);
      }
    }
  }
  void GatherFrom(std::uint32_t number, IFC::IfcEntity& entity);
  void PinAllReferred(const IFC::IfcEntity& entity);
  void NoteOwned(IFC::IfcEntity& member) const;
  std::size_t PinEqual(const EntityList& members);

  FederatedModel& model_;
  SharingMarks marks_;
  SharingPlans plans_;
  std::size_t candidates_ = 0;
  std::vector<Description> descriptions_;
  std::vector<std::pair<std::uint32_t, std::size_t>> members_;  // marker and place
};

}  // namespace corvel
