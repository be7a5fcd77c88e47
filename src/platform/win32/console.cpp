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
std::atomic<const char16_t*> requestToEnd{nullptr};

bool IsConsole(HANDLE handle) {
  DWORD mode = 0;
  return ::GetConsoleMode(handle, &mode) != 0;
}

// The system ends the process when the handler returns, and does not wait for ever: a few seconds
// to come to the next tick.
BOOL EndSoon(const char16_t* request) {
  requestToEnd = request;
  ::Sleep(INFINITE);
  return TRUE;
}

// Runs on a thread that the system makes for it.
BOOL WINAPI OnControl(DWORD control) {
  switch (control) {
    case CTRL_C_EVENT:
      if (interrupted.exchange(true) || requestToEnd != nullptr) {
        ::TerminateProcess(::GetCurrentProcess(), kInterruptedStatus);
      }
      return TRUE;
    case CTRL_BREAK_EVENT: requestToEnd = u"Ctrl-Break"; return TRUE;
    case CTRL_CLOSE_EVENT: return EndSoon(u"the closing of the console");
    case CTRL_LOGOFF_EVENT:
    case CTRL_SHUTDOWN_EVENT: return EndSoon(u"the end of the session");
    default: return FALSE;
  }
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

namespace {

bool IsAbleTerminal(DWORD stream) {
  constexpr DWORD kEscapeSequences = 0x0004;  // ENABLE_VIRTUAL_TERMINAL_PROCESSING
  const HANDLE handle = ::GetStdHandle(stream);
  DWORD mode = 0;
  return ::GetConsoleMode(handle, &mode) != 0 &&
         ::SetConsoleMode(handle, mode | kEscapeSequences) != 0;
}

}  // namespace

bool CanDrawOnTerminal() { return IsAbleTerminal(STD_ERROR_HANDLE); }

bool CanColourOutput() { return IsAbleTerminal(STD_OUTPUT_HANDLE); }

int TerminalColumns() {
  constexpr int kUnknown = 80;
  CONSOLE_SCREEN_BUFFER_INFO info{};
  if (::GetConsoleScreenBufferInfo(::GetStdHandle(STD_ERROR_HANDLE), &info) == 0) return kUnknown;
  return info.srWindow.Right - info.srWindow.Left + 1;
}

void CatchInterrupts() { ::SetConsoleCtrlHandler(OnControl, TRUE); }

bool IsInterrupted() { return interrupted || requestToEnd != nullptr; }

std::u16string_view RequestToEnd() {
  const char16_t* const request = requestToEnd;
  return request == nullptr ? std::u16string_view() : request;
}

void ForgetInterrupt() { interrupted = false; }

// An open file cannot be removed here by its name.
void SetUnfinishedFile(const std::u16string& /*path*/) {}

}  // namespace platform
