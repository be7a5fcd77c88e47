// The work list of every walk over a model.
#pragma once

#include <cstddef>
#include <vector>

namespace IFC {

class IfcEntity;

// One thing that an object refers to. `canLose` is false for a mandatory single reference and true
// for an optional one and for every member of a list.
struct ChildRef {
  IfcEntity* entity = nullptr;
  bool canLose = false;
};

// Children are appended at the back and walkers take them from the back.
class ChildQueue {
 public:
  void Append(IfcEntity* entity, bool canLose) { items_.push_back({entity, canLose}); }
  // Not for an empty queue.
  ChildRef TakeBack() {
    const ChildRef last = items_.back();
    items_.pop_back();
    return last;
  }
  bool IsEmpty() const { return items_.empty(); }
  std::size_t Size() const { return items_.size(); }
  const ChildRef& operator[](std::size_t index) const { return items_[index]; }
  // Keeps its storage for the next walk.
  void Clear() { items_.clear(); }

 private:
  std::vector<ChildRef> items_;
};

}  // namespace IFC
