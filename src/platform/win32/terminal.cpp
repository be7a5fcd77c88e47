#include "platform/terminal.h"

#include <windows.h>

#include "platform/utf8.h"
#include "platform/win32/wide.h"

namespace platform {

namespace {

bool IsConsole(DWORD standardHandle) {
  DWORD mode = 0;
  return ::GetConsoleMode(::GetStdHandle(standardHandle), &mode) != 0;
}

}  // namespace

bool CanAskOnTerminal() { return IsConsole(STD_INPUT_HANDLE) && IsConsole(STD_ERROR_HANDLE); }

// A console takes wide text whatever its code page is; files and pipes get UTF-8.
void WriteStandardError(std::u16string_view text) {
  const HANDLE handle = ::GetStdHandle(STD_ERROR_HANDLE);
  DWORD written = 0;
  if (IsConsole(STD_ERROR_HANDLE)) {
    const std::wstring wide = ToNative(text);
    ::WriteConsoleW(handle, wide.data(), static_cast<DWORD>(wide.size()), &written, nullptr);
  } else {
    const std::string bytes = ToUtf8(text);
    ::WriteFile(handle, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
  }
}

std::optional<std::string> ReadStandardInputLine() {
  const HANDLE handle = ::GetStdHandle(STD_INPUT_HANDLE);
  std::string line;
  while (true) {
    char byte = 0;
    DWORD taken = 0;
    if (::ReadFile(handle, &byte, 1, &taken, nullptr) == 0 || taken == 0) return {};
    if (byte == '\n') return line;
    if (byte != '\r') line.push_back(byte);
  }
}

}  // namespace platform
