// Output that stays in memory.
#pragma once

#include <string>
#include <string_view>

#include "step/streams/outpout_stream.h"

namespace FileStream {

// All bytes can be stepped back over.
class OutpoutTextStream final : public OutpoutStream {
 public:
  // Takes `most` bytes and a few more; what leads beyond them throws std::length_error.
  explicit OutpoutTextStream(std::size_t most = kAnyNumber) : most_(most) { FlushWindow(); }

  // What has been written; void after the next write.
  std::string_view Text() const { return {buffer_.data(), static_cast<std::size_t>(position_)}; }

  void Write(const void* bytes, std::size_t count) override {
    Append({static_cast<const char*>(bytes), count});
  }
  bool Close() override { return true; }
  bool IsOpen() const override { return true; }
  bool IsEof() const override { return false; }
  void MovePosition(std::int64_t delta, int whence = 1) override;
  void WriteNarrowString(const std::string& text) override { Append(text); }
  void WriteWideText(const char16_t* text) override { Append(corvel::Narrow(text)); }
  void WriteNarrowText(const char* text) override { Append(text); }
  void WriteWideString(const corvel::WideString& text) override { Append(corvel::Narrow(text)); }
  void FlushIfFull() override {}

 private:
  static constexpr std::size_t kAnyNumber = std::string::npos / 4;

  void FlushWindow() override;

  std::string buffer_;
  std::size_t most_;
};

}  // namespace FileStream
