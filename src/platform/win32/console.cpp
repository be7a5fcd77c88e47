#include "platform/console.h"

#include <windows.h>

#include <shellapi.h>

#include <atomic>
#include <cstdio>

#include "platform/utf8.h"
#include "platform/win32/wide.h"

namespace platform {

namespace {

constexpr UINT kInterruptedStatus = 130;

std::atomic<bool> interrupted{false};

bool IsConsole(HANDLE handle) {
  DWORD mode = 0;
  return ::GetConsoleMode(handle, &mode) != 0;
}

// Runs on a thread that the system makes for it.
BOOL WINAPI OnControl(DWORD control) {
  if (control != CTRL_C_EVENT) return FALSE;
  if (interrupted.exchange(true)) ::TerminateProcess(::GetCurrentProcess(), kInterruptedStatus);
  return TRUE;
}

}  // namespace

std::vector<std::u16string> ProgramArguments(int /*count*/, char** /*arguments*/) {
  std::vector<std::u16string> texts;
  int count = 0;
  wchar_t** const arguments = ::CommandLineToArgvW(::GetCommandLineW(), &count);
  for (int i = 1; arguments != nullptr && i < count; ++i) texts.push_back(FromNative(arguments[i]));
  ::LocalFree(arguments);
  return texts;
}

// Handles are no small numbers here: none is taken twice.
void KeepStandardStreams() {}

// A console takes wide text whatever its code page is; files and pipes get UTF-8.
bool WriteStandardOutput(std::u16string_view text) {
  const HANDLE handle = ::GetStdHandle(STD_OUTPUT_HANDLE);
  DWORD written = 0;
  if (IsConsole(handle)) {
    const std::wstring wide = ToNative(text);
    const auto size = static_cast<DWORD>(wide.size());
    return ::WriteConsoleW(handle, wide.data(), size, &written, nullptr) != 0 && written == size;
  }
  const std::string bytes = ToUtf8(text);
  const auto size = static_cast<DWORD>(bytes.size());
  return ::WriteFile(handle, bytes.data(), size, &written, nullptr) != 0 && written == size;
}

bool CanDrawOnTerminal() {
  constexpr DWORD kEscapeSequences = 0x0004;  // ENABLE_VIRTUAL_TERMINAL_PROCESSING
  const HANDLE handle = ::GetStdHandle(STD_ERROR_HANDLE);
  DWORD mode = 0;
  return ::GetConsoleMode(handle, &mode) != 0 &&
         ::SetConsoleMode(handle, mode | kEscapeSequences) != 0;
}

int TerminalColumns() {
  constexpr int kUnknown = 80;
  CONSOLE_SCREEN_BUFFER_INFO info{};
  if (::GetConsoleScreenBufferInfo(::GetStdHandle(STD_ERROR_HANDLE), &info) == 0) return kUnknown;
  return info.srWindow.Right - info.srWindow.Left + 1;
}

void CatchInterrupts() { ::SetConsoleCtrlHandler(OnControl, TRUE); }

bool IsInterrupted() { return interrupted; }

void ForgetInterrupt() { interrupted = false; }

// An open file cannot be removed here by its name.
void SetUnfinishedFile(const std::u16string& /*path*/) {}

}  // namespace platform
