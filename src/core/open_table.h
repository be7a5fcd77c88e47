// Open hash tables: all slots in one array, and behind a slot that is taken the next one is tried.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <type_traits>
#include <utility>

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

// A table that grows, in place: at no time do two arrays stand side by side. Nothing is ever taken
// out of it but everything. Constant time on average, at most two thirds of the slots are taken,
// and no memory before the first entry. Throws std::bad_alloc, and serves on then.
//
// A Slot holds key and value as its owner likes, or what leads to them. It is free when default
// constructed, and tells so by IsFree(); one that is taken gives the hash of its key by Hash().
// `kFirstSize` is a power of two.
template <class Slot, std::size_t kFirstSize>
class OpenTable {
  static_assert(std::is_trivially_copyable_v<Slot>, "the array moves as bytes");

 public:
  OpenTable() = default;
  ~OpenTable() { std::free(slots_); }
  OpenTable(const OpenTable&) = delete;
  OpenTable& operator=(const OpenTable&) = delete;

  // Null when no slot holds the key.
  template <class IsKey>
  const Slot* Find(std::size_t hash, IsKey isKey) const {
    if (slots_ == nullptr) return nullptr;
    const Slot& slot = SlotOf(slots_, size_ - 1, hash, isKey);
    return slot.IsFree() ? nullptr : &slot;
  }

  // The slot that holds the key. For a new key a free one, which counts as taken: the caller fills
  // it before the next call. Slots found before are void.
  template <class IsKey>
  Slot& Enter(std::size_t hash, IsKey isKey) {
    if ((used_ + 1) * 3 > size_ * 2) Grow();
    Slot& slot = SlotOf(slots_, size_ - 1, hash, isKey);
    if (slot.IsFree()) ++used_;
    return slot;
  }

  void Clear() {
    std::free(slots_);
    slots_ = nullptr;
    size_ = used_ = 0;
  }

 private:
  // The hashes are kept, so no key is read again.
  void Grow() {
    const std::size_t before = size_;
    const std::size_t larger = before == 0 ? kFirstSize : before * 2;
    auto* const slots = static_cast<Slot*>(std::realloc(slots_, larger * sizeof(Slot)));
    if (slots == nullptr) throw std::bad_alloc();
    slots_ = slots;
    size_ = larger;
    std::fill(slots_ + before, slots_ + larger, Slot());
    if (before != 0) Spread(before);
  }

  // Gives each entry of the lower half its place in the whole. They have their turn in the order of
  // the runs in which they stand, which begin behind free slots: then all slots from an entry's
  // place on up to where it stood have had theirs, so that what it steps over stays.
  void Spread(std::size_t half) {
    std::size_t start = 0;
    while (!slots_[start].IsFree()) ++start;
    const auto isNew = [](const Slot&) { return false; };
    for (std::size_t i = 1; i < half; ++i) {
      Slot& slot = slots_[(start + i) & (half - 1)];
      if (slot.IsFree()) continue;
      const Slot entry = std::exchange(slot, Slot());
      SlotOf(slots_, size_ - 1, entry.Hash(), isNew) = entry;
    }
  }

  Slot* slots_ = nullptr;
  std::size_t size_ = 0;  // a power of two, or 0
  std::size_t used_ = 0;
};

}  // namespace corvel
