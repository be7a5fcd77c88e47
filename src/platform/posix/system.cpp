#include <sys/random.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <system_error>

#include "platform/platform.h"
#include "platform/posix/code_pages.h"
#include "platform/posix/memory.h"
#include "platform/posix/shell.h"
#include "platform/terminal.h"
#include "platform/utf8.h"

namespace platform {

namespace {

constexpr char kSystemDisk[] = "/";

class PosixPlatform final : public Platform {
 public:
  Answer ShowMessageBox(std::u16string_view title, std::u16string_view text, Buttons buttons,
                        Icon /*icon*/) override {
    const TerminalAnswer answer = ShowBoxOnTerminal(title, text, buttons);
    if (buttons == Buttons::kYesNo) answeredByAPerson_ = answer.byAPerson;
    return answer.answer;
  }

  bool LastAnswerWasAPersons() const override { return answeredByAPerson_; }

  bool ShellOpen(const std::u16string& target, const std::u16string& parameter) override {
    return OpenByShell(ToUtf8(target), ToUtf8(parameter));
  }

  // Not from the arguments: who starts a program may call it as he likes.
  std::u16string ExecutablePath() override {
    std::error_code failure;
    const auto path = std::filesystem::read_symlink("/proc/self/exe", failure);
    return failure ? std::u16string() : FromUtf8(path.native());
  }

  // What a user may fill, the reserve of the superuser left aside.
  std::uint64_t FreeSystemDiskBytes() override {
    struct statvfs figures {};
    if (::statvfs(kSystemDisk, &figures) != 0) {
      throw std::filesystem::filesystem_error("space", kSystemDisk,
                                              std::error_code(errno, std::generic_category()));
    }
    return std::uint64_t{figures.f_bavail} * figures.f_frsize;
  }

  std::optional<MemoryFigures> QueryMemory() override { return QuerySystemMemory(); }

  // All zero when the system has no random bytes to give.
  Guid NewGuid() override {
    std::array<unsigned char, 16> bytes{};
    if (::getentropy(bytes.data(), bytes.size()) != 0) return {};
    Guid guid;
    std::memcpy(&guid.data1, bytes.data(), 4);
    std::memcpy(&guid.data2, bytes.data() + 4, 2);
    std::memcpy(&guid.data3, bytes.data() + 6, 2);
    std::memcpy(guid.data4.data(), bytes.data() + 8, 8);
    guid.data3 = static_cast<std::uint16_t>((guid.data3 & 0x0FFF) | 0x4000);   // version 4
    guid.data4[0] = static_cast<std::uint8_t>((guid.data4[0] & 0x3F) | 0x80);  // its variant
    return guid;
  }

  std::int64_t MonotonicNanoseconds() override {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
  }

  LocalTime Now() override {
    const std::time_t seconds = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&seconds, &local);
    return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
            local.tm_hour,        local.tm_min,     local.tm_sec};
  }

  std::optional<char16_t> DecodeByte(unsigned codePage, std::uint8_t byte) override {
    return DecodeCodePageByte(codePage, byte);
  }

 private:
  bool answeredByAPerson_ = false;
};

}  // namespace

Platform& System() {
  static PosixPlatform system;
  return system;
}

}  // namespace platform
