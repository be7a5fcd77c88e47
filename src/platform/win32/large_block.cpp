#include "platform/large_block.h"

namespace platform {

// Large pages are for privileged programs only.
LargeBlock AllocateLargeBlock() { return LargeBlock(new std::byte[kLargeBlock]); }

void FreeLargeBlock::operator()(std::byte* block) const { delete[] block; }

}  // namespace platform
