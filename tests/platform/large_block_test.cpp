#include "platform/large_block.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace platform {
namespace {

TEST(LargeBlock, AllOfItCanBeUsedAndNoneOverlapsAnother) {
  std::vector<LargeBlock> blocks;
  for (int i = 0; i < 4; ++i) {
    blocks.push_back(AllocateLargeBlock());
    std::memset(blocks.back().get(), i + 1, kLargeBlock);
  }
  blocks.erase(blocks.begin() + 1);
  for (const LargeBlock& block : blocks) {
    EXPECT_EQ(block[0], block[kLargeBlock - 1]);
    EXPECT_NE(std::byte{2}, block[0]);
  }
}

}  // namespace
}  // namespace platform
