#include "core/arena.h"

#include <algorithm>

namespace corvel {

namespace {
constexpr std::size_t kFirstBlock = std::size_t{16} << 10;
constexpr std::size_t kLargestSmallBlock = std::size_t{1} << 20;
// Reserved bytes of an arena that takes large blocks: half of one is empty at the end on average.
constexpr std::size_t kLargeFrom = std::size_t{8} << 20;
}  // namespace

void* Arena::AllocateFromNewBlock(std::size_t size, std::size_t alignment) {
  // Blocks grow with what is in use, so that a small model stays small.
  const std::size_t usual = reserved_ >= kLargeFrom
                                ? platform::kLargeBlock
                                : std::clamp(reserved_, kFirstBlock, kLargestSmallBlock);
  // A piece of more than a quarter of a block that starts a new one could leave as much unused
  // behind the last piece of the old one.
  const bool ownBlock = size > usual / 4;
  const std::size_t blockSize = ownBlock ? size + alignment : usual;
  const std::uintptr_t base = NewBlock(blockSize);
  reserved_ += blockSize;
  const std::uintptr_t start = (base + (alignment - 1)) & ~(alignment - 1);
  if (!ownBlock) {  // a large piece does not end the block in use
    next_ = start + size;
    end_ = base + blockSize;
  }
  return reinterpret_cast<void*>(start);
}

std::uintptr_t Arena::NewBlock(std::size_t size) {
  const std::byte* block = nullptr;
  if (size == platform::kLargeBlock) {
    block = largeBlocks_.emplace_back(platform::AllocateLargeBlock()).get();
  } else {
    block = blocks_.emplace_back(std::make_unique_for_overwrite<std::byte[]>(size)).get();
  }
  return reinterpret_cast<std::uintptr_t>(block);
}

}  // namespace corvel
