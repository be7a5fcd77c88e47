// Memory for what grows by megabytes and is used to its end.
#pragma once

#include <cstddef>
#include <memory>

namespace platform {

inline constexpr std::size_t kLargeBlock = std::size_t{2} << 20;

struct FreeLargeBlock {
  void operator()(std::byte* block) const;
};
using LargeBlock = std::unique_ptr<std::byte[], FreeLargeBlock>;

// kLargeBlock bytes, not to be counted on as zeroed. Where the system can, it brings all of them in
// at once, which costs less than a page fault for each page: they are resident from then on. Throws
// std::bad_alloc.
LargeBlock AllocateLargeBlock();

}  // namespace platform
