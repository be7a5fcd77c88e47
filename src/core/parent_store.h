// Where the parents sets of one container keep what does not fit into their word.
#pragma once

#include <array>
#include <cstdint>

#include "core/arena.h"
#include "core/parent_set.h"

namespace corvel {

// Blocks of 2, 4, 8 ... members; a block given back is used again for the next of its size.
class ParentStore {
 public:
  ParentStore() = default;
  ParentStore(const ParentStore&) = delete;
  ParentStore& operator=(const ParentStore&) = delete;

  // Room for 2 << `sizeClass` members. Size and order of a block that is used again are what they
  // were: the taker sets both. Throws std::bad_alloc.
  ParentSet::Block* Take(unsigned sizeClass);
  // `block` may come from another store that lives as long as this one.
  void GiveBack(ParentSet::Block* block);

 private:
  std::array<ParentSet::Block*, 32> free_{};
  Arena arena_;
};

}  // namespace corvel
