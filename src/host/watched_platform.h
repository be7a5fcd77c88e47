// The operating system with an ear on its message boxes, and their texts made safe to show.
#pragma once

#include <functional>

#include "platform/platform.h"

namespace corvel::host {

// Everything is the system's own but the boxes, which first pass by a listener. In place from its
// construction to its destruction.
class WatchedPlatform final : public platform::Platform {
 public:
  // What the listener makes of a box: shown(answer, by a person) is called behind every box that
  // was shown.
  struct Listener {
    // Before a box. An answer given here stands, and the box is not shown.
    std::function<std::optional<platform::Answer>(platform::Buttons, platform::Icon)> before;
    std::function<void(platform::Buttons, platform::Answer, bool byAPerson)> shown;
  };

  explicit WatchedPlatform(Listener listener);
  ~WatchedPlatform() override;
  WatchedPlatform(const WatchedPlatform&) = delete;
  WatchedPlatform& operator=(const WatchedPlatform&) = delete;

  platform::Answer ShowMessageBox(std::u16string_view title, std::u16string_view text,
                                  platform::Buttons buttons, platform::Icon icon) override;
  bool LastAnswerWasAPersons() const override { return system_.LastAnswerWasAPersons(); }
  bool ShellOpen(const std::u16string& target, const std::u16string& parameter) override {
    return system_.ShellOpen(target, parameter);
  }
  std::u16string ExecutablePath() override { return system_.ExecutablePath(); }
  std::uint64_t FreeSystemDiskBytes() override { return system_.FreeSystemDiskBytes(); }
  std::optional<platform::MemoryFigures> QueryMemory() override { return system_.QueryMemory(); }
  platform::Guid NewGuid() override { return system_.NewGuid(); }
  std::int64_t MonotonicNanoseconds() override { return system_.MonotonicNanoseconds(); }
  platform::LocalTime Now() override { return system_.Now(); }
  std::optional<char16_t> DecodeByte(unsigned codePage, std::uint8_t byte) override {
    return system_.DecodeByte(codePage, byte);
  }

 private:
  Listener listener_;
  platform::Platform* before_;
  platform::Platform& system_;
};

}  // namespace corvel::host
