#include "platform/large_block.h"

#include <sys/mman.h>

#include <cstdint>
#include <new>

namespace platform {

// Only what is aligned to its own size can be one page: twice as much is mapped, and given back
// before and behind.
LargeBlock AllocateLargeBlock() {
  void* const mapped =
      ::mmap(nullptr, 2 * kLargeBlock, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapped == MAP_FAILED) throw std::bad_alloc();
  auto* const begin = static_cast<std::byte*>(mapped);
  const std::size_t before = -reinterpret_cast<std::uintptr_t>(begin) & (kLargeBlock - 1);
  if (before != 0) ::munmap(begin, before);
  ::munmap(begin + before + kLargeBlock, kLargeBlock - before);
#ifdef MADV_HUGEPAGE
  // Refused where the system has no such pages: then the pages are small ones.
  ::madvise(begin + before, kLargeBlock, MADV_HUGEPAGE);
#endif
  return LargeBlock(begin + before);
}

void FreeLargeBlock::operator()(std::byte* block) const { ::munmap(block, kLargeBlock); }

}  // namespace platform
