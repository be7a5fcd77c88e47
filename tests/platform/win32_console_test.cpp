#ifdef _WIN32

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include "platform/console.h"

namespace platform {
namespace {

TEST(WindowsConsole, StandardOutputIsUtf8WhereItIsNoConsole) {
  testing::internal::CaptureStdout();
  EXPECT_TRUE(WriteStandardOutput(u"Geb\u00E4ude \u0142 \U0001F3E0\n"));
  EXPECT_EQ("Geb\xC3\xA4ude \xC5\x82 \xF0\x9F\x8F\xA0\n", testing::internal::GetCapturedStdout());
}

// --- Interrupts, in a process with a console of its own ------------------------------------------

constexpr DWORD kSeen = 42;
constexpr DWORD kNotSeen = 43;
constexpr DWORD kNotSent = 44;
constexpr DWORD kWait = 20'000;  // milliseconds

bool FlagGoesUp() {
  for (DWORD waited = 0; waited < kWait && !IsInterrupted(); waited += 5) ::Sleep(5);
  return IsInterrupted();
}

bool InterruptArrives() { return ::GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0) != 0 && FlagGoesUp(); }

// Runs one of the tests below that are off by default, and gives the exit status of its process.
DWORD RunWithAConsole(const std::wstring& test) {
  wchar_t program[MAX_PATH] = {};
  ::GetModuleFileNameW(nullptr, program, MAX_PATH);
  std::wstring line = L"\"" + std::wstring(program) +
                      L"\" --gtest_also_run_disabled_tests --gtest_filter=InConsole." + test;
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESHOWWINDOW;
  start.wShowWindow = SW_HIDE;
  PROCESS_INFORMATION process{};
  if (::CreateProcessW(program, line.data(), nullptr, nullptr, FALSE, CREATE_NEW_CONSOLE, nullptr,
                       nullptr, &start, &process) == 0) {
    return 0;
  }
  DWORD status = 0;
  if (::WaitForSingleObject(process.hProcess, 2 * kWait) != WAIT_OBJECT_0) {
    ::TerminateProcess(process.hProcess, 0);
  }
  ::GetExitCodeProcess(process.hProcess, &status);
  ::CloseHandle(process.hThread);
  ::CloseHandle(process.hProcess);
  return status;
}

TEST(InConsole, DISABLED_OneInterrupt) {
  CatchInterrupts();
  const bool before = IsInterrupted();
  const bool seen = InterruptArrives();
  ForgetInterrupt();
  const bool after = IsInterrupted();
  ::ExitProcess(!before && seen && !after ? kSeen : kNotSeen);
}

TEST(InConsole, DISABLED_AnInterruptAfterTheFirstWasForgotten) {
  CatchInterrupts();
  const bool first = InterruptArrives();
  ForgetInterrupt();
  const bool second = InterruptArrives();
  ::ExitProcess(first && second ? kSeen : kNotSeen);
}

TEST(InConsole, DISABLED_TwoInterrupts) {
  CatchInterrupts();
  if (!InterruptArrives()) ::ExitProcess(kNotSeen);
  ::GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0);
  ::Sleep(kWait);
  ::ExitProcess(kNotSeen);
}

TEST(InConsole, DISABLED_ABreak) {
  CatchInterrupts();
  const bool before = RequestToEnd().empty();
  if (::GenerateConsoleCtrlEvent(CTRL_BREAK_EVENT, 0) == 0) ::ExitProcess(kNotSent);
  const bool seen = FlagGoesUp();
  ForgetInterrupt();
  const bool stays = IsInterrupted() && RequestToEnd() == u"Ctrl-Break";
  ::ExitProcess(before && seen && stays ? kSeen : kNotSeen);
}

TEST(WindowsConsole, ABreakIsARequestToEndThatCannotBeForgotten) {
  const DWORD status = RunWithAConsole(L"DISABLED_ABreak");
  if (status == kNotSent) GTEST_SKIP() << "this system sends none";
  EXPECT_EQ(kSeen, status);
}

TEST(WindowsConsole, AnInterruptRaisesTheFlagUntilItIsForgotten) {
  EXPECT_EQ(kSeen, RunWithAConsole(L"DISABLED_OneInterrupt"));
  EXPECT_EQ(kSeen, RunWithAConsole(L"DISABLED_AnInterruptAfterTheFirstWasForgotten"));
}

TEST(WindowsConsole, ASecondInterruptEndsTheProcess) {
  EXPECT_EQ(130u, RunWithAConsole(L"DISABLED_TwoInterrupts"));
}

}  // namespace
}  // namespace platform

#endif
