// Reads a plain file through one buffer.
#pragma once

#include <memory>

#include "platform/file.h"
#include "step/streams/input_stream.h"

namespace FileStream {

class InputFileStream final : public InputStream {
 public:
  // Opens `path`; a failure is silent and shows in IsOpen only. `bufferSize` bytes are the largest
  // window; when they cannot be had it is reported and the stream delivers nothing.
  InputFileStream(const corvel::WideString& path, corvel::ErrorReporter showError,
                  std::size_t bufferSize);
  ~InputFileStream() override;

  std::size_t Read(void* destination, std::size_t count) override;
  // Looks into the file when the window is used up: it brings no new window and leaves IsEof as it
  // is. -1 also when closed.
  int PeekChar() override;
  int Close() override;  // 0, or -1 when the system reports an error
  bool IsOpen() const override { return open_; }
  bool IsEof() const override { return Cursor() == WindowEnd() && endFound_; }
  std::int64_t Position() const override;
  int NextEntry() override { return -1; }
  // Opens the file a second time, so it works on a closed stream too.
  std::int64_t TotalSize() const override;
  // There is no buffer, a read failed, or the file ended before the size that it had when it was
  // opened.
  bool IsDamaged() const override { return damaged_; }

 private:
  bool FillWindow() override;
  void Allocate(std::size_t size);
  std::size_t ReadFile(char* destination, std::size_t count);
  void Lose(const char16_t* message);

  platform::File file_;
  std::unique_ptr<char[]> buffer_;
  std::size_t capacity_ = 0;
  std::int64_t sizeAtOpening_ = 0;
  std::int64_t windowEndOffset_ = 0;  // of WindowEnd() in the file
  bool open_ = false;
  bool endFound_ = false;
  bool damaged_ = false;
};

}  // namespace FileStream
