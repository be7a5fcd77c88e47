// Everything the engine needs from the operating system, behind one seam that tests replace.
//
// `platform::Get()` is the system's own implementation until `platform::Replace` puts another one
// in its place. Text is 16-bit units; paths on POSIX systems are taken as UTF-8.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

enum class Buttons { kOk, kOkCancel, kYesNo };
enum class Icon { kNone, kError, kQuestion, kWarning, kInformation };
enum class Answer { kOk, kCancel, kYes, kNo };

// Figures in bytes.
struct MemoryFigures {
  std::uint64_t totalPhysical = 0;
  std::uint64_t availablePhysical = 0;
  std::uint64_t totalPageFile = 0;
  std::uint64_t availablePageFile = 0;
  std::uint64_t totalAddressSpace = 0;
  std::uint64_t availableAddressSpace = 0;
};

struct LocalTime {
  int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
};

// The fields of a version-4 GUID as the system's structure names them.
struct Guid {
  std::uint32_t data1 = 0;
  std::uint16_t data2 = 0;
  std::uint16_t data3 = 0;
  std::array<std::uint8_t, 8> data4{};
};

// Nothing throws but where it is said, and for lack of memory.
class Platform {
 public:
  virtual ~Platform() = default;

  // A modal box. On the terminal (see SetDialogs) it is one line `title: text` on standard error;
  // kOkCancel and kOk boxes answer kOk there, and yes/no boxes as SetAnswerPolicy tells.
  virtual Answer ShowMessageBox(std::u16string_view title, std::u16string_view text,
                                Buttons buttons, Icon icon) = 0;
  // True when a person, not the policy or a default, answered the last yes/no box.
  virtual bool LastAnswerWasAPersons() const = 0;
  // Opens a document, or starts a program with one parameter, as the desktop would. False: refused.
  virtual bool ShellOpen(const std::u16string& target, const std::u16string& parameter) = 0;
  // Path of the running main program; empty when it cannot be told.
  virtual std::u16string ExecutablePath() = 0;
  // Free bytes of the system disk; throws std::filesystem::filesystem_error when the query fails.
  virtual std::uint64_t FreeSystemDiskBytes() = 0;
  // Nothing when the query fails.
  virtual std::optional<MemoryFigures> QueryMemory() = 0;
  // All fields 0 when the system has no random bytes to give.
  virtual Guid NewGuid() = 0;
  // From an arbitrary start that is fixed for the run; never goes back.
  virtual std::int64_t MonotonicNanoseconds() = 0;
  // The year in full, months and days from 1, in the time zone of the machine.
  virtual LocalTime Now() = 0;
  // The character that `byte` (128..255) is in a code page (0: the system's default, Windows-1252
  // on POSIX systems); nothing when the page or the byte is unknown.
  virtual std::optional<char16_t> DecodeByte(unsigned codePage, std::uint8_t byte) = 0;
};

// What is in place; good until the next Replace.
Platform& Get();

// The system's own implementation, for those that override one operation only.
Platform& System();

// Puts `replacement` in the place of the system's implementation (null: the system's again) and
// gives what stood there. The caller keeps ownership.
Platform* Replace(Platform* replacement);

// Gives memory that has been freed back to the system where the C library would keep it. Costs as
// much as there is: once behind a run, not once for each model.
void ReturnFreeMemory();

// What this process has in physical memory now, in bytes; 0 when the system does not tell.
std::uint64_t ProcessMemoryBytes();

// What a yes/no box on the terminal answers unasked: kYes/kNo; nothing: ask on a terminal, and take
// Yes without one. Boxes in windows don't look at it.
void SetAnswerPolicy(std::optional<Answer> policy);

// Where the system's own implementation shows its boxes. POSIX systems know the terminal only.
enum class Dialogs { kWindows, kTerminal };
void SetDialogs(Dialogs dialogs);

}  // namespace platform
