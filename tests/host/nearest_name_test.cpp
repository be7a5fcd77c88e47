#include "host/nearest_name.h"

#include <gtest/gtest.h>

namespace corvel::host {

TEST(EditDistance, CountsInsertionsDeletionsAndReplacements) {
  EXPECT_EQ(0u, EditDistance("merge", "merge"));
  EXPECT_EQ(1u, EditDistance("merge", "merg"));
  EXPECT_EQ(1u, EditDistance("merg", "merge"));
  EXPECT_EQ(1u, EditDistance("merge", "marge"));
  EXPECT_EQ(3u, EditDistance("kitten", "sitting"));
}

TEST(EditDistance, TwoNeighboursSwappedAreOneStep) {
  EXPECT_EQ(1u, EditDistance("mrege", "merge"));
  EXPECT_EQ(1u, EditDistance("ba", "ab"));
}

TEST(EditDistance, NoLetterIsTouchedTwice) {
  // "ca" to "ac" to "abc" would be two steps.
  EXPECT_EQ(3u, EditDistance("ca", "abc"));
}

TEST(EditDistance, OfTheEmptyWordIsTheLength) {
  EXPECT_EQ(4u, EditDistance("", "info"));
  EXPECT_EQ(4u, EditDistance("info", ""));
  EXPECT_EQ(0u, EditDistance("", ""));
}

TEST(EditDistance, CaseCounts) { EXPECT_EQ(1u, EditDistance("Merge", "merge")); }

TEST(NearName, TakesTheLeastDistance) {
  EXPECT_EQ("resave", NearName("resafe", {"merge", "resave", "info"}));
  EXPECT_EQ("info", NearName("inf", {"merge", "resave", "info"}));
}

TEST(NearName, TakesTheEarlierOfTwoEquals) {
  EXPECT_EQ("--left", NearName("--lift", {"--left", "--lint"}));
}

TEST(NearName, IsNoneBeyondOneMistakeInThreeLetters) {
  EXPECT_EQ("--answer", NearName("--anwsre", {"--answer"}));
  EXPECT_EQ(std::nullopt, NearName("--anwe", {"--answer"}));
  EXPECT_EQ(std::nullopt, NearName("--hide", {"--help"}));
  EXPECT_EQ(std::nullopt, NearName("-x", {"--output", "-o", "-h"}));
  EXPECT_EQ(std::nullopt, NearName("", {"-o"}));
  EXPECT_EQ(std::nullopt, NearName("merge", {}));
}

TEST(NearName, CaseIsNoMistake) {
  EXPECT_EQ("info", NearName("INFO", {"merge", "info"}));
  EXPECT_EQ("-o", NearName("-O", {"--output", "-o"}));
}

TEST(NearName, TheStartOfANameIsNear) {
  EXPECT_EQ("--ignore-enum-errors", NearName("--ignore-enum", {"--quiet", "--ignore-enum-errors"}));
  EXPECT_EQ(std::nullopt, NearName("--ig", {"--ignore-units"}));
}

}  // namespace corvel::host
