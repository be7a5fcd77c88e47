// Bytes in memory, of somebody else, as a stream.
#pragma once

#include <string_view>

#include "step/streams/input_stream.h"

namespace FileStream {

// Its window is all of them.
class InputViewStream : public InputStream {
 public:
  // Borrows the bytes.
  explicit InputViewStream(std::string_view bytes);

  std::size_t Read(void* destination, std::size_t count) override;
  int PeekChar() override;
  int Close() override;
  bool IsOpen() const override { return open_; }
  bool IsEof() const override { return Cursor() == WindowEnd(); }
  std::int64_t Position() const override;
  int NextEntry() override { return -1; }
  std::int64_t TotalSize() const override { return static_cast<std::int64_t>(bytes_.size()); }
  bool IsDamaged() const override { return false; }

 protected:
  InputViewStream() : InputStream({}, nullptr) {}
  // Before anything is read.
  void Show(std::string_view bytes);

 private:
  bool FillWindow() override { return false; }

  std::string_view bytes_;
  bool open_ = true;
};

}  // namespace FileStream
