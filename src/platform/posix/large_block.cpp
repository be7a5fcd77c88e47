#include "platform/large_block.h"

#include <sys/mman.h>

#include <new>

namespace platform {

namespace {

#ifdef MAP_POPULATE
constexpr int kAtOnce = MAP_POPULATE;
#else
constexpr int kAtOnce = 0;
#endif

}  // namespace

LargeBlock AllocateLargeBlock() {
  void* const mapped = ::mmap(nullptr, kLargeBlock, PROT_READ | PROT_WRITE,
                              MAP_PRIVATE | MAP_ANONYMOUS | kAtOnce, -1, 0);
  if (mapped == MAP_FAILED) throw std::bad_alloc();
  return LargeBlock(static_cast<std::byte*>(mapped));
}

void FreeLargeBlock::operator()(std::byte* block) const { ::munmap(block, kLargeBlock); }

}  // namespace platform
