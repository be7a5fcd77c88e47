#include "core/arena.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <utility>
#include <vector>

namespace corvel {
namespace {

constexpr std::size_t kFirstBlock = std::size_t{16} << 10;

TEST(Arena, NothingIsTakenFromTheSystemBeforeTheFirstRequest) {
  EXPECT_EQ(0u, Arena().ReservedBytes());
}

TEST(Arena, EveryPieceIsAlignedAndOverlapsNoOther) {
  Arena arena;
  std::mt19937 random(1);
  std::vector<std::pair<std::uintptr_t, std::size_t>> pieces;
  for (int i = 0; i < 20000; ++i) {
    const std::size_t size = 1 + random() % (i % 100 == 0 ? 70000 : 200);
    const std::size_t alignment = std::size_t{1} << (random() % 5);
    void* const piece = arena.Allocate(size, alignment);
    std::memset(piece, 0xEE, size);  // a sanitizer looks at the bounds
    const auto start = reinterpret_cast<std::uintptr_t>(piece);
    ASSERT_EQ(0u, start % alignment);
    pieces.emplace_back(start, size);
  }
  std::sort(pieces.begin(), pieces.end());
  for (std::size_t i = 1; i < pieces.size(); ++i) {
    ASSERT_LE(pieces[i - 1].first + pieces[i - 1].second, pieces[i].first);
  }
}

TEST(Arena, SmallPiecesFollowEachOther) {
  Arena arena;
  char* const first = static_cast<char*>(arena.Allocate(24, 8));
  EXPECT_EQ(first + 24, arena.Allocate(8, 8));
  EXPECT_EQ(kFirstBlock, arena.ReservedBytes());
}

TEST(Arena, ALargePieceHasABlockOfItsOwnAndLeavesTheBlockInUse) {
  Arena arena;
  char* const small = static_cast<char*>(arena.Allocate(16, 16));
  arena.Allocate(std::size_t{3} << 20, 16);
  EXPECT_EQ(kFirstBlock + (std::size_t{3} << 20) + 16, arena.ReservedBytes());
  EXPECT_EQ(small + 16, arena.Allocate(16, 16));
}

TEST(Arena, BlocksGrowWithWhatIsInUseUpToOneMebibyte) {
  Arena arena;
  std::vector<std::size_t> blocks;
  for (std::size_t before = 0; before < (std::size_t{8} << 20);) {
    arena.Allocate(1024, 1);
    if (arena.ReservedBytes() == before) continue;
    blocks.push_back((arena.ReservedBytes() - before) >> 10);
    before = arena.ReservedBytes();
  }
  blocks.resize(9);
  EXPECT_EQ((std::vector<std::size_t>{16, 16, 32, 64, 128, 256, 512, 1024, 1024}), blocks);
}

TEST(Arena, FromEightMebibytesOnBlocksAreLarge) {
  Arena arena;
  while (arena.ReservedBytes() < (std::size_t{8} << 20)) arena.Allocate(1024, 1);
  const std::size_t before = arena.ReservedBytes();
  while (arena.ReservedBytes() == before) arena.Allocate(1024, 1);
  EXPECT_EQ(std::size_t{2} << 20, arena.ReservedBytes() - before);
  // To the last byte: a sanitizer or the system looks at the bounds.
  for (std::size_t used = 1024; used < (std::size_t{2} << 20); used += 1024) {
    std::memset(arena.Allocate(1024, 1), 0xEE, 1024);
  }
  EXPECT_EQ(std::size_t{2} << 20, arena.ReservedBytes() - before);
}

}  // namespace
}  // namespace corvel
