#include "host/progress_state.h"

#include <gtest/gtest.h>

namespace corvel::host {

namespace {

int Overall(ProgressState& state, int value) {
  return state.Tick(value, 0, nullptr, false, 100).overall;
}

}  // namespace

TEST(ProgressState, AStageFillsItsWeight) {
  ProgressState state;
  state.StartStage(30);
  EXPECT_EQ(0, Overall(state, 0));
  EXPECT_EQ(15, Overall(state, 50));
  EXPECT_EQ(30, Overall(state, 100));
}

TEST(ProgressState, TheNextStageBeginsWhereTheLastOneEnds) {
  ProgressState state;
  state.StartStage(30);
  state.StartStage(15);
  EXPECT_EQ(30, Overall(state, 0));
  EXPECT_EQ(45, Overall(state, 100));
}

TEST(ProgressState, TheLastStageIsWorthWhatIsLeft) {
  ProgressState state;
  state.StartStage(30);
  state.StartStage(15);
  state.StartLastStage();
  EXPECT_EQ(45, Overall(state, 0));
  EXPECT_EQ(100, Overall(state, 100));
}

TEST(ProgressState, AStageWithoutWeightLeavesTheOverallBarAtItsBase) {
  ProgressState state;
  state.StartStage(30);
  state.StartStage(0);
  EXPECT_EQ(30, Overall(state, 50));
}

TEST(ProgressState, ATickWithAWeightSplitsTheStageOnce) {
  ProgressState state;
  state.StartStage(10);
  EXPECT_EQ(10, state.Tick(0, 5, nullptr, false, 100).overall);
  EXPECT_EQ(15, state.Tick(100, 5, nullptr, false, 100).overall);
  // Another weight in the same stage changes nothing.
  EXPECT_EQ(15, state.Tick(100, 40, nullptr, false, 100).overall);
}

TEST(ProgressState, TheNextStageMayBeSplitAgain) {
  ProgressState state;
  state.StartStage(10);
  state.Tick(0, 5, nullptr, false, 100);
  state.StartStage(10);
  EXPECT_EQ(25, state.Tick(0, 5, nullptr, false, 100).overall);
}

TEST(ProgressState, ExactTicksCountUpToTheirMaximum) {
  ProgressState state;
  EXPECT_EQ(10, state.Tick(25, 20, nullptr, true, 50).overall);
}

TEST(ProgressState, AnExactStageThatIsFullStartsTheSameWeightOnceMore) {
  ProgressState state;
  EXPECT_EQ(20, state.Tick(50, 20, nullptr, true, 50).overall);
  EXPECT_EQ(20, state.Tick(0, 20, nullptr, true, 50).overall);
  EXPECT_EQ(40, state.Tick(50, 20, nullptr, true, 50).overall);
}

TEST(ProgressState, AMaximumOfZeroDividesNothing) {
  ProgressState state;
  EXPECT_EQ(100, state.Tick(7, 20, nullptr, true, 0).overall);
}

TEST(ProgressState, TheStepBarShowsTheValueAsItIs) {
  ProgressState state;
  EXPECT_EQ(42, state.Tick(42, 0, nullptr, false, 1000).step);
  EXPECT_EQ(100, state.Tick(142, 0, nullptr, false, 100).step);
  EXPECT_EQ(0, state.Tick(-3, 0, nullptr, false, 100).step);
}

TEST(ProgressState, ExtraTextStandsBehindTheTextOfTheStep) {
  ProgressState state;
  state.SetTexts(u"Overall", u"Merging: a.ifc");
  const WideString extra = u"1/3 ";
  EXPECT_EQ(u"Merging: a.ifc 1/3 ", state.Tick(1, 0, &extra, false, 100).stepText);
  EXPECT_EQ(u"Merging: a.ifc", state.Tick(1, 0, nullptr, false, 100).stepText);
  EXPECT_EQ(u"Overall", state.Tick(1, 0, nullptr, false, 100).overallText);
}

}  // namespace corvel::host
