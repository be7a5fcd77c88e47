// The objects that have been met, to be found by what they say.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace corvel {

// Numbers of objects, by a hash of their content. 8 bytes a slot, a fifth of which stay free at
// least: with millions of objects it is memory that counts here, and their number is known before,
// so that the table neither grows, as OpenTable does, nor has the size of a power of two.
class EqualTable {
 public:
  // There will be at most so many different ones.
  explicit EqualTable(std::size_t count) : slots_(count + count / 4 + 1) {}

  // The first that was entered with this hash and for which `isEqual` is true; `number`, which is
  // entered and not 0, if there is none.
  template <class IsEqual>
  std::uint32_t FindOrEnter(std::uint64_t hash, std::uint32_t number, IsEqual isEqual) {
    const auto part = static_cast<std::uint32_t>(hash);
    for (std::size_t at = Home(hash);; at = at + 1 == slots_.size() ? 0 : at + 1) {
      Slot& slot = slots_[at];
      if (slot.number == 0) {
        slot = {part, number};
        return number;
      }
      if (slot.part == part && isEqual(slot.number)) return slot.number;
    }
  }

 private:
  struct Slot {
    std::uint32_t part = 0;    // of the hash
    std::uint32_t number = 0;  // 0: free
  };

  // By the half of the hash that the slot does not keep.
  std::size_t Home(std::uint64_t hash) const {
    return static_cast<std::size_t>((hash >> 32) * slots_.size() >> 32);
  }

  std::vector<Slot> slots_;
};

}  // namespace corvel
