// The step of the marking that removes what cannot exist without what was deleted.

#include <algorithm>
#include <cstddef>
#include <queue>
#include <utility>
#include <vector>

#include "merge/marking.h"

namespace corvel {

namespace {

constexpr int kLastTick = 50;

bool LacksMandatoryChild(const IFC::IfcEntity& entity, IFC::ChildQueue& children) {
  entity.collectChildren(children);
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
  Passes(IFC::MainContainer& container, Deletion& deletion, const MarkingProgress& progress)
      : container_(container),
        deletion_(deletion),
        progress_(progress),
        ticks_(container.entities.Size() / kLastTick * 2) {}

  bool Run() {
    NumberPlaces(container_);
    bool goesOn = FirstPass();
    while (goesOn && changed_) goesOn = LaterPass();
    return goesOn;
  }

 private:
  // The entity with the lowest place first; an entity may be in it more than once.
  using WorkList = std::priority_queue<IFC::IfcEntity*, std::vector<IFC::IfcEntity*>, IsBehind>;

  bool FirstPass() {
    for (const auto& at : container_.entities) {
      if (!LookAt(*at.entity)) return false;
    }
    return true;
  }

  bool LaterPass() {
    changed_ = false;
    thisPass_ = std::exchange(nextPass_, {});
    done_ = 0;
    while (!thisPass_.empty()) {
      IFC::IfcEntity* const entity = thisPass_.top();
      while (!thisPass_.empty() && thisPass_.top() == entity) thisPass_.pop();
      if (!TickUpTo(PlaceOf(*entity)) || !LookAt(*entity)) return false;
    }
    return TickUpTo(container_.entities.Size());
  }

  bool LookAt(IFC::IfcEntity& entity) {
    if (IsUndecided(entity) && MustGo(entity)) {
      deletion_.DeleteWithOrphans(entity);
      changed_ = true;
      LookAgainAtParentsOf(entity);
    }
    return TickUpTo(done_ + 1);
  }

  bool MustGo(const IFC::IfcEntity& entity) {
    return entity.hasNoLiveMembers() || LacksMandatoryChild(entity, children_);
  }

  void LookAgainAtParentsOf(const IFC::IfcEntity& entity) {
    for (IFC::IfcEntity* const parent : entity.parents.Members()) {
      if (!IsUndecided(*parent)) continue;
      (PlaceOf(*parent) > PlaceOf(entity) ? thisPass_ : nextPass_).push(parent);
    }
  }

  // The ticks of the entities of this pass up to a place.
  bool TickUpTo(std::size_t place) {
    while (done_ < place && step_ <= kLastTick) {
      const std::size_t pieces = std::min(place - done_, ticks_.Left());
      done_ += pieces;
      if (ticks_.Advance(pieces) && !progress_.Tick(++step_, false, kLastTick)) return false;
    }
    done_ = place;
    return true;
  }

  IFC::MainContainer& container_;
  Deletion& deletion_;
  const MarkingProgress& progress_;
  TickCounter ticks_;
  int step_ = 0;
  std::size_t done_ = 0;  // entities of this pass
  bool changed_ = false;
  WorkList thisPass_;
  WorkList nextPass_;
  IFC::ChildQueue children_;
};

}  // namespace

bool DeleteParentsOfDeleted(IFC::MainContainer& container, Deletion& deletion,
                            const MarkingProgress& progress) {
  return Passes(container, deletion, progress).Run();
}

}  // namespace corvel
