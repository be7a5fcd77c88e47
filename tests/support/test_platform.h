// Stands in for the operating system: what the engine asks is recorded, what it gets is settable.
#pragma once

#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "platform/platform.h"

namespace corvel::test {

// In place from its construction to its destruction. Ask `boxes`, `opened`; set the rest at will.
class TestPlatform : public platform::Platform {
 public:
  struct Box {
    std::u16string title;
    std::u16string text;
    platform::Buttons buttons = platform::Buttons::kOk;
    platform::Icon icon = platform::Icon::kNone;
    bool operator==(const Box&) const = default;
  };
  struct Opened {
    std::u16string target;
    std::u16string parameter;
    bool operator==(const Opened&) const = default;
  };

  TestPlatform() : before_(platform::Replace(this)) {}
  ~TestPlatform() override { platform::Replace(before_); }
  TestPlatform(const TestPlatform&) = delete;
  TestPlatform& operator=(const TestPlatform&) = delete;

  // Every box shown, in order.
  std::vector<Box> boxes;
  // What the next boxes answer; without one it is Yes, or OK where there is no Yes.
  std::deque<platform::Answer> answers;
  bool answersAreAPersons = true;
  std::function<void()> onBox;  // while a box is shown; may be empty
  // Every ShellOpen, in order, and what it gives.
  std::vector<Opened> opened;
  bool shellOpens = true;
  std::u16string executablePath = u"/opt/viewer/viewer";
  // Nothing: the query throws.
  std::optional<std::uint64_t> freeDiskBytes = std::uint64_t{100} << 30;
  std::optional<platform::MemoryFigures> memory = platform::MemoryFigures{};
  // The next GUIDs; then counted ones, different from each other.
  std::deque<platform::Guid> guids;
  std::int64_t nanoseconds = 0;
  std::int64_t nanosecondsPerCall = 0;  // the clock moves on by so much with each look at it
  platform::LocalTime localTime{2024, 3, 7, 9, 5, 0};

  platform::Answer ShowMessageBox(std::u16string_view title, std::u16string_view text,
                                  platform::Buttons buttons, platform::Icon icon) override {
    boxes.push_back({std::u16string(title), std::u16string(text), buttons, icon});
    if (onBox) onBox();
    if (answers.empty()) {
      return buttons == platform::Buttons::kYesNo ? platform::Answer::kYes : platform::Answer::kOk;
    }
    const platform::Answer answer = answers.front();
    answers.pop_front();
    return answer;
  }
  bool LastAnswerWasAPersons() const override { return answersAreAPersons; }
  bool ShellOpen(const std::u16string& target, const std::u16string& parameter) override {
    opened.push_back({target, parameter});
    return shellOpens;
  }
  std::u16string ExecutablePath() override { return executablePath; }
  std::uint64_t FreeSystemDiskBytes() override {
    if (freeDiskBytes) return *freeDiskBytes;
    throw std::filesystem::filesystem_error("space",
                                            std::make_error_code(std::errc::no_such_device));
  }
  std::optional<platform::MemoryFigures> QueryMemory() override { return memory; }
  platform::Guid NewGuid() override {
    if (!guids.empty()) {
      const platform::Guid guid = guids.front();
      guids.pop_front();
      return guid;
    }
    return {++countedGuids_, 0, 0x4000, {0x80, 0, 0, 0, 0, 0, 0, 0}};
  }
  std::int64_t MonotonicNanoseconds() override {
    const std::int64_t now = nanoseconds;
    nanoseconds += nanosecondsPerCall;
    return now;
  }
  platform::LocalTime Now() override { return localTime; }
  std::optional<char16_t> DecodeByte(unsigned codePage, std::uint8_t byte) override {
    return platform::System().DecodeByte(codePage, byte);
  }

 private:
  platform::Platform* before_;
  std::uint32_t countedGuids_ = 0;
};

// How the engine tells of trouble by itself.
inline TestPlatform::Box LogfileErrorBox(const std::u16string& text) {
  return {u"Logfile error", text, platform::Buttons::kOk, platform::Icon::kError};
}

// The question of a cancellation, in the texts that stand until a run has its own.
inline TestPlatform::Box CancelQuestionBox() {
  return {u"Cancel", u"Are you sure you want to cancel?", platform::Buttons::kYesNo,
          platform::Icon::kQuestion};
}

}  // namespace corvel::test
