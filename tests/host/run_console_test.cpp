#include "host/run_console.h"

#include <gtest/gtest.h>

#include <csignal>
#include <utility>

#include "platform/console.h"
#include "step/log/ifc_log.h"
#include "support/temporary_folder.h"
#include "support/test_platform.h"

namespace corvel::host {

namespace {

class RunConsoleTest : public testing::Test {
 protected:
  RunConsoleTest() { CancelMode() = 0; }
  ~RunConsoleTest() override {
    IfcLog::Instance().Close();
    CancelMode() = 0;
  }

  void OpenLog() { IfcLog::Instance().Open(folder.Path("a.ifc")); }
  // What is in the log without its margins.
  std::string LogText() {
    IfcLog::Instance().Close();
    std::string text;
    for (const char c : folder.Read("a_IFC_LOG.txt")) {
      if (c != ' ' && c != '\n' && c != '\r') text.push_back(c);
    }
    return text.substr(text.find(']') + 1);
  }
  WideString Take() { return std::exchange(written, {}); }

  test::TestPlatform platform;
  const test::TemporaryFolder folder;
  WideString written;
  RunConsole console{{[this](WideView text) { written += text; }, [] { return 60; }, true}};
};

}  // namespace

TEST_F(RunConsoleTest, AReportIsShownWithTheFileAtWork) {
  OpenLog();
  console.SetFileAtWork(u"a.ifc");
  EXPECT_EQ(0, RunConsole::Reporter("", u"Entity named: IFCFOO not found.", kReportShow));
  EXPECT_EQ(u"corvel: a.ifc: Entity named: IFCFOO not found.\n", Take());
  console.SetFileAtWork(u"");
  console.Report("", u"Parsing will be terminate.\n", kReportShow);
  EXPECT_EQ(u"corvel: Parsing will be terminate.\n", Take());
}

TEST_F(RunConsoleTest, TheTextOfTheKeyStandsBeforeTheMessage) {
  OpenLog();
  console.Report("unknown_entity_name_in_schema", u"IFCFOO", kReportShow);
  EXPECT_EQ(u"corvel: The schema has no class named IFCFOO\n", Take());
  console.Report("unknown_schema_identifier", u": IFC5", kReportShow);
  EXPECT_EQ(u"corvel: Unknown schema identifier: IFC5\n", Take());
  console.Report("could_not_open_file_extension", u" a.txt", kReportShow);
  EXPECT_EQ(u"corvel: Could not open a file whose name does not end in .ifc: a.txt\n", Take());
}

TEST_F(RunConsoleTest, TheLogHasEveryReportAsItWasMade) {
  OpenLog();
  console.Report("unknown_schema_identifier", u": IFC5", kReportShow);
  console.Report("", u"|collected", kReportCollect);
  console.Report("", u"|logged", kReportLog);
  EXPECT_EQ("Unknownschemaidentifier:IFC5|collected|logged", LogText());
}

TEST_F(RunConsoleTest, ReportsGoPastTheMutingAndLeaveIt) {
  OpenLog();
  IfcLog::Instance().SetMuted(true);
  console.Report("", u"heard", kReportLog);
  EXPECT_TRUE(IfcLog::Instance().IsMuted());
  IfcLog::Instance().LogText(u"unheard");
  IfcLog::Instance().SetMuted(false);
  EXPECT_EQ("heard", LogText());
}

TEST_F(RunConsoleTest, CollectedReportsAreShownWithTheNextShownOne) {
  OpenLog();
  console.Report("", u"first\n", kReportCollect);
  console.Report("", u"second", kReportCollect);
  EXPECT_EQ(u"", Take());
  console.Report("", u"third", kReportShow);
  EXPECT_EQ(u"corvel: first\nsecond\nthird\n", Take());
  console.Report("", u"fourth", kReportShow);
  EXPECT_EQ(u"corvel: fourth\n", Take());
}

TEST_F(RunConsoleTest, WhatIsOnlyLoggedIsNotShown) {
  OpenLog();
  console.Report("", u"quiet", kReportLog);
  EXPECT_EQ(u"", Take());
}

TEST_F(RunConsoleTest, WithoutALogEveryReportIsShown) {
  console.Report("", u"one", kReportLog);
  console.Report("", u"two", kReportCollect);
  EXPECT_EQ(u"corvel: one\ncorvel: two\n", Take());
}

TEST_F(RunConsoleTest, EveryModeCountsAndMessageBoxesDoNot) {
  OpenLog();
  console.Report("", u"a", kReportShow);
  console.Report("", u"b", kReportCollect);
  console.Report("", u"c", kReportLog);
  ::platform::Get().ShowMessageBox(u"t", u"x", ::platform::Buttons::kOk, ::platform::Icon::kError);
  EXPECT_EQ(3u, console.ReportCount());
  EXPECT_EQ(1u, platform.boxes.size());
}

TEST_F(RunConsoleTest, ACancelModeOfOneHoldsReportsBack) {
  OpenLog();
  CancelMode() = 1;
  console.Report("", u"held", kReportShow);
  EXPECT_EQ(u"", Take());
  CancelMode() = 2;
  console.Report("", u"shown", kReportShow);
  EXPECT_EQ(u"corvel: shown\n", Take());
}

TEST_F(RunConsoleTest, ControlCharactersOfAModelDoNotReachTheTerminal) {
  OpenLog();
  console.Report("unknown_schema_identifier", u": \x1b[2J", kReportShow);
  EXPECT_EQ(u"corvel: Unknown schema identifier: ?[2J\n", Take());
}

TEST_F(RunConsoleTest, BarsGiveWayToALineAndComeBack) {
  console.Progress().SetTexts(u"All", u"Step");
  EXPECT_TRUE(RunConsole::Ticks(10, 0, nullptr, false, 100));
  const WideString bars = Take();
  EXPECT_NE(WideString::npos, bars.find(u"Step")) << ToUtf8(bars);
  console.Say(u"hello");
  EXPECT_EQ(
      u"\r\x1b[2K\x1b[A\x1b[2K"
      u"corvel: hello\n",
      Take());
  console.Tick(10, 0, nullptr, false, 100);
  EXPECT_EQ(bars, Take());
}

TEST_F(RunConsoleTest, BarsGiveWayToAMessageBox) {
  console.Tick(10, 0, nullptr, false, 100);
  Take();
  ::platform::Get().ShowMessageBox(u"t", u"x", ::platform::Buttons::kOk, ::platform::Icon::kError);
  EXPECT_EQ(u"\r\x1b[2K\x1b[A\x1b[2K", Take());
}

TEST_F(RunConsoleTest, AnAutomaticYesIsNoWishOfTheUser) {
  platform.answersAreAPersons = false;
  EXPECT_TRUE(AskCancelQuestion(SharedCancelTexts()));
  EXPECT_FALSE(console.WasCancelled());
  EXPECT_EQ(u"corvel: Yes, as nobody is asked.\n", Take());
}

TEST_F(RunConsoleTest, AYesOfAPersonCancels) {
  platform.answersAreAPersons = true;
  EXPECT_TRUE(AskCancelQuestion(SharedCancelTexts()));
  EXPECT_TRUE(console.CancelIsConfirmed());
  EXPECT_EQ(u"", Take());
}

TEST_F(RunConsoleTest, ANoOfAPersonDoesNot) {
  platform.answers = {::platform::Answer::kNo};
  EXPECT_FALSE(AskCancelQuestion(SharedCancelTexts()));
  EXPECT_FALSE(console.WasCancelled());
}

TEST_F(RunConsoleTest, TheCancelQuestionHasItsTexts) {
  AskCancelQuestion(SharedCancelTexts());
  ASSERT_EQ(1u, platform.boxes.size());
  EXPECT_EQ(u"Cancel", platform.boxes[0].title);
  EXPECT_EQ(u"Are you sure you want to cancel?", platform.boxes[0].text);
}

#ifndef _WIN32
class Interrupted : public RunConsoleTest {
 protected:
  Interrupted() {
    ::platform::CatchInterrupts();
    std::raise(SIGINT);
    platform.answersAreAPersons = false;
  }
  ~Interrupted() override { ::platform::ForgetInterrupt(); }
  bool Tick() { return console.Tick(1, 0, nullptr, false, 100); }
};

TEST_F(Interrupted, TheNextTickSaysCancel) {
  EXPECT_FALSE(Tick());
  EXPECT_TRUE(console.WasCancelled());
  EXPECT_FALSE(console.CancelIsConfirmed());
}

TEST_F(Interrupted, AnAutomaticYesConfirmsItAndNobodyIsAskedAgain) {
  Tick();
  EXPECT_TRUE(AskCancelQuestion(SharedCancelTexts()));
  EXPECT_TRUE(console.CancelIsConfirmed());
  EXPECT_FALSE(Tick());
  EXPECT_TRUE(AskCancelQuestion(SharedCancelTexts()));
  EXPECT_EQ(1u, platform.boxes.size());
}

TEST_F(Interrupted, ANoTakesItBack) {
  Tick();
  platform.answers = {::platform::Answer::kNo};
  EXPECT_FALSE(AskCancelQuestion(SharedCancelTexts()));
  EXPECT_FALSE(console.WasCancelled());
  EXPECT_FALSE(::platform::IsInterrupted());
  EXPECT_TRUE(Tick());
}
#endif

}  // namespace corvel::host
