#include "host/run_pace.h"

#include <gtest/gtest.h>

#include "support/test_platform.h"

namespace corvel::host {

namespace {

constexpr std::int64_t kSecond = 1'000'000'000;

}  // namespace

TEST(RunPace, AShortRunIsNotTold) {
  test::TestPlatform platform;
  const RunPace pace(1'000'000);
  platform.nanoseconds = 2 * kSecond - 1;
  EXPECT_EQ(u"", pace.Text(50));
  EXPECT_EQ(std::nullopt, pace.SecondsLeft(50));
}

TEST(RunPace, NothingIsGuessedFromTheFirstPercents) {
  test::TestPlatform platform;
  const RunPace pace(1'000'000);
  platform.nanoseconds = 60 * kSecond;
  EXPECT_EQ(std::nullopt, pace.SecondsLeft(2));
}

TEST(RunPace, WhatIsLeftGoesAsFastAsWhatIsDone) {
  test::TestPlatform platform;
  const RunPace pace(100'000'000);
  platform.nanoseconds = 10 * kSecond;
  EXPECT_EQ(90.0, pace.SecondsLeft(10));
  EXPECT_EQ(u" (1.0 MB/s, 1:30 left)", pace.Text(10));
}

}  // namespace corvel::host
