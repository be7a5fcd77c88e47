// The step of the marking that removes what cannot exist without what was deleted.

#include <algorithm>
#include <cstddef>
#include <queue>
#include <utility>
#include <vector>

#include "core/carried.h"
#include "merge/marking.h"

namespace corvel {

namespace {

constexpr int kLastTick = 50;

bool LacksMandatoryChild(const IFC::IfcEntity& entity, IFC::ChildQueue& children) {
  entity.CollectAllChildren(children);
  while (!children.IsEmpty()) {
    const IFC::ChildRef child = children.TakeBack();
    if (child.entity == nullptr || child.canLose || !IsDeleted(*child.entity)) continue;
    children.Clear();
    return true;
  }
  return false;
}

struct IsBehind {
  bool operator()(const IFC::IfcEntity* a, const IFC::IfcEntity* b) const {
    return PlaceOf(*a) > PlaceOf(*b);
  }
};

// Passes over the model in ascending number until one of them deletes nothing. A pass behind the
// first looks only at entities of which a child was deleted since they were looked at: the others
// would come out as before. So the whole costs about one pass, however many the order of the
// records makes necessary.
class Passes {
 public:
  Passes(IFC::MainContainer& container, Deletion& deletion, const Stage& stage)
      : entityCount_(container.entities.Size()),
        deletion_(deletion),
        ticks_(stage.CountedTo(kLastTick, false), entityCount_ / kLastTick * 2, kLastTick + 1) {}

  bool Run() {
    bool goesOn = FirstPass();
    while (goesOn && changed_) goesOn = LaterPass();
    return goesOn;
  }

 private:
  // The entity with the lowest place first; an entity may be in it more than once.
  using WorkList = std::priority_queue<IFC::IfcEntity*, std::vector<IFC::IfcEntity*>, IsBehind>;

  bool FirstPass() {
    for (const Deletion::Placed& at : deletion_.Undecided()) {
      if (!ticks_.UpTo(at.place)) return false;
      LookAt(*at.entity);
    }
    return ticks_.UpTo(entityCount_);
  }

  bool LaterPass() {
    changed_ = false;
    thisPass_ = std::exchange(nextPass_, {});
    ticks_.StartPass();
    while (!thisPass_.empty()) {
      IFC::IfcEntity* const entity = thisPass_.top();
      // As often as it was put in.
      while (!thisPass_.empty() && thisPass_.top() == entity) thisPass_.pop();
      if (!ticks_.UpTo(PlaceOf(*entity))) return false;
      LookAt(*entity);
    }
    return ticks_.UpTo(entityCount_);
  }

  void LookAt(IFC::IfcEntity& entity) {
    if (!IsUndecided(entity) || !MustGo(entity)) return;
    deletion_.DeleteWithOrphans(entity);
    changed_ = true;
    LookAgainAtParentsOf(entity);
  }

  bool MustGo(const IFC::IfcEntity& entity) {
    const bool hasLostMembers = entity.hasNoLiveMembers() && !CarriesLiveObject(entity);
    if (hasLostMembers || !deletion_.AnyIsDeleted()) return hasLostMembers;
    return LacksMandatoryChild(entity, children_);
  }

  void LookAgainAtParentsOf(const IFC::IfcEntity& entity) {
    for (IFC::IfcEntity* const parent : entity.parents.Members()) {
      if (!IsUndecided(*parent)) continue;
      // Ahead of this pass it has its turn still; behind it waits for the next.
      (PlaceOf(*parent) > PlaceOf(entity) ? thisPass_ : nextPass_).push(parent);
    }
  }

  std::size_t entityCount_;
  Deletion& deletion_;
  PassTicks ticks_;
  bool changed_ = false;
  WorkList thisPass_;
  WorkList nextPass_;
  IFC::ChildQueue children_;
};

}  // namespace

bool DeleteParentsOfDeleted(IFC::MainContainer& container, Deletion& deletion, const Stage& stage) {
  return Passes(container, deletion, stage).Run();
}

}  // namespace corvel
