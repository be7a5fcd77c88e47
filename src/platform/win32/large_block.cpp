#include "platform/large_block.h"

namespace platform {

LargeBlock AllocateLargeBlock() { return LargeBlock(new std::byte[kLargeBlock]); }

void FreeLargeBlock::operator()(std::byte* block) const { delete[] block; }

}  // namespace platform
