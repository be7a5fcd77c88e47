#include "core/arena.h"

#include <algorithm>

namespace corvel {

namespace {
constexpr std::size_t kFirstBlock = std::size_t{16} << 10;
constexpr std::size_t kLargestBlock = std::size_t{1} << 20;
}  // namespace

void* Arena::AllocateFromNewBlock(std::size_t size, std::size_t alignment) {
  // Blocks grow with what is in use, so that a small model stays small.
  const std::size_t usual = std::clamp(reserved_, kFirstBlock, kLargestBlock);
  // A piece of more than a quarter of a block that starts a new one could leave as much unused
  // behind the last piece of the old one.
  const bool ownBlock = size > usual / 4;
  const std::size_t blockSize = ownBlock ? size + alignment : usual;
  blocks_.push_back(std::make_unique_for_overwrite<std::byte[]>(blockSize));
  reserved_ += blockSize;
  const auto base = reinterpret_cast<std::uintptr_t>(blocks_.back().get());
  const std::uintptr_t start = (base + (alignment - 1)) & ~(alignment - 1);
  if (!ownBlock) {  // a large piece does not end the block in use
    next_ = start + size;
    end_ = base + blockSize;
  }
  return reinterpret_cast<void*>(start);
}

}  // namespace corvel
