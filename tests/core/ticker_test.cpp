// When ticks are due, what they say, and what follows when the user presses cancel.
#include "core/ticker.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "core/cancellation.h"
#include "support/recorded_progress.h"
#include "support/test_platform.h"

namespace corvel {
namespace {

using test::RecordedProgress;
using test::TestPlatform;

class TickerTest : public testing::Test {
 protected:
  ~TickerTest() override {
    Cancellation::OfProcess().mode = CancelMode::kAsk;
    Cancellation::OfProcess().ForgetAnswer();
  }

  std::vector<int> Values() const {
    std::vector<int> values;
    for (const test::Tick& tick : *progress_) values.push_back(tick.value);
    return values;
  }
  // The values of the ticks for so many pieces, one by one.
  std::vector<int> ValuesFor(int pieces, const TickSteps& steps) {
    progress_.Forget();
    Ticker ticker(stage_, steps);
    for (int i = 0; i < pieces; ++i) EXPECT_TRUE(ticker.Advance());
    return Values();
  }

  TestPlatform system_;
  RecordedProgress progress_;
  Stage stage_{.callback = RecordedProgress::Callback, .maximum = 4};
};

TEST_F(TickerTest, ATickSaysWhatItsStageSays) {
  const WideString text = u"2/3 ";
  EXPECT_TRUE(Ticker({RecordedProgress::Callback, 5, &text, true, 50}).Tick(7));
  EXPECT_EQ((std::vector<test::Tick>{{7, 5, u"2/3 ", true, 50}}), *progress_);
}

TEST_F(TickerTest, NoTickSaysMoreThanTheMaximum) {
  Ticker ticker(stage_);
  ticker.Tick(9);
  ticker.Show(5);
  EXPECT_EQ((std::vector<int>{4, 4}), Values());
}

TEST_F(TickerTest, ATickIsDueBehindEachBlock) {
  EXPECT_EQ((std::vector<int>{1, 2}), ValuesFor(8, {.block = 3}));
  EXPECT_EQ((std::vector<int>{1, 2, 3, 4, 4, 4}), ValuesFor(6, {.block = 1}));
  EXPECT_EQ((std::vector<int>{3}), ValuesFor(3, {.block = 2, .valueBefore = 2}));
}

TEST_F(TickerTest, TheFirstTickMayBeDueEarlier) {
  EXPECT_EQ((std::vector<int>{1, 2}), ValuesFor(6, {.block = 4, .first = 1}));
  EXPECT_EQ((std::vector<int>{1}), ValuesFor(100, {.block = 0, .first = 1}));
}

TEST_F(TickerTest, WithoutABlockNoTickIsDue) {
  EXPECT_EQ((std::vector<int>{}), ValuesFor(1000, {}));
}

TEST_F(TickerTest, NoMoreTicksAreSentThanTheMost) {
  EXPECT_EQ((std::vector<int>{1, 2}), ValuesFor(100, {.block = 5, .most = 2}));
  EXPECT_EQ((std::vector<int>{}), ValuesFor(100, {.block = 5, .most = 0}));
  EXPECT_EQ((std::vector<int>{}), ValuesFor(100, {.block = 5, .first = 1, .most = -3}));
}

TEST_F(TickerTest, ManyPiecesAtOnceTickAsOneByOne) {
  std::mt19937 random(7);
  for (int round = 0; round < 500; ++round) {
    const TickSteps steps{.block = random() % 7,
                          .first = random() % 5,
                          .valueBefore = static_cast<int>(random() % 3),
                          .most = static_cast<int>(random() % 20)};
    const int pieces = static_cast<int>(random() % 60);
    const std::vector<int> wanted = ValuesFor(pieces, steps);
    progress_.Forget();
    Ticker ticker(stage_, steps);
    for (int left = pieces; left > 0;) {
      const int now = 1 + static_cast<int>(random() % static_cast<unsigned>(left));
      EXPECT_TRUE(ticker.Advance(static_cast<std::size_t>(now)));
      left -= now;
    }
    ASSERT_EQ(wanted, Values()) << "round " << round;
  }
}

TEST_F(TickerTest, AnotherPassGoesOnCountingTicks) {
  Ticker ticker(stage_, {.block = 2});
  ticker.Advance(3);
  ticker.StartPass(3);
  ticker.Advance(2);
  EXPECT_EQ((std::vector<int>{1}), Values()) << "the piece of the pass before is forgotten";
  ticker.Advance();
  EXPECT_EQ((std::vector<int>{1, 2}), Values());
}

TEST_F(TickerTest, LeftIsTheWayToTheNextTick) {
  Ticker ticker(stage_, {.block = 5, .first = 2});
  EXPECT_EQ(2u, ticker.Left());
  ticker.Advance();
  EXPECT_EQ(1u, ticker.Left());
  ticker.Advance();
  EXPECT_EQ(5u, ticker.Left());
}

TEST_F(TickerTest, AYesEndsTheLoopAtTheTickThatWasAskedAbout) {
  progress_.CancelAt(1);
  system_.answers = {platform::Answer::kYes};
  Ticker ticker(stage_, {.block = 2});
  EXPECT_FALSE(ticker.Advance(100));
  EXPECT_EQ((std::vector<int>{1, 2}), Values());
  EXPECT_TRUE(Cancellation::OfProcess().WasConfirmed());
}

TEST_F(TickerTest, ANoLetsTheLoopGoOn) {
  progress_.CancelAt(0);
  system_.answers = {platform::Answer::kNo};
  EXPECT_TRUE(Ticker(stage_, {.block = 2}).Advance(4));
  EXPECT_EQ(1u, system_.boxes.size());
  EXPECT_FALSE(Cancellation::OfProcess().WasConfirmed());
}

TEST_F(TickerTest, OnlyWhoeverIsToldSoGoesByAnEndingRun) {
  Cancellation::OfProcess().mode = CancelMode::kEndUnasked;
  progress_.CancelAt(0);
  EXPECT_FALSE(Ticker(stage_, {}, Ticker::Asking::kUnlessEnding).Tick(1));
  EXPECT_TRUE(system_.boxes.empty());
  progress_.Forget();
  progress_.CancelAt(0);
  system_.answers = {platform::Answer::kNo};
  EXPECT_TRUE(Ticker(stage_).Tick(1));
  EXPECT_EQ(1u, system_.boxes.size());
}

TEST_F(TickerTest, WhatIsOnlyShownAsksNobody) {
  progress_.CancelAt(0);
  Ticker(stage_).Show(0);
  EXPECT_TRUE(system_.boxes.empty());
}

TEST_F(TickerTest, ASilentStageIsNeverCancelled) {
  Ticker ticker({}, {.block = 1});
  EXPECT_TRUE(ticker.Advance(50));
  EXPECT_TRUE(ticker.Tick(1));
  ticker.Show(1);
}

}  // namespace
}  // namespace corvel
