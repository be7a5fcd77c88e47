#include "measures.h"

#include <malloc.h>

#include <filesystem>
#include <iterator>

// There when a sanitizer has its own allocator.
extern "C" __attribute__((weak)) std::size_t __sanitizer_get_current_allocated_bytes();

namespace corvel::test_host {

std::size_t OpenHandles() {
  const std::filesystem::directory_iterator descriptors("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(descriptors), end(descriptors)));
}

std::size_t AllocatedBytes() {
  if (__sanitizer_get_current_allocated_bytes != nullptr) {
    return __sanitizer_get_current_allocated_bytes();
  }
  const struct mallinfo2 figures = ::mallinfo2();
  return figures.uordblks + figures.hblkhd;
}

// A sanitizer has every source of a library register destructors of its own, and the list grows.
std::size_t MemoryOfUnloadedLibrary() {
  return __sanitizer_get_current_allocated_bytes != nullptr ? 64 * 1024 : 1024;
}

}  // namespace corvel::test_host
