// When a reading ticks, and what it says then.
#include "step/reader/reading_progress.h"

#include <gtest/gtest.h>

#include <vector>

#include "core/cancellation.h"
#include "support/recorded_progress.h"
#include "support/test_platform.h"

namespace corvel {
namespace {

using test::RecordedProgress;
using test::TestPlatform;

constexpr std::int64_t kEnough = 0x10000;  // bytes after which it is looked at again

class ReadingProgressTest : public testing::Test {
 protected:
  ~ReadingProgressTest() override { Cancellation::OfProcess().mode = CancelMode::kAsk; }

  // The values of the ticks for these positions.
  std::vector<int> ValuesAt(const std::vector<std::int64_t>& positions) {
    ticks_.Forget();
    for (const std::int64_t position : positions) EXPECT_TRUE(progress_.Report(position));
    std::vector<int> values;
    for (const test::Tick& tick : *ticks_) values.push_back(tick.value);
    return values;
  }
  void StartPass(std::int64_t totalBytes) { progress_.StartPass(stage_, totalBytes); }

  TestPlatform system_;
  RecordedProgress ticks_;
  Stage stage_{.callback = RecordedProgress::Callback};
  ReadingProgress progress_;
};

TEST_F(ReadingProgressTest, WholePercentsThatHaveRisenAreTold) {
  StartPass(100 * kEnough);
  EXPECT_EQ((std::vector<int>{1, 2, 4}),
            ValuesAt({kEnough, 2 * kEnough, 2 * kEnough + 1, 4 * kEnough, 4 * kEnough}));
}

TEST_F(ReadingProgressTest, APercentThatRoseWithinFewBytesAndLittleTimeWaits) {
  StartPass(1000);
  EXPECT_EQ((std::vector<int>{10}), ValuesAt({100, 200, 300}));
  system_.nanoseconds += 50'000'000;
  EXPECT_EQ((std::vector<int>{40}), ValuesAt({400, 500}));
}

TEST_F(ReadingProgressTest, MoreBytesThanThereAreAreAHundredPercent) {
  StartPass(10);
  EXPECT_EQ((std::vector<int>{100}), ValuesAt({11 * kEnough, 12 * kEnough}));
}

TEST_F(ReadingProgressTest, WithoutASizeEachLookIsOnePercentUpToAHundred) {
  StartPass(-1);
  std::vector<std::int64_t> positions;
  std::vector<int> wanted;
  for (int i = 1; i <= 120; ++i) positions.push_back(i * kEnough);
  for (int i = 1; i <= 100; ++i) wanted.push_back(i);
  EXPECT_EQ(wanted, ValuesAt(positions));
}

TEST_F(ReadingProgressTest, TheSecondPassTellsItsPercentsAnew) {
  StartPass(4 * kEnough);
  EXPECT_EQ((std::vector<int>{25, 100}), ValuesAt({kEnough, 4 * kEnough}));
  StartPass(4 * kEnough);
  EXPECT_EQ((std::vector<int>{25, 50}), ValuesAt({kEnough, 2 * kEnough}));
}

TEST_F(ReadingProgressTest, ADeclinedTickIsNotSentAgain) {
  StartPass(4 * kEnough);
  ticks_.CancelAt(0);
  system_.answers = {platform::Answer::kNo};
  EXPECT_EQ((std::vector<int>{25, 50}), ValuesAt({kEnough, kEnough, 2 * kEnough}));
}

TEST_F(ReadingProgressTest, AYesEndsIt) {
  StartPass(4 * kEnough);
  ticks_.CancelAt(0);
  system_.answers = {platform::Answer::kYes};
  EXPECT_FALSE(progress_.Report(kEnough));
}

TEST_F(ReadingProgressTest, WhatIsEndingAnywayIsNotAskedAbout) {
  StartPass(4 * kEnough);
  ticks_.CancelAt(0);
  Cancellation::OfProcess().mode = CancelMode::kEndUnasked;
  EXPECT_FALSE(progress_.Report(kEnough));
  EXPECT_TRUE(system_.boxes.empty());
}

}  // namespace
}  // namespace corvel
