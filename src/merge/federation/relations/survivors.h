// Objects that others gave way to.
#pragma once

#include <cstddef>
#include <cstdint>

#include "core/open_table.h"
#include "merge/federation/federated_model.h"

namespace corvel {

// Those with a GUID, which may stand in a relation or have one.
class Survivors {
 public:
  // What gives way later is not among them.
  explicit Survivors(const FederatedModel& model);

  bool IsEmpty() const { return isEmpty_; }
  // Takes what stands in the model, and null.
  bool Contain(const IFC::IfcEntity* object) const {
    const Slot* const found = Find(object);
    return found != nullptr && found->isSurvivor;
  }
  // Whether something stands for the object, with a GUID or not. Projects count as such.
  bool HasGivenWay(const IFC::IfcEntity* object) const {
    const Slot* const found = Find(object);
    return found != nullptr && found->hasGivenWay;
  }
  // Whether one of them may stand for the object, in the model or not: false for nearly all, which
  // are not looked at for that.
  bool MayStandFor(const IFC::IfcEntity* object) const { return Find(object) != nullptr; }

 private:
  struct Slot {
    const IFC::IfcEntity* object = nullptr;
    bool isSurvivor = false;
    bool hasGivenWay = false;

    bool IsFree() const { return object == nullptr; }
    std::size_t Hash() const { return HashOf(object); }
  };
  static std::size_t HashOf(const IFC::IfcEntity* object) {
    constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15ull;
    return static_cast<std::size_t>((reinterpret_cast<std::uintptr_t>(object) * kMultiplier) >> 32);
  }

  const Slot* Find(const IFC::IfcEntity* object) const {
    return known_.Find(HashOf(object), [=](const Slot& slot) { return slot.object == object; });
  }
  Slot& At(const IFC::IfcEntity& object);

  OpenTable<Slot, 64> known_;
  bool isEmpty_ = true;
};

}  // namespace corvel
