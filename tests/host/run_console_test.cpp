#include "host/run_console.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <utility>

#include "core/cancellation.h"
#include "platform/console.h"
#include "support/test_platform.h"

namespace corvel::host {

namespace {

class RunConsoleTest : public testing::Test {
 protected:
  RunConsoleTest() { Cancellation::OfProcess().ForgetAnswer(); }

  WideString Take() { return std::exchange(written, {}); }
  bool Draw() { return console.Draw({10, 20, u"All", u"Step"}); }

  test::TestPlatform platform;
  WideString written;
  RunConsole console{{[this](WideView text) { written += text; }, [] { return 60; }, true}};
};

}  // namespace

TEST_F(RunConsoleTest, ALineNamesTheProgramAndHasNoBlankEnd) {
  console.Say(u"Parsing will be terminate.\n \n");
  EXPECT_EQ(u"corvel: Parsing will be terminate.\n", Take());
}

TEST_F(RunConsoleTest, ControlCharactersOfAModelDoNotReachTheTerminal) {
  console.Say(u"Unknown schema identifier: \x1b[2J");
  EXPECT_EQ(u"corvel: Unknown schema identifier: ?[2J\n", Take());
}

TEST_F(RunConsoleTest, BarsGiveWayToALineAndComeBack) {
  EXPECT_TRUE(Draw());
  const WideString bars = Take();
  EXPECT_NE(WideString::npos, bars.find(u"Step")) << ToUtf8(bars);
  console.Say(u"hello");
  EXPECT_EQ(
      u"\r\x1b[2K\x1b[A\x1b[2K"
      u"corvel: hello\n",
      Take());
  Draw();
  EXPECT_EQ(bars, Take());
}

TEST_F(RunConsoleTest, BarsTellSpeedAndTimeLeftOfALongRun) {
  console.StartClock(100'000'000);
  platform.nanoseconds += 10'000'000'000;
  Draw();
  EXPECT_NE(WideString::npos, Take().find(u"All (1.0 MB/s, 1:30 left)"));
}

TEST(ProgressForPrograms, EachViewIsALineAndTheSameIsToldOnce) {
  test::TestPlatform platform;
  WideString written;
  RunConsole console{{[&written](WideView text) { written += text; }, {}, false, true}};
  console.StartClock(1000);
  platform.nanoseconds = 2'500'000'000;
  console.Draw({50, 20, u"All", u"Reading \"a\"\x1b"});
  console.Draw({50, 20, u"All", u"Reading \"a\"\x1b"});
  console.Draw({100, 100, u"All", u"Step"});
  console.TellEnd(4);
  EXPECT_EQ(
      "{\"event\":\"progress\",\"overall\":50,\"step\":20,\"overallText\":\"All\","
      "\"stepText\":\"Reading \\\"a\\\"\\u001b\",\"seconds\":2.5,\"secondsLeft\":2.5}\n"
      "{\"event\":\"progress\",\"overall\":99,\"step\":100,\"overallText\":\"All\","
      "\"stepText\":\"Step\",\"seconds\":2.5,\"secondsLeft\":0.025}\n"
      "{\"event\":\"end\",\"status\":4}\n",
      ToUtf8(written));
}

TEST(ProgressForPrograms, NobodyElseIsToldTheEnd) {
  WideString written;
  RunConsole console{{[&written](WideView text) { written += text; }, {}, false, false}};
  console.Draw({50, 20, u"All", u"Step"});
  console.TellEnd(0);
  EXPECT_EQ(u"", written);
}

TEST_F(RunConsoleTest, BarsGiveWayToAMessageBox) {
  Draw();
  Take();
  ::platform::Get().ShowMessageBox(u"t", u"x", ::platform::Buttons::kOk, ::platform::Icon::kError);
  EXPECT_EQ(u"\r\x1b[2K\x1b[A\x1b[2K", Take());
  EXPECT_EQ(1u, platform.boxes.size());
}

TEST_F(RunConsoleTest, AnAutomaticYesIsToldAndCancels) {
  platform.answersAreAPersons = false;
  EXPECT_TRUE(Cancellation::OfProcess().Ask());
  EXPECT_TRUE(console.WasCancelled());
  EXPECT_EQ(u"corvel: Yes, as nobody is asked.\n", Take());
}

TEST_F(RunConsoleTest, AnAutomaticYesThatNobodyAskedForIsNoWishToStop) {
  platform.answersAreAPersons = false;
  EXPECT_FALSE(console.WasStoppedUnasked());
  EXPECT_TRUE(Cancellation::OfProcess().Ask());
  EXPECT_TRUE(console.WasStoppedUnasked());
}

TEST_F(RunConsoleTest, NothingIsDoneBeforeTheEnd) {
  console.Draw({100, 100, u"All", u"Step"});
  EXPECT_NE(WideString::npos, written.find(u" 99%\n")) << ToUtf8(written);
  EXPECT_TRUE(written.ends_with(u"100%")) << ToUtf8(written);
}

TEST_F(RunConsoleTest, TextsOfBoxesAreSafeToShow) {
  ::platform::Get().ShowMessageBox(u"\x1b[2J", u"a\n\u202eb\x9b", ::platform::Buttons::kOk,
                                   ::platform::Icon::kError);
  ASSERT_EQ(1u, platform.boxes.size());
  EXPECT_EQ(u"?[2J", platform.boxes.front().title);
  EXPECT_EQ(u"a\n?b?", platform.boxes.front().text);
}

TEST_F(RunConsoleTest, AYesOfAPersonCancelsWithoutAnotherWord) {
  EXPECT_TRUE(Cancellation::OfProcess().Ask());
  EXPECT_TRUE(console.WasCancelled());
  EXPECT_FALSE(console.WasStoppedUnasked());
  EXPECT_EQ(u"", Take());
}

TEST_F(RunConsoleTest, ANoDoesNotCancel) {
  platform.answers = {::platform::Answer::kNo};
  EXPECT_FALSE(Cancellation::OfProcess().Ask());
  EXPECT_FALSE(console.WasCancelled());
  EXPECT_TRUE(Draw());
}

TEST_F(RunConsoleTest, AfterAYesNobodyIsAskedAgainAndTicksSayStop) {
  Cancellation::OfProcess().Ask();
  EXPECT_FALSE(Draw());
  EXPECT_TRUE(Cancellation::OfProcess().Ask());
  EXPECT_EQ(1u, platform.boxes.size());
}

TEST_F(RunConsoleTest, TheLogQuestionIsAnsweredWithNoUnshown) {
  EXPECT_FALSE(console.LogWasOffered());
  EXPECT_EQ(::platform::Answer::kNo, ::platform::Get().ShowMessageBox(
                                         u"Corvel", u"Open the log?", ::platform::Buttons::kYesNo,
                                         ::platform::Icon::kInformation));
  EXPECT_TRUE(console.LogWasOffered());
  EXPECT_FALSE(console.WasCancelled());
  EXPECT_TRUE(platform.boxes.empty());
  EXPECT_EQ(u"", Take());
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
};

TEST_F(Interrupted, TheNextTickSaysStop) {
  EXPECT_FALSE(Draw());
  EXPECT_FALSE(console.WasCancelled());
}

TEST_F(Interrupted, AnAutomaticYesIsTheUsersWish) {
  Draw();
  EXPECT_TRUE(Cancellation::OfProcess().Ask());
  EXPECT_FALSE(console.WasStoppedUnasked());
}

TEST_F(Interrupted, ANoTakesItBack) {
  Draw();
  platform.answers = {::platform::Answer::kNo};
  EXPECT_FALSE(Cancellation::OfProcess().Ask());
  EXPECT_FALSE(console.WasCancelled());
  EXPECT_FALSE(::platform::IsInterrupted());
  EXPECT_TRUE(Draw());
}

TEST_F(Interrupted, AStepWithoutTicksAsksAndTakesANo) {
  platform.answers = {::platform::Answer::kNo};
  EXPECT_FALSE(console.ShallEnd());
  EXPECT_EQ(1u, platform.boxes.size());
  EXPECT_FALSE(console.ShallEnd());
  EXPECT_EQ(1u, platform.boxes.size());
}

TEST_F(Interrupted, AStepWithoutTicksEndsWithAYesAndAsksOnce) {
  EXPECT_TRUE(console.ShallEnd());
  EXPECT_TRUE(console.ShallEnd());
  EXPECT_EQ(1u, platform.boxes.size());
  EXPECT_TRUE(console.WasCancelled());
}

// A request to end cannot be taken back: each test has a process of its own.
class AskedToEnd : public RunConsoleTest {
 protected:
  template <class Check>
  void ExpectInProcess(Check check) {
    EXPECT_EXIT(
        {
          for (const int signal : {SIGTERM, SIGHUP}) std::signal(signal, SIG_DFL);
          ::platform::CatchInterrupts();
          check();
          std::exit(testing::Test::HasFailure() ? 1 : 0);
        },
        testing::ExitedWithCode(0), "");
  }
};

TEST_F(AskedToEnd, TheRunIsCancelledWithoutAQuestionAndToldOnce) {
  ExpectInProcess([this] {
    EXPECT_TRUE(Draw());
    Take();
    std::raise(SIGTERM);
    console.EraseBars();
    Take();
    EXPECT_FALSE(Draw());
    console.EraseBars();
    Take();
    EXPECT_TRUE(Cancellation::OfProcess().Ask());
    EXPECT_TRUE(Cancellation::OfProcess().Ask());
    EXPECT_TRUE(console.ShallEnd());
    EXPECT_EQ(u"corvel: Asked to end by SIGTERM.\n", Take());
    EXPECT_TRUE(console.WasCancelled());
    EXPECT_TRUE(platform.boxes.empty());
  });
}

TEST_F(AskedToEnd, AQuestionThatWasOpenHasItsAnswer) {
  ExpectInProcess([this] {
    platform.answersAreAPersons = false;
    platform.onBox = [] { std::raise(SIGHUP); };
    EXPECT_TRUE(Cancellation::OfProcess().Ask());
    EXPECT_EQ(u"corvel: Asked to end by SIGHUP.\n", Take());
    EXPECT_TRUE(console.WasCancelled());
  });
}
#endif

}  // namespace corvel::host
