#include "plugin/run_reports.h"

#include <gtest/gtest.h>

#include "core/cancellation.h"
#include "core/reporting.h"
#include "plugin/progress_window.h"
#include "plugin/run_report_file.h"
#include "recorded_host.h"
#include "step/log/ifc_log.h"
#include "support/temporary_folder.h"
#include "support/test_platform.h"

namespace corvel::plugin {

namespace {

class ReportTest : public testing::Test {
 protected:
  ReportTest() {
    host.texts = {{"error_caption", u"Error"},
                  {"merge_combine_log", u"Log:"},
                  {"show_log_question", u"See the log?"},
                  {"unknown_schema_identifier", u"Unknown schema"}};
    host.Attach();
    StartRun();
    IfcLog::Instance().Open(folder.Path("a.ifc"));
  }
  ~ReportTest() override {
    IfcLog::Instance().Close();
    Cancellation::OfProcess().mode = CancelMode::kAsk;
  }

  std::string BoxWith(const std::string& text) const {
    return R"(message_box("Error", ")" + text + "\nLog: " + ToUtf8(folder.Path("a_IFC_LOG.txt")) +
           "\", 16)";
  }
  // What is in the log behind the date line, without its margins of blanks.
  std::string LogText() const {
    std::string text = folder.Read("a_IFC_LOG.txt");
    text = text.substr(text.find("]\r\n") + 3);
    const std::string margin = std::string(199, ' ') + "\n";
    for (std::size_t at = text.find(margin); at != std::string::npos; at = text.find(margin)) {
      text.erase(at, margin.size());
    }
    return text;
  }
  bool LogIsThere() const { return folder.Has("a_IFC_LOG.txt"); }

  test::TestPlatform platform;
  const test::TemporaryFolder folder;
  test::RecordedHost host;
};

}  // namespace

TEST_F(ReportTest, ModeZeroShowsTheTextAndWhereTheLogLies) {
  EXPECT_EQ(0, ShowError("", u"Broken.", kReportShow));
  EXPECT_EQ((std::vector<std::string>{BoxWith("Broken.")}), host.calls);
}

TEST_F(ReportTest, TheTextOfTheKeyAndABlankStandInFront) {
  ShowError("unknown_schema_identifier", u": IFC5", kReportShow);
  EXPECT_EQ((std::vector<std::string>{BoxWith("Unknown schema : IFC5")}), host.calls);
}

TEST_F(ReportTest, AnEmptyKeyLooksNothingUp) {
  host.texts.clear();
  ShowError("", u"Broken.", kReportLog);
  EXPECT_TRUE(host.texts.empty());
}

TEST_F(ReportTest, ModeOneWaitsForTheNextModeZeroAndBothAreShownInOneBox) {
  ShowError("", u"first ", kReportCollect);
  EXPECT_TRUE(host.calls.empty());
  ShowError("", u"second", kReportShow);
  EXPECT_EQ((std::vector<std::string>{BoxWith("first second")}), host.calls);
  ShowError("", u"third", kReportShow);
  EXPECT_EQ(BoxWith("third"), host.calls.back());
}

TEST_F(ReportTest, ModeZeroWithNothingToSayShowsNoBox) {
  ShowError("", u"", kReportShow);
  EXPECT_TRUE(host.calls.empty());
  EXPECT_TRUE(SomethingWasReported());
}

TEST_F(ReportTest, ModeZeroWithNothingOfItsOwnShowsWhatWaits) {
  ShowError("", u"first", kReportCollect);
  ShowError("", u"", kReportShow);
  EXPECT_EQ((std::vector<std::string>{BoxWith("first")}), host.calls);
  ShowError("", u"", kReportShow);
  EXPECT_EQ(1u, host.calls.size());
}

TEST_F(ReportTest, ModeTwoIsLoggedOnly) {
  ShowError("", u"quiet", kReportLog);
  EXPECT_TRUE(host.calls.empty());
  IfcLog::Instance().Close();
  EXPECT_EQ("quiet", LogText());
}

TEST_F(ReportTest, EveryModeIsLoggedWithTheTextOfTheKey) {
  ShowError("unknown_schema_identifier", u"a|", kReportShow);
  ShowError("", u"b|", kReportCollect);
  ShowError("", u"c", kReportLog);
  IfcLog::Instance().Close();
  EXPECT_EQ("Unknown schema a|b|c", LogText());
}

TEST_F(ReportTest, AMutedLogTakesReportsAndStaysMuted) {
  IfcLog::Instance().SetMuted(true);
  ShowError("", u"heard", kReportLog);
  IfcLog::Instance().LogText(u"unheard");
  EXPECT_TRUE(IfcLog::Instance().IsMuted());
  IfcLog::Instance().SetMuted(false);
  IfcLog::Instance().Close();
  EXPECT_EQ("heard", LogText());
}

TEST_F(ReportTest, ACancelModeOfOneHoldsTheBoxBackAndZeroAndTwoDoNot) {
  for (const CancelMode mode :
       {CancelMode::kAsk, CancelMode::kHoldBackBoxes, CancelMode::kEndUnasked}) {
    Cancellation::OfProcess().mode = mode;
    host.calls.clear();
    ShowError("", u"x", kReportShow);
    EXPECT_EQ(mode == CancelMode::kHoldBackBoxes ? 0u : 1u, host.calls.size())
        << static_cast<int>(mode);
  }
}

TEST_F(ReportTest, AHeldBackBoxTakesThePendingTextAlong) {
  ShowError("", u"first", kReportCollect);
  Cancellation::OfProcess().mode = CancelMode::kHoldBackBoxes;
  ShowError("", u"second", kReportShow);
  Cancellation::OfProcess().mode = CancelMode::kAsk;
  ShowError("", u"third", kReportShow);
  EXPECT_EQ((std::vector<std::string>{BoxWith("third")}), host.calls);
}

TEST_F(ReportTest, WithoutReportsTheLogIsGoneAndNobodyIsAsked) {
  FinishRun();
  EXPECT_FALSE(LogIsThere());
  EXPECT_TRUE(platform.boxes.empty());
}

TEST_F(ReportTest, AfterAReportTheUserIsAskedAboutTheLog) {
  ShowError("", u"x", kReportLog);
  platform.answers = {::platform::Answer::kNo};
  Cancellation::OfProcess().mode = CancelMode::kEndUnasked;
  FinishRun();
  EXPECT_EQ((std::vector<test::TestPlatform::Box>{{u"Corvel", u"See the log?",
                                                   ::platform::Buttons::kYesNo,
                                                   ::platform::Icon::kInformation}}),
            platform.boxes);
  EXPECT_TRUE(LogIsThere());
  EXPECT_TRUE(platform.opened.empty());
  EXPECT_EQ(CancelMode::kAsk, Cancellation::OfProcess().mode);
}

TEST_F(ReportTest, AYesOpensTheLogAndKeepsIt) {
  ShowError("", u"x", kReportLog);
  platform.answers = {::platform::Answer::kYes};
  FinishRun();
  EXPECT_EQ((std::vector<test::TestPlatform::Opened>{{folder.Path("a_IFC_LOG.txt"), u""}}),
            platform.opened);
  EXPECT_TRUE(LogIsThere());
  EXPECT_EQ(CancelMode::kAsk, Cancellation::OfProcess().mode);
}

TEST_F(ReportTest, BothAnswersClearTheErrorForTheNextRun) {
  for (const auto answer : {::platform::Answer::kYes, ::platform::Answer::kNo}) {
    ShowError("", u"x", kReportLog);
    platform.answers = {answer};
    FinishRun();
    EXPECT_FALSE(SomethingWasReported());
  }
}

TEST_F(ReportTest, AFinishedRunUnmutesTheLog) {
  IfcLog::Instance().SetMuted(true);
  FinishRun();
  EXPECT_FALSE(IfcLog::Instance().IsMuted());
  EXPECT_FALSE(IfcLog::Instance().HasStream());
}

TEST_F(ReportTest, ANewRunForgetsReportsPendingTextsAndCancels) {
  ShowError("", u"old", kReportCollect);
  Cancellation::OfProcess().mode = CancelMode::kEndUnasked;
  StartRun();
  EXPECT_FALSE(SomethingWasReported());
  EXPECT_EQ(CancelMode::kAsk, Cancellation::OfProcess().mode);
  ShowError("", u"new", kReportShow);
  EXPECT_EQ((std::vector<std::string>{BoxWith("new")}), host.calls);
}

std::vector<WideString> TextsOf(const std::vector<ToldText>& told) {
  std::vector<WideString> texts;
  texts.reserve(told.size());
  for (const ToldText& one : told) texts.push_back(one.text);
  return texts;
}

TEST_F(ReportTest, WhatABoxShowsAtOnceIsOneFailureOfAReport) {
  ReportGatherer gatherer("merge");
  {
    const ReportsHeard heard(&gatherer);
    ShowError("", u"alone", kReportShow);
    ShowError("", u"first, ", kReportCollect);
    ShowError("", u"by the way", kReportLog);
    ShowError("", u"last", kReportCollect);
    ShowError("", {}, kReportShow);
    ShowError("", u"in front, ", kReportCollect);
    ShowError("", u"behind", kReportShow);
    ShowError("", u"alone again", kReportShow);
  }
  EXPECT_EQ(
      (std::vector<WideString>{u"alone", u"first, last", u"in front, behind", u"alone again"}),
      TextsOf(gatherer.Report().failures));
  EXPECT_EQ((std::vector<WideString>{u"by the way"}), TextsOf(gatherer.Report().messages));
}

TEST_F(ReportTest, WhatGoesIntoAReportHasTheFileThatWasAtWork) {
  ReportGatherer gatherer("merge");
  {
    const ReportsHeard heard(&gatherer);
    ProgressWindow& progress = ProgressWindow::Instance();
    progress.SetCurrentText(u"Reading");
    progress.SetCurrentFile(u"a.ifc");
    ShowError("", u"not readable", kReportShow);
    ShowError("", u"by the way", kReportLog);
    progress.SetCurrentText(u"Comparing");
    ShowError("", u"of all", kReportShow);
  }
  const RunReport& report = gatherer.Report();
  ASSERT_EQ(2u, report.failures.size());
  ASSERT_EQ(1u, report.messages.size());
  EXPECT_EQ(u"a.ifc", report.failures[0].file);
  EXPECT_EQ(u"a.ifc", report.messages[0].file);
  EXPECT_EQ(WideString(), report.failures[1].file);
}

TEST(ReportWithoutTexts, IsShownAllTheSame) {
  test::RecordedHost host;
  host.missing = {"get_text"};
  host.Attach();
  StartRun();
  ShowError("unknown_schema_identifier", u"x", kReportShow);
  const std::string log = ToUtf8(IfcLog::Instance().Path());
  EXPECT_EQ((std::vector<std::string>{"message_box(\"\", \" x\n " + log + "\", 16)"}), host.calls);
  StartRun();
}

}  // namespace corvel::plugin
