#include "plugin/progress_window.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <stdexcept>

#include "core/reporting.h"
#include "plugin/run_reports.h"
#include "recorded_host.h"
#include "step/log/ifc_log.h"
#include "support/test_platform.h"

namespace corvel::plugin {

namespace {

class ProgressTest : public testing::Test {
 protected:
  ProgressTest() {
    host.Attach();
    StartRun();
  }
  ~ProgressTest() override {
    if (window.IsOpen()) window.Finish();
  }

  // Of an earlier test: the path stays.
  static std::string LogPath() { return ToUtf8(IfcLog::Instance().Path()); }
  void Open() {
    window.InitProgress(u"Merge");
    host.calls.clear();
  }
  // The two values of the last update.
  std::string Shown() const {
    int overall = -1;
    int current = -1;
    std::sscanf(host.calls.back().c_str(), "update_progress_bar(%d, \"Overall progress\", %d",
                &overall, &current);
    return std::to_string(overall) + " " + std::to_string(current);
  }
  std::string After(int value, int weight, bool exact = false, int maximum = 100) {
    EXPECT_TRUE(window.Update(value, weight, nullptr, exact, maximum));
    return Shown();
  }

  test::TestPlatform platform;
  test::RecordedHost host;
  ProgressWindow& window = ProgressWindow::Instance();
};

}  // namespace

TEST_F(ProgressTest, TheDialogIsOpenedWithItsTitle) {
  window.InitProgress(u"Merge");
  EXPECT_EQ((std::vector<std::string>{"show_progress_bar(1, 1, \"Merge\")"}), host.calls);
  EXPECT_TRUE(window.IsOpen());
}

TEST_F(ProgressTest, AnEmptyTitleBecomesTheName) {
  window.InitProgress(u"");
  EXPECT_EQ((std::vector<std::string>{"show_progress_bar(1, 1, \"Corvel\")"}), host.calls);
}

TEST_F(ProgressTest, ASecondOpeningIsReportedAndChangesNothing) {
  Open();
  window.StartStage(30);
  window.InitProgress(u"Other");
  EXPECT_EQ((std::vector<std::string>{
                "message_box(\"error_caption\", \"Progress bar alredy initialized\nmerge_combine_"
                "log " +
                LogPath() + "\", 16)"}),
            host.calls);
  EXPECT_EQ("15 50", After(50, 0));
  window.Finish();
  EXPECT_EQ("show_progress_bar(0, 1, \"Merge\")", host.calls.back());
}

TEST_F(ProgressTest, AnUpdateWithoutDialogIsReportedAndThrows) {
  EXPECT_THROW(window.Update(1, 0, nullptr, false, 100), std::logic_error);
  EXPECT_EQ((std::vector<std::string>{"message_box(\"error_caption\", \"No progress bar "
                                      "initialized\nmerge_combine_log " +
                                      LogPath() + "\", 16)"}),
            host.calls);
}

TEST_F(ProgressTest, AWeightOfZeroLeavesTheOverallBarAtTheStageBase) {
  Open();
  window.StartStage(40);
  window.StartStage(0);
  EXPECT_EQ("40 50", After(50, 0));
}

TEST_F(ProgressTest, AStageFillsItsWeightAndTheNextGoesOnFromThere) {
  Open();
  window.StartStage(30);
  EXPECT_EQ("0 0", After(0, 0));
  EXPECT_EQ("15 50", After(50, 0));
  EXPECT_EQ("30 100", After(100, 0));
  window.StartStage(20);
  EXPECT_EQ("40 50", After(50, 0));
  window.StartLastStage();
  EXPECT_EQ("100 100", After(100, 0));
}

TEST_F(ProgressTest, TheFirstTickWithAWeightOpensAStageOfThatWeight) {
  Open();
  window.StartStage(30);
  EXPECT_EQ("35 50", After(50, 10));
}

TEST_F(ProgressTest, AnotherWeightWithinAStartedStageDoesNotChangeIt) {
  Open();
  EXPECT_EQ("5 50", After(50, 10));
  EXPECT_EQ("6 60", After(60, 50));
}

TEST_F(ProgressTest, TheNextStageMayTakeAWeightOverAgain) {
  Open();
  After(100, 10);
  window.StartStage(20);
  // The stage of 20 counts as filled.
  EXPECT_EQ("35 50", After(50, 10));
}

TEST_F(ProgressTest, ExactValuesCountOutOfTheirMaximum) {
  Open();
  EXPECT_EQ("10 25", After(25, 20, true, 50));
  EXPECT_EQ("20 50", After(50, 20, true, 50));
}

TEST_F(ProgressTest, AnExactStageThatIsFullMovesOnByItsWeight) {
  Open();
  After(50, 20, true, 50);
  EXPECT_EQ("20 0", After(0, 20, true, 50));
  EXPECT_EQ("40 50", After(50, 20, true, 50));
}

TEST_F(ProgressTest, ExactValuesMayBeAsLargeAsTheyAre) {
  Open();
  EXPECT_EQ("25 100", After(1'000'000'000, 50, true, 2'000'000'000));
}

TEST_F(ProgressTest, AMaximumOfZeroDividesNothing) {
  Open();
  EXPECT_EQ("100 7", After(7, 20, true, 0));
}

TEST_F(ProgressTest, WhatIsShownStaysBetween0And100) {
  Open();
  EXPECT_EQ("0 0", After(-5, 0));
  window.StartStage(90);
  EXPECT_EQ("100 100", After(180, 0));
}

TEST_F(ProgressTest, TheOverallBarNeverFallsWithinARun) {
  Open();
  window.StartStage(50);
  EXPECT_EQ("50 100", After(100, 0));
  EXPECT_EQ("50 10", After(10, 0));
  window.Finish();
  Open();
  EXPECT_EQ("0 10", After(10, 0));
}

TEST_F(ProgressTest, TextsOfBothBarsAndTheExtraTextAreShown) {
  Open();
  window.SetOverallText(u"Alles");
  window.SetCurrentText(u"Lesen");
  const WideString extra = u"1/3";
  window.Update(1, 0, nullptr, false, 100);
  window.Update(2, 0, &extra, false, 100);
  EXPECT_EQ((std::vector<std::string>{"update_progress_bar(0, \"Alles\", 1, \"Lesen\")",
                                      "update_progress_bar(0, \"Alles\", 2, \"Lesen 1/3\")"}),
            host.calls);
}

TEST_F(ProgressTest, TheNameOfTheFileStandsBehindTheCurrentText) {
  Open();
  window.SetCurrentText(u"Processing file");
  window.SetCurrentFile(u"D:\\models\\a.ifc");
  EXPECT_EQ(u"D:\\models\\a.ifc", window.CurrentFile());
  After(1, 0);
  EXPECT_EQ("update_progress_bar(0, \"Overall progress\", 1, \"Processing file: a.ifc\")",
            host.calls.back());
  window.SetCurrentText(u"Finalizing");
  EXPECT_EQ(u"", window.CurrentFile());
}

TEST_F(ProgressTest, ACancelOfTheViewerIsPassedOn) {
  Open();
  host.tick = [] { return false; };
  EXPECT_FALSE(ProgressWindow::UpdateProgress(1, 0, nullptr, false, 100));
  host.tick = [] { return true; };
  EXPECT_TRUE(ProgressWindow::UpdateProgress(1, 0, nullptr, false, 100));
}

TEST_F(ProgressTest, AFinishedDialogIsFullHiddenAndForgotten) {
  Open();
  window.SetOverallText(u"Alles");
  window.SetCurrentText(u"Lesen");
  window.Finish();
  EXPECT_EQ((std::vector<std::string>{
                "update_progress_bar(100, \"Overall progress\", 100, \"Current progress\")",
                "show_progress_bar(0, 1, \"Merge\")"}),
            host.calls);
  EXPECT_FALSE(window.IsOpen());
}

TEST(ProgressWithoutTheFunction, GoesOn) {
  test::RecordedHost host;
  host.missing = {"update_progress_bar", "show_progress_bar"};
  host.Attach();
  ProgressWindow& window = ProgressWindow::Instance();
  window.InitProgress(u"Merge");
  EXPECT_TRUE(window.Update(1, 0, nullptr, false, 100));
  window.Finish();
  EXPECT_TRUE(host.calls.empty());
}

}  // namespace corvel::plugin
