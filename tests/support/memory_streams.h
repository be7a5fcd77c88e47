// Streams without files: input in windows of any size, output into a string, both to order.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "step/streams/input_stream.h"
#include "step/streams/outpout_stream.h"

namespace corvel::test {

// Delivers a text in windows of `windowSize` bytes. Each window is an allocation of its own that
// dies with the next one, so that a sanitizer sees who holds on to a pointer too long.
class MemoryInputStream final : public FileStream::InputStream {
 public:
  explicit MemoryInputStream(std::string text,
                             std::size_t windowSize = std::numeric_limits<std::size_t>::max(),
                             const WideString& path = u"memory.ifc",
                             ErrorReporter showError = nullptr)
      : InputStream(path, showError), text_(std::move(text)), windowSize_(windowSize) {}

  std::size_t Read(void* destination, std::size_t count) override {
    std::size_t copied = 0;
    while (copied < count && (Cursor() != WindowEnd() || Refill())) {
      const std::size_t part =
          std::min(count - copied, static_cast<std::size_t>(WindowEnd() - Cursor()));
      std::memcpy(static_cast<char*>(destination) + copied, Cursor(), part);
      SkipUncounted(part);
      copied += part;
    }
    return copied;
  }
  int PeekChar() override {
    if (Cursor() != WindowEnd()) return static_cast<signed char>(*Cursor());
    return open_ && offset_ < text_.size() ? static_cast<signed char>(text_[offset_]) : -1;
  }
  int Close() override {
    DropWindow();
    window_.reset();
    open_ = false;
    return 0;
  }
  bool IsOpen() const override { return open_; }
  bool IsEof() const override { return Cursor() == WindowEnd() && endFound_; }
  std::int64_t Position() const override {
    if (!open_) return -1;
    return static_cast<std::int64_t>(offset_) - Unread();
  }
  int NextEntry() override { return -1; }
  std::int64_t TotalSize() const override { return static_cast<std::int64_t>(text_.size()); }
  bool IsDamaged() const override { return false; }

  // How many windows were asked for.
  int Refills() const { return refills_; }

 private:
  bool FillWindow() override {
    ++refills_;
    if (!open_) return false;
    const std::size_t size = std::min(windowSize_, text_.size() - offset_);
    endFound_ = size < windowSize_;
    window_.reset(new char[size]);
    std::memcpy(window_.get(), text_.data() + offset_, size);
    offset_ += size;
    SetWindow(window_.get(), window_.get() + size);
    return size != 0;
  }

  std::string text_;
  std::size_t windowSize_;
  std::size_t offset_ = 0;  // of the window's end
  std::unique_ptr<char[]> window_;
  bool open_ = true;
  bool endFound_ = false;
  int refills_ = 0;
};

// Delivers `text` as its first window and throws where it should give the second.
template <class Exception>
class BreakingInputStream final : public FileStream::InputStream {
 public:
  explicit BreakingInputStream(std::string text, Exception exception = Exception())
      : InputStream(u"breaking.ifc", nullptr),
        text_(std::move(text)),
        exception_(std::move(exception)) {}
  std::size_t Read(void*, std::size_t) override { return 0; }
  int PeekChar() override { return -1; }
  int Close() override { return 0; }
  bool IsOpen() const override { return true; }
  bool IsEof() const override { return false; }
  std::int64_t Position() const override { return 0; }
  int NextEntry() override { return -1; }
  std::int64_t TotalSize() const override { return 0; }
  bool IsDamaged() const override { return false; }

 private:
  bool FillWindow() override {
    if (filled_) throw exception_;
    filled_ = true;
    SetWindow(text_.data(), text_.data() + text_.size());
    return true;
  }

  std::string text_;
  Exception exception_;
  bool filled_ = false;
};

// Takes bytes by GetChar, beyond the end too.
inline std::string TakeByChar(FileStream::InputStream& stream, std::size_t count) {
  std::string taken;
  for (std::size_t i = 0; i < count; ++i) taken.push_back(static_cast<char>(stream.GetChar()));
  return taken;
}

// Collects what is written. With a `limit` it takes that many bytes and then fails as a full disk
// does.
class MemoryOutpoutStream final : public FileStream::OutpoutStream {
 public:
  explicit MemoryOutpoutStream(std::size_t limit = std::numeric_limits<std::size_t>::max())
      : limit_(limit) {
    Grow(2 * kMaxReserve);
  }

  // Everything up to the position.
  std::string Text() const { return std::string(window_, position_); }
  void Clear() { position_ = 0; }

  void Write(const void* bytes, std::size_t count) override {
    Store({static_cast<const char*>(bytes), count});
  }
  bool Close() override {
    open_ = false;
    return position_ <= limit_;
  }
  bool IsOpen() const override { return open_; }
  bool IsEof() const override { return false; }
  void MovePosition(std::int64_t delta, int = 1) override {
    if (static_cast<std::int64_t>(position_) + delta < 0) {
      throw std::runtime_error("Write to file error. Unable to move pointer below 0.");
    }
    position_ += static_cast<std::uint64_t>(delta);
  }
  void WriteNarrowString(const std::string& text) override { Store(text); }
  void WriteWideText(const char16_t* text) override { Store(Narrow(text)); }
  void WriteNarrowText(const char* text) override { Store(text); }
  void WriteWideString(const WideString& text) override { Store(Narrow(text)); }
  void FlushIfFull() override {
    if (position_ > limit_) throw std::runtime_error("Unable to write to file");
  }

 private:
  void FlushWindow() override {
    FlushIfFull();
    Grow(2 * windowCapacity_);
  }
  void Store(std::string_view bytes) {
    Append(bytes);
    FlushIfFull();
  }
  void Grow(std::size_t capacity) {
    std::unique_ptr<char[]> larger(new char[capacity]());
    if (position_ != 0) std::memcpy(larger.get(), window_, position_);
    buffer_ = std::move(larger);
    window_ = buffer_.get();
    windowCapacity_ = capacity;
  }

  std::unique_ptr<char[]> buffer_;
  std::size_t limit_;
  bool open_ = true;
};

}  // namespace corvel::test
