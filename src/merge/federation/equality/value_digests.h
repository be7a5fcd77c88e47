// What objects without GUID say, wherever they stand in a model.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/open_table.h"
#include "merge/federation/equality/digest.h"
#include "merge/federation/federated_model.h"

namespace corvel {

// Objects without GUID count by value: by class, attributes, and what stands in the place of each
// reference. One with a GUID is what stands for it in the model, and nothing else. What goes in a
// circle is like nothing else, and so is what carries more than attributes. Each object is looked
// at once, in the order of a list of its own: linear in what is reached.
//
// What is known of an object stays, also when something that it leads to gives way later on.
class ValueDigests {
 public:
  explicit ValueDigests(const FederatedModel& model) : model_(model) {}

  // Of an object of the model, one that gave way or a value in a record. Null has one too.
  Digest Of(IFC::IfcEntity* entity);

 private:
  struct Slot {
    const IFC::IfcEntity* entity = nullptr;
    Digest digest{};  // that of nothing while it has been begun alone

    bool IsFree() const { return entity == nullptr; }
    bool IsDone() const { return digest != Digest(); }
    std::size_t Hash() const { return HashOf(entity); }
  };
  static std::size_t HashOf(const IFC::IfcEntity* entity) {
    constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15ull;
    return static_cast<std::size_t>((reinterpret_cast<std::uintptr_t>(entity) * kMultiplier) >> 32);
  }

  IFC::IfcEntity* There(IFC::IfcEntity* entity) const;
  void Push(IFC::IfcEntity* entity);
  Digest Make(IFC::IfcEntity& entity);
  Digest KnownOf(IFC::IfcEntity* entity) const;
  const Slot* Find(const IFC::IfcEntity* entity) const {
    return known_.Find(HashOf(entity), [=](const Slot& slot) { return slot.entity == entity; });
  }
  Slot& At(const IFC::IfcEntity* entity) {
    return known_.Enter(HashOf(entity), [=](const Slot& slot) { return slot.entity == entity; });
  }

  const FederatedModel& model_;
  OpenTable<Slot, 1024> known_;
  std::vector<IFC::IfcEntity*> waiting_;
};

// Whether it has a GUID, or is of a class that nobody knows.
bool StandsForItself(IFC::IfcEntity& entity);

}  // namespace corvel
