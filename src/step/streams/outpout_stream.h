// Byte streams under the writer and the log.
//
// Text enters as wide or narrow characters and leaves as one byte each, the low eight bits. What
// ordinary file classes lack: the position can step back over what has just been written, also
// across a block boundary, since the last keep-back bytes stay in memory after each flush.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "core/text.h"

namespace FileStream {

class OutpoutStream {
 public:
  OutpoutStream(const OutpoutStream&) = delete;
  OutpoutStream& operator=(const OutpoutStream&) = delete;

  // Writes a block straight to the file, past the buffer and ahead of what stands in it.
  virtual void Write(const void* bytes, std::size_t count) = 0;
  // Writes what is due and closes. False when a write or the close failed (it has been reported).
  virtual bool Close() = 0;
  // Close, after which everything has reached the disk. False as for Close.
  virtual bool CommitAndClose() { return Close(); }
  virtual bool IsOpen() const = 0;
  virtual bool IsEof() const = 0;
  // Moves the position; `whence` is ignored. Throws std::runtime_error below 0.
  virtual void MovePosition(std::int64_t delta, int whence = 1) = 0;
  virtual void WriteNarrowString(const std::string& text) = 0;
  virtual void WriteWideText(const char16_t* text) = 0;  // up to the NUL
  virtual void WriteNarrowText(const char* text) = 0;    // up to the NUL
  virtual void WriteWideString(const corvel::WideString& text) = 0;
  // Writes out when the buffer is full. Throws std::runtime_error when the write comes short.
  virtual void FlushIfFull() = 0;
  virtual ~OutpoutStream() = default;

  // --- The window -------------------------------------------------------------------------------
  // Room for `count` bytes (at most kMaxReserve) at the position, flushing first when the buffer
  // is nearly full (throws as FlushIfFull). Store at most that many, then call Advance with how
  // many. Nothing is flushed in between, so the pointer stays good until the next call.
  static constexpr std::size_t kMaxReserve = 512;
  char* Reserve(std::size_t count) {
    if (position_ + count > windowCapacity_) FlushWindow();
    return window_ + position_;
  }
  void Advance(std::size_t count) { position_ += count; }
  // `count` bytes can be stored, in parts or whole, and nothing is flushed.
  bool HasRoom(std::size_t count) const { return position_ + count <= windowCapacity_; }
  // Any number of bytes through the window.
  void Append(std::string_view bytes) {
    while (!bytes.empty()) {
      const std::size_t part =
          HasRoom(bytes.size()) ? bytes.size() : std::min(bytes.size(), kMaxReserve);
      std::memcpy(Reserve(part), bytes.data(), part);  // all at once where nothing is flushed
      Advance(part);
      bytes.remove_prefix(part);
    }
  }
  // The byte in front of the position; something has been written.
  char LastByte() const { return window_[position_ - 1]; }
  // MovePosition(-count) without the call, for bytes that are surely in the window: the last
  // keep-back bytes are.
  void StepBack(std::size_t count) { position_ -= count; }

 protected:
  OutpoutStream() = default;

  // Makes room for at least kMaxReserve bytes by writing out all but the keep-back.
  virtual void FlushWindow() = 0;

  char* window_ = nullptr;            // start of the buffer
  std::uint64_t position_ = 0;        // next byte to be written, an index into the buffer
  std::uint64_t windowCapacity_ = 0;  // size of the buffer
};

}  // namespace FileStream
