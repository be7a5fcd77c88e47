// What has been met is found again.
#include "merge/federation/equal_table.h"

#include <gtest/gtest.h>

namespace corvel {
namespace {

constexpr auto kEqual = [](std::uint32_t) { return true; };
constexpr auto kDifferent = [](std::uint32_t) { return false; };

TEST(EqualTable, GivesTheFirstThatIsEqual) {
  EqualTable table(3);
  EXPECT_EQ(7U, table.FindOrEnter(42, 7, kEqual));
  EXPECT_EQ(7U, table.FindOrEnter(42, 8, kEqual));
  EXPECT_EQ(9U, table.FindOrEnter(42, 9, kDifferent));
  EXPECT_EQ(9U, table.FindOrEnter(42, 10, [](std::uint32_t number) { return number == 9; }));
}

TEST(EqualTable, AsksOnlyAboutThoseOfTheSameHash) {
  EqualTable table(3);
  EXPECT_EQ(7U, table.FindOrEnter(42, 7, kEqual));
  EXPECT_EQ(8U, table.FindOrEnter(43, 8, kEqual));
}

TEST(EqualTable, HoldsAsManyAsItWasMadeForWhereverTheyFall) {
  for (const std::uint64_t home : {0x0ull, 0xFFFFFFFF00000000ull}) {
    EqualTable table(1000);
    for (std::uint32_t number = 1; number <= 1000; ++number) {
      ASSERT_EQ(number, table.FindOrEnter(home + number, number, kEqual));
    }
    for (std::uint32_t number = 1; number <= 1000; ++number) {
      ASSERT_EQ(number, table.FindOrEnter(home + number, 2000, kEqual));
    }
  }
}

TEST(EqualTable, NeedsRoomForNothing) {
  EqualTable table(0);
  EXPECT_EQ(5U, table.FindOrEnter(0xFFFFFFFFFFFFFFFF, 5, kEqual));
}

}  // namespace
}  // namespace corvel
