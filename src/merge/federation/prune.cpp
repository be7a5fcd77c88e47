#include "merge/federation/prune.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "core/carried.h"
#include "core/child_queue.h"
#include "core/entity_cast.h"
#include "core/root_interfaces.h"
#include "merge/federation/pointing_classes.h"
#include "merge/federation/prefetch_object.h"
#include "schema/attributes.h"

namespace corvel {

namespace {

class Pruner {
 public:
  explicit Pruner(FederatedModel& model) : model_(model) {}

  bool Run(Ticker& ticker, std::size_t& pruned) {
    if (!Gather(ticker)) return false;
    MarkKept();
    for (const auto& [number, entity] : model_.Container().entities) {
      if (entity->marker != IFC::kDeleted) Drop(*entity, pruned);
      if (!ticker.Advance()) return false;
    }
    return true;
  }

  bool RunBehind(const std::vector<IFC::IfcEntity*>& gone, Ticker& ticker, std::size_t& pruned) {
    if (!Gather(ticker)) return false;
    std::vector<IFC::IfcEntity*> belongings = BelongingsOf(gone);
    MarkKept();
    std::erase_if(belongings, [this](const IFC::IfcEntity* entity) { return IsKept(*entity); });
    if (!KeepLoose(belongings, ticker)) return false;
    for (IFC::IfcEntity* const entity : belongings) Drop(*entity, pruned);
    return true;
  }

 private:
  // `pointing` describes `described`. Sorted by address, to be found: what is done with those that
  // are found does not depend on their order.
  struct Pointer {
    IFC::IfcEntity* described = nullptr;
    IFC::IfcEntity* pointing = nullptr;
  };

  void MarkKept() {
    for (const Pointer& pointer : pointers_) pointer.described->visitStamp = described_;
    for (IFC::IfcEntity* const root : roots_) Keep(root);
    KeepAllThatWaits();
  }

  void KeepAllThatWaits() {
    while (!waiting_.empty() || !waitingDescribed_.empty() || countOnTheWay_ != 0) {
      if (!waiting_.empty()) {
        KeepReferred(*TakeBack(waiting_));
      } else if (!waitingDescribed_.empty()) {
        KeepPointersTo(*TakeBack(waitingDescribed_));
      } else {
        TakeAllOnTheWay();
      }
    }
  }

  static IFC::IfcEntity* TakeBack(std::vector<IFC::IfcEntity*>& waiting) {
    IFC::IfcEntity* const entity = waiting.back();
    waiting.pop_back();
    return entity;
  }

  void KeepReferred(IFC::IfcEntity& entity) {
    if (entity.visitStamp == whole_) {
      KeepChildren(entity);
    } else {
      KeepAllButDescribed(entity);
    }
  }

  // What nobody leads to stays all the same unless it goes, with all that it refers to: a
  // sub-context that no shape is in keeps its parent. `going`: sorted here, to be found.
  bool KeepLoose(std::vector<IFC::IfcEntity*> going, Ticker& ticker) {
    if (going.empty()) return true;
    std::sort(going.begin(), going.end());
    for (const auto& [number, entity] : model_.Container().entities) {
      const bool isSettled = entity->marker == IFC::kDeleted || IsKept(*entity);
      if (!isSettled && !std::binary_search(going.begin(), going.end(), entity)) Keep(entity);
      if (!ticker.Advance()) return false;
    }
    KeepAllThatWaits();
    return true;
  }

  void Drop(IFC::IfcEntity& entity, std::size_t& pruned) {
    if (IsKept(entity)) return;
    model_.Delete(entity);
    ++pruned;
  }

  // What is led to without passing anything that stays for its own sake, and what points there.
  std::vector<IFC::IfcEntity*> BelongingsOf(const std::vector<IFC::IfcEntity*>& gone) {
    std::vector<IFC::IfcEntity*> belongings;
    const std::uint32_t belongs = IFC::NextVisitGeneration();
    const auto take = [&](IFC::IfcEntity& entity) {
      if (entity.visitStamp == belongs || !model_.Contains(entity) || IsRoot(entity)) return;
      entity.visitStamp = belongs;
      belongings.push_back(&entity);
    };
    const auto takeChildren = [&](const IFC::IfcEntity& entity) {
      entity.CollectAllChildren(children_);
      while (!children_.IsEmpty()) {
        IFC::IfcEntity* const child = children_.TakeBack().entity;
        if (child == nullptr) continue;
        if (child->inlineValue) {
          child->CollectAllChildren(children_);
        } else {
          take(*child);
        }
      }
    };
    for (const IFC::IfcEntity* const entity : gone) takeChildren(*entity);
    for (std::size_t next = 0; next < belongings.size();) {
      const IFC::IfcEntity& entity = *belongings[next++];
      takeChildren(entity);
      ForEachPointerTo(entity, take);
    }
    return belongings;
  }

  bool Gather(Ticker& ticker) {
    for (const auto& [number, entity] : model_.Container().entities) {
      if (entity->marker != IFC::kDeleted) Gather(*entity);
      if (!ticker.Advance()) return false;
    }
    std::sort(pointers_.begin(), pointers_.end(), [](const Pointer& one, const Pointer& other) {
      return one.described < other.described;
    });
    return true;
  }

  static bool IsRoot(IFC::IfcEntity& entity) {
    return EntityCast<IFC::VirtualIfcRoot>(&entity) != nullptr ||
           EntityCast<IFC::CarriedEntity>(&entity) != nullptr;
  }

  void Gather(IFC::IfcEntity& entity) {
    entity.visitStamp = inModel_;
    if (isRoot_.Of(entity, [&](const ClassFacts*) { return IsRoot(entity); })) {
      roots_.push_back(&entity);
      return;
    }
    for (const AttributeFacts* const facts : pointing_.DescribedBy(entity)) {
      Attribute(entity, *facts).ForEach<IFC::IfcEntity*>([&](IFC::IfcEntity* described) {
        if (auto* const there = InModel(described)) pointers_.push_back({there, &entity});
      });
    }
  }

  // Most objects stand for themselves.
  IFC::IfcEntity* InModel(IFC::IfcEntity* entity) const {
    const bool isThere =
        entity == nullptr || entity->visitStamp == inModel_ || entity->visitStamp == described_;
    return isThere ? entity : model_.InModel(entity);
  }

  bool IsKept(const IFC::IfcEntity& entity) const {
    return entity.visitStamp == whole_ || entity.visitStamp == asPointer_;
  }

  // With all that it refers to.
  void Keep(IFC::IfcEntity* entity) {
    if (entity->visitStamp == whole_) return;
    IFC::IfcEntity* const there = InModel(entity);
    if (there == nullptr || there->visitStamp == whole_) return;
    Mark(*there, whole_);
  }

  // What points at it has its turn later, if there is anything.
  void Mark(IFC::IfcEntity& entity, std::uint32_t stamp) {
    if (entity.visitStamp == described_) waitingDescribed_.push_back(&entity);
    entity.visitStamp = stamp;
    waiting_.push_back(&entity);
  }

  void KeepChildren(const IFC::IfcEntity& entity) {
    entity.CollectAllChildren(children_);
    TakeChildren();
  }

  // Each has its turn when so many others have been met that it has come from the memory.
  void TakeChildren() {
    while (!children_.IsEmpty()) {
      IFC::IfcEntity* const child = children_.TakeBack().entity;
      if (child == nullptr) continue;
      PrefetchObject(child);
      ++countOnTheWay_;
      TakeFromTheWay(std::exchange(onTheWay_[met_++ % onTheWay_.size()], child));
    }
  }

  void TakeAllOnTheWay() {
    for (IFC::IfcEntity*& child : onTheWay_) {
      TakeFromTheWay(std::exchange(child, nullptr));
      TakeChildren();
    }
  }

  void TakeFromTheWay(IFC::IfcEntity* child) {
    if (child == nullptr) return;
    --countOnTheWay_;
    KeepChild(child);
  }

  // A value in a record is no object of the model, but may refer to some.
  void KeepChild(IFC::IfcEntity* entity) {
    if (entity == nullptr) return;
    if (entity->inlineValue) {
      entity->CollectAllChildren(children_);
    } else {
      Keep(entity);
    }
  }

  template <class Action>
  void ForEachPointerTo(const IFC::IfcEntity& described, Action action) {
    auto pointer = std::lower_bound(
        pointers_.begin(), pointers_.end(), &described,
        [](const Pointer& one, const IFC::IfcEntity* other) { return one.described < other; });
    for (; pointer != pointers_.end() && pointer->described == &described; ++pointer) {
      action(*pointer->pointing);
    }
  }

  void KeepPointersTo(const IFC::IfcEntity& described) {
    ForEachPointerTo(described, [this](IFC::IfcEntity& pointing) {
      if (!IsKept(pointing)) Mark(pointing, asPointer_);
    });
  }

  // What a pointer describes beside what it is kept for does not stay for its sake.
  void KeepAllButDescribed(IFC::IfcEntity& pointing) {
    const auto described = pointing_.DescribedBy(pointing);
    for (const Attribute attribute : AttributesOf(pointing)) {
      if (std::find(described.begin(), described.end(), &attribute.Facts()) != described.end()) {
        continue;
      }
      attribute.ForEach<IFC::IfcEntity*>([this](IFC::IfcEntity* child) { KeepChild(child); });
      TakeChildren();
    }
  }

  FederatedModel& model_;
  PointingClasses pointing_;
  PerClass<bool> isRoot_;
  std::vector<IFC::IfcEntity*> roots_;
  std::vector<Pointer> pointers_;
  std::vector<IFC::IfcEntity*> waiting_;           // what they refer to is to be kept
  std::vector<IFC::IfcEntity*> waitingDescribed_;  // what points at them is to be kept
  IFC::ChildQueue children_;
  std::array<IFC::IfcEntity*, 16> onTheWay_{};  // some are null
  std::size_t countOnTheWay_ = 0;
  std::size_t met_ = 0;
  std::uint32_t whole_ = IFC::NextVisitGeneration();
  std::uint32_t asPointer_ = IFC::NextVisitGeneration();
  std::uint32_t inModel_ = IFC::NextVisitGeneration();
  std::uint32_t described_ = IFC::NextVisitGeneration();  // by a pointer, and not kept yet
};

}  // namespace

bool Prune(FederatedModel& model, Ticker& ticker, std::size_t& pruned) {
  return Pruner(model).Run(ticker, pruned);
}

bool PruneLeftBehind(FederatedModel& model, const std::vector<IFC::IfcEntity*>& gone,
                     Ticker& ticker, std::size_t& pruned) {
  return Pruner(model).RunBehind(gone, ticker, pruned);
}

}  // namespace corvel
