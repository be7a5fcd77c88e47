#ifndef _WIN32

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "platform/platform.h"
#include "platform/posix/memory.h"
#include "support/temporary_folder.h"

namespace platform {
namespace {

using corvel::test::TemporaryFolder;

// What a box gave in a process of its own.
struct Outcome {
  Answer answer = Answer::kOk;
  bool byAPerson = false;
  std::string shown;  // on standard error
};

struct Channel {
  int ours = -1;
  int theirs = -1;
};

Channel OpenTerminal() {
  Channel channel;
  EXPECT_EQ(0, ::openpty(&channel.ours, &channel.theirs, nullptr, nullptr, nullptr));
  // As the program writes it, and without the echo of what is typed.
  struct termios settings {};
  ::tcgetattr(channel.theirs, &settings);
  settings.c_lflag &= ~static_cast<tcflag_t>(ECHO);
  settings.c_oflag &= ~static_cast<tcflag_t>(OPOST);
  ::tcsetattr(channel.theirs, TCSANOW, &settings);
  return channel;
}

Channel OpenPipe() {
  int ends[2];
  EXPECT_EQ(0, ::pipe(ends));
  return {ends[0], ends[1]};
}

std::string ReadAll(int descriptor) {
  std::string text;
  char part[256];
  ssize_t taken = 0;
  while ((taken = ::read(descriptor, part, sizeof part)) > 0) {
    text.append(part, static_cast<std::size_t>(taken));
  }
  return text;
}

[[noreturn]] void ShowAndExit(Buttons buttons, int input, int error) {
  ::dup2(input, STDIN_FILENO);
  ::dup2(error, STDERR_FILENO);
  const Answer answer = System().ShowMessageBox(u"Cancel", u"Stop now?", buttons, Icon::kQuestion);
  const int person = System().LastAnswerWasAPersons() ? 8 : 0;
  ::_exit(static_cast<int>(answer) | person);
}

Outcome FromStatus(int status, std::string shown) {
  EXPECT_TRUE(WIFEXITED(status));
  const int code = WEXITSTATUS(status);
  return {static_cast<Answer>(code & 7), (code & 8) != 0, std::move(shown)};
}

// The box on a terminal where a person has typed `typed`.
Outcome OnATerminal(const std::string& typed, Buttons buttons = Buttons::kYesNo) {
  const Channel terminal = OpenTerminal();
  EXPECT_EQ(static_cast<ssize_t>(typed.size()), ::write(terminal.ours, typed.data(), typed.size()));
  const pid_t child = ::fork();
  if (child == 0) ShowAndExit(buttons, terminal.theirs, terminal.theirs);
  ::close(terminal.theirs);
  const std::string shown = ReadAll(terminal.ours);
  ::close(terminal.ours);
  int status = 0;
  ::waitpid(child, &status, 0);
  return FromStatus(status, shown);
}

// The box where standard error is no terminal.
Outcome WithoutATerminal(Buttons buttons = Buttons::kYesNo) {
  const Channel pipe = OpenPipe();
  const int nothing = ::open("/dev/null", O_RDONLY);
  const pid_t child = ::fork();
  if (child == 0) ShowAndExit(buttons, nothing, pipe.theirs);
  ::close(pipe.theirs);
  ::close(nothing);
  const std::string shown = ReadAll(pipe.ours);
  ::close(pipe.ours);
  int status = 0;
  ::waitpid(child, &status, 0);
  return FromStatus(status, shown);
}

TEST(TerminalBox, WithoutATerminalTheAnswerIsYes) {
  const Outcome outcome = WithoutATerminal();
  EXPECT_EQ(Answer::kYes, outcome.answer);
  EXPECT_FALSE(outcome.byAPerson);
  EXPECT_EQ("Cancel: Stop now?\n", outcome.shown);
}

TEST(TerminalBox, APersonIsAskedOnATerminal) {
  for (const char* yes : {"y\n", "YES\n", "Yes\n"}) {
    const Outcome outcome = OnATerminal(yes);
    EXPECT_EQ(Answer::kYes, outcome.answer) << yes;
    EXPECT_TRUE(outcome.byAPerson);
    EXPECT_EQ("Cancel: Stop now?\n[y/n] ", outcome.shown);
  }
  for (const char* no : {"n\n", "No\n"}) EXPECT_EQ(Answer::kNo, OnATerminal(no).answer) << no;
}

TEST(TerminalBox, AnAnswerThatIsNoneIsAskedForAgain) {
  const Outcome outcome = OnATerminal("what?\n\nn\n");
  EXPECT_EQ(Answer::kNo, outcome.answer);
  EXPECT_EQ("Cancel: Stop now?\n[y/n] [y/n] [y/n] ", outcome.shown);
}

TEST(TerminalBox, TheEndOfTheInputIsYesButNobodys) {
  const Outcome outcome = OnATerminal("\x04");
  EXPECT_EQ(Answer::kYes, outcome.answer);
  EXPECT_FALSE(outcome.byAPerson);
}

TEST(TerminalBox, ThePolicyAnswersUnasked) {
  for (const Answer policy : {Answer::kYes, Answer::kNo}) {
    SetAnswerPolicy(policy);
    const Outcome asked = OnATerminal("");
    const Outcome unasked = WithoutATerminal();
    SetAnswerPolicy({});
    EXPECT_EQ(policy, asked.answer);
    EXPECT_FALSE(asked.byAPerson);
    EXPECT_EQ("Cancel: Stop now?\n", asked.shown);
    EXPECT_EQ(policy, unasked.answer);
  }
}

TEST(TerminalBox, OnlyYesNoQuestionsAreAsked) {
  for (const Buttons buttons : {Buttons::kOk, Buttons::kOkCancel}) {
    const Outcome outcome = OnATerminal("", buttons);
    EXPECT_EQ(Answer::kOk, outcome.answer);
    EXPECT_EQ("Cancel: Stop now?\n", outcome.shown);
  }
}

TEST(TerminalBox, TextIsUtf8AndEndsInOneLineFeed) {
  testing::internal::CaptureStderr();
  System().ShowMessageBox(u"B\u0142\u0105d", u"line\n", Buttons::kOk, Icon::kError);
  EXPECT_EQ("Błąd: line\n", testing::internal::GetCapturedStderr());
}

// --- Programs ------------------------------------------------------------------------------------

bool Eventually(const std::function<bool()>& condition) {
  for (int i = 0; i < 500 && !condition(); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return condition();
}

TEST(ShellOpen, AProgramIsStartedWithTheParameterAsOneArgument) {
  TemporaryFolder folder;
  const std::u16string made = folder.Path("made by it.txt");
  EXPECT_TRUE(System().ShellOpen(u"/usr/bin/touch", u"\"" + made + u"\""));
  EXPECT_TRUE(Eventually([&] { return folder.Has("made by it.txt"); }));
  EXPECT_EQ(std::vector<std::string>{"made by it.txt"}, folder.Names());
}

TEST(ShellOpen, AProgramThatIsNotThereIsRefused) {
  TemporaryFolder folder;
  EXPECT_FALSE(System().ShellOpen(folder.Path("none"), u"\"x\""));
  EXPECT_FALSE(System().ShellOpen(folder.Write("no_program", "x"), u"\"x\""));
}

TEST(ShellOpen, TheStartedProgramLeavesNoDeadChildBehind) {
  EXPECT_TRUE(System().ShellOpen(u"/bin/true", u"x"));
  EXPECT_EQ(-1, ::waitpid(-1, nullptr, WNOHANG));
}

TEST(ShellOpen, WithoutADisplayNoDocumentIsOpened) {
  const char* const names[] = {"DISPLAY", "WAYLAND_DISPLAY"};
  std::optional<std::string> before[2];
  for (int i = 0; i < 2; ++i) {
    if (const char* value = std::getenv(names[i])) before[i] = value;
    ::unsetenv(names[i]);
  }
  EXPECT_FALSE(System().ShellOpen(u"/tmp/log.txt", u""));
  for (int i = 0; i < 2; ++i) {
    if (before[i]) ::setenv(names[i], before[i]->c_str(), 1);
  }
}

// --- Memory --------------------------------------------------------------------------------------

TEST(MemoryInfo, KilobytesBecomeBytes) {
  const auto figures = ParseMemoryInfo(
      "MemTotal:       16000000 kB\n"
      "MemFree:          100000 kB\n"
      "MemAvailable:    9000000 kB\n"
      "SwapCached:            0 kB\n"
      "SwapTotal:       2000000 kB\n"
      "SwapFree:        1500000 kB\n");
  ASSERT_TRUE(figures);
  EXPECT_EQ(16'384'000'000u, figures->totalPhysical);
  EXPECT_EQ(9'216'000'000u, figures->availablePhysical);
  EXPECT_EQ(18'432'000'000u, figures->totalPageFile);
  EXPECT_EQ(10'752'000'000u, figures->availablePageFile);
}

#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__)

long ResidentPages() {
  std::ifstream figures("/proc/self/statm");
  long all = 0;
  long resident = 0;
  figures >> all >> resident;
  return resident;
}

TEST(ReturnFreeMemory, WhatHasBeenFreedBelowSomethingInUseGoesBackToTheSystem) {
  constexpr std::size_t kPiece = 64 << 10;
  std::vector<std::unique_ptr<char[]>> pieces;
  for (int i = 0; i < 1000; ++i) {
    pieces.push_back(std::make_unique<char[]>(kPiece));
    std::memset(pieces.back().get(), i, kPiece);
  }
  const auto inUse = std::make_unique<char[]>(kPiece);
  pieces.clear();
  const long before = ResidentPages();
  ReturnFreeMemory();
  EXPECT_LT(ResidentPages() * ::sysconf(_SC_PAGESIZE),
            before * ::sysconf(_SC_PAGESIZE) - (60L << 20));
  EXPECT_EQ(0, inUse[0]);
}

#endif

TEST(MemoryInfo, WithoutOneOfTheLinesThereAreNoFigures) {
  EXPECT_FALSE(ParseMemoryInfo(""));
  EXPECT_FALSE(ParseMemoryInfo("MemTotal: 1 kB\nMemAvailable: 1 kB\nSwapTotal: 1 kB\n"));
  EXPECT_FALSE(ParseMemoryInfo("MemTotal:\nMemAvailable: 1 kB\nSwapTotal: 1 kB\nSwapFree: 1 kB"));
  EXPECT_FALSE(ParseMemoryInfo("MemTotal: kB\nMemAvailable:"));
}

}  // namespace
}  // namespace platform

#endif
