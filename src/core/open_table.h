// Open hash tables: all slots in one array, and behind a slot that is taken the next one is tried.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace corvel {

// The slot among `mask` + 1 (a power of two) where a key with this hash stands, or the free one
// where it belongs. isKey(slot) tells whether a slot holds the key; free slots are shown to it as
// well, and what it says of them does not matter. At least one slot is free.
template <class Slot, class IsKey>
Slot& SlotOf(Slot* slots, std::size_t mask, std::size_t hash, IsKey isKey) {
  std::size_t at = hash & mask;
  while (!isKey(slots[at]) && !slots[at].IsFree()) at = (at + 1) & mask;
  return slots[at];
}

// A table that grows. Nothing is ever taken out of it but everything. Constant time on average, at
// most two thirds of the slots are taken, and no memory before the first entry.
//
// A Slot holds key and value as its owner likes, or what leads to them. It is free when default
// constructed, and tells so by IsFree(); one that is taken gives the hash of its key by Hash().
template <class Slot, std::size_t kFirstSize>
class OpenTable {
 public:
  // Null when no slot holds the key.
  template <class IsKey>
  const Slot* Find(std::size_t hash, IsKey isKey) const {
    if (slots_.empty()) return nullptr;
    const Slot& slot = SlotOf(slots_.data(), slots_.size() - 1, hash, isKey);
    return slot.IsFree() ? nullptr : &slot;
  }

  // The slot that holds the key. For a new key a free one, which counts as taken: the caller fills
  // it before the next call. Slots found before are void.
  template <class IsKey>
  Slot& Enter(std::size_t hash, IsKey isKey) {
    if ((used_ + 1) * 3 > slots_.size() * 2) Grow();
    Slot& slot = SlotOf(slots_.data(), slots_.size() - 1, hash, isKey);
    if (slot.IsFree()) ++used_;
    return slot;
  }

  void Clear() {
    slots_ = {};
    used_ = 0;
  }

 private:
  // The hashes are kept, so no key is read again.
  void Grow() {
    std::vector<Slot> larger(slots_.empty() ? kFirstSize : slots_.size() * 2);
    const auto isNew = [](const Slot&) { return false; };
    for (const Slot& slot : slots_) {
      if (!slot.IsFree()) SlotOf(larger.data(), larger.size() - 1, slot.Hash(), isNew) = slot;
    }
    slots_ = std::move(larger);
  }

  std::vector<Slot> slots_;
  std::size_t used_ = 0;
};

}  // namespace corvel
