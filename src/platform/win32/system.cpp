#include <windows.h>

#include <objbase.h>
#include <psapi.h>
#include <shellapi.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "platform/platform.h"
#include "platform/terminal.h"
#include "platform/win32/module_path.h"
#include "platform/win32/wide.h"

namespace platform {

namespace {

constexpr wchar_t kSystemDisk[] = L"C:\\";

UINT FlagsOf(Buttons buttons, Icon icon) {
  UINT flags = MB_OK;
  switch (buttons) {
    case Buttons::kOk: break;
    case Buttons::kOkCancel: flags = MB_OKCANCEL; break;
    case Buttons::kYesNo: flags = MB_YESNO; break;
  }
  switch (icon) {
    case Icon::kNone: break;
    case Icon::kError: flags |= MB_ICONERROR; break;
    case Icon::kQuestion: flags |= MB_ICONQUESTION; break;
    case Icon::kWarning: flags |= MB_ICONWARNING; break;
    case Icon::kInformation: flags |= MB_ICONINFORMATION; break;
  }
  return flags;
}

Answer AnswerOf(int button) {
  switch (button) {
    case IDYES: return Answer::kYes;
    case IDNO: return Answer::kNo;
    case IDCANCEL: return Answer::kCancel;
    default: return Answer::kOk;
  }
}

// Code page 0 is the system's default for the flags used here.
std::optional<char16_t> Decode(unsigned codePage, std::uint8_t byte, DWORD flags) {
  const char input = static_cast<char>(byte);
  wchar_t output[2] = {};
  if (::MultiByteToWideChar(codePage, flags, &input, 1, output, 2) != 1) return {};
  return static_cast<char16_t>(output[0]);
}

class WindowsPlatform final : public Platform {
 public:
  Answer ShowMessageBox(std::u16string_view title, std::u16string_view text, Buttons buttons,
                        Icon icon) override {
    TerminalAnswer answer;
    if (CurrentDialogs() == Dialogs::kTerminal) {
      answer = ShowBoxOnTerminal(title, text, buttons);
    } else {
      answer.answer = AnswerOf(::MessageBoxW(nullptr, ToNative(text).c_str(),
                                             ToNative(title).c_str(), FlagsOf(buttons, icon)));
      answer.byAPerson = true;
    }
    if (buttons == Buttons::kYesNo) answeredByAPerson_ = answer.byAPerson;
    return answer.answer;
  }

  bool LastAnswerWasAPersons() const override { return answeredByAPerson_; }

  // Documents are shown, programs started as their window was left.
  bool ShellOpen(const std::u16string& target, const std::u16string& parameter) override {
    constexpr INT_PTR kLargestFailure = 32;
    const HINSTANCE result =
        ::ShellExecuteW(nullptr, nullptr, ToNative(target).c_str(),
                        parameter.empty() ? nullptr : ToNative(parameter).c_str(), nullptr,
                        parameter.empty() ? SW_SHOW : SW_RESTORE);
    return reinterpret_cast<INT_PTR>(result) > kLargestFailure;
  }

  std::u16string ExecutablePath() override { return PathOfModule(nullptr); }

  std::uint64_t FreeSystemDiskBytes() override {
    ULARGE_INTEGER available{};
    if (::GetDiskFreeSpaceExW(kSystemDisk, &available, nullptr, nullptr) == 0) {
      const auto code = static_cast<int>(::GetLastError());
      throw std::filesystem::filesystem_error("space", kSystemDisk,
                                              std::error_code(code, std::system_category()));
    }
    return available.QuadPart;
  }

  std::optional<MemoryFigures> QueryMemory() override {
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof status;
    if (::GlobalMemoryStatusEx(&status) == 0) return {};
    MemoryFigures figures;
    figures.totalPhysical = status.ullTotalPhys;
    figures.availablePhysical = status.ullAvailPhys;
    figures.totalPageFile = status.ullTotalPageFile;
    figures.availablePageFile = status.ullAvailPageFile;
    figures.totalAddressSpace = status.ullTotalVirtual;
    figures.availableAddressSpace = status.ullAvailVirtual;
    return figures;
  }

  Guid NewGuid() override {
    GUID made{};
    Guid guid;
    if (FAILED(::CoCreateGuid(&made))) return guid;
    guid.data1 = made.Data1;
    guid.data2 = made.Data2;
    guid.data3 = made.Data3;
    std::memcpy(guid.data4.data(), made.Data4, guid.data4.size());
    return guid;
  }

  std::int64_t MonotonicNanoseconds() override {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
  }

  LocalTime Now() override {
    SYSTEMTIME local{};
    ::GetLocalTime(&local);
    return {local.wYear, local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond};
  }

  // Some pages refuse the flag for composed characters; they are asked without it.
  std::optional<char16_t> DecodeByte(unsigned codePage, std::uint8_t byte) override {
    if (byte < 128) return byte;
    constexpr DWORD kStrict = MB_ERR_INVALID_CHARS;
    if (const auto unit = Decode(codePage, byte, MB_PRECOMPOSED | kStrict)) return unit;
    if (::GetLastError() != ERROR_INVALID_FLAGS) return {};
    return Decode(codePage, byte, 0);
  }

 private:
  bool answeredByAPerson_ = false;
};

}  // namespace

Platform& System() {
  static WindowsPlatform system;
  return system;
}

// By the name of the system's own library: the older one of psapi.dll would have to be linked.
std::uint64_t ProcessMemoryBytes() {
  PROCESS_MEMORY_COUNTERS counters{};
  const BOOL told = ::K32GetProcessMemoryInfo(::GetCurrentProcess(), &counters, sizeof counters);
  return told == 0 ? 0 : counters.WorkingSetSize;
}

void ReturnFreeMemory() { ::HeapCompact(::GetProcessHeap(), 0); }

}  // namespace platform
