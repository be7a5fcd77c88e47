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

TEST(NearestName, TakesTheLeastDistance) {
  EXPECT_EQ("resave", NearestName("resafe", {"merge", "resave", "info"}));
  EXPECT_EQ("info", NearestName("inf", {"merge", "resave", "info"}));
}

TEST(NearestName, TakesTheEarlierOfTwoEquals) {
  EXPECT_EQ("-o", NearestName("-x", {"--output", "-o", "-h"}));
}

}  // namespace corvel::host
