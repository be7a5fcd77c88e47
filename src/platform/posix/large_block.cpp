#include "platform/large_block.h"

#include <sys/mman.h>

#include <new>

namespace platform {

namespace {

// Brought in at once. Other threads that have to do with the address space wait for no more.
constexpr std::size_t kPiece = std::size_t{128} << 10;

void BringIn([[maybe_unused]] std::byte* block) {
#ifdef MADV_POPULATE_WRITE
  for (std::size_t at = 0; at < kLargeBlock; at += kPiece) {
    // A system that does not know of it brings in what is touched.
    if (::madvise(block + at, kPiece, MADV_POPULATE_WRITE) != 0) return;
  }
#endif
}

}  // namespace

LargeBlock AllocateLargeBlock() {
  void* const mapped =
      ::mmap(nullptr, kLargeBlock, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapped == MAP_FAILED) throw std::bad_alloc();
  auto* const block = static_cast<std::byte*>(mapped);
  BringIn(block);
  return LargeBlock(block);
}

void FreeLargeBlock::operator()(std::byte* block) const { ::munmap(block, kLargeBlock); }

}  // namespace platform
