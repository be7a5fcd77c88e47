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

// kLargeBlock bytes, not to be counted on as zeroed, in one large page where the system gives such
// pages to any program: the first touch then costs one fault instead of hundreds. All of it may be
// resident from the first touch on. Throws std::bad_alloc.
LargeBlock AllocateLargeBlock();

}  // namespace platform
