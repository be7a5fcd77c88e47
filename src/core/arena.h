// Storage that is given out in pieces and taken back as a whole.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/large_block.h"

namespace corvel {

// Pieces come from blocks that grow from 16 KiB to 1 MiB, and are 2 MiB each from 8 MiB on; a
// larger request gets a block of its own. Nothing is freed before the arena goes. Memory is not
// zeroed.
class Arena {
 public:
  Arena() = default;
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;

  // `alignment` is a power of two, at most that of std::max_align_t. The piece belongs to the
  // arena. Constant time but for the new block. Throws std::bad_alloc; the arena stays usable then.
  void* Allocate(std::size_t size, std::size_t alignment) {
    const std::uintptr_t start = (next_ + (alignment - 1)) & ~(alignment - 1);
    if (start + size <= end_) [[likely]] {
      next_ = start + size;
      return reinterpret_cast<void*>(start);
    }
    return AllocateFromNewBlock(size, alignment);
  }

  // Bytes taken from the system, the unused rests of blocks included.
  std::size_t ReservedBytes() const { return reserved_; }

 private:
  void* AllocateFromNewBlock(std::size_t size, std::size_t alignment);
  std::uintptr_t NewBlock(std::size_t size);

  std::uintptr_t next_ = 0;
  std::uintptr_t end_ = 0;
  std::size_t reserved_ = 0;
  std::vector<std::unique_ptr<std::byte[]>> blocks_;
  std::vector<platform::LargeBlock> largeBlocks_;
};

}  // namespace corvel
