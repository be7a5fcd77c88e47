// Text in memory as a stream.
#pragma once

#include <string>

#include "step/streams/input_stream.h"

namespace FileStream {

// Its window is the whole text.
class InputTextStream final : public InputStream {
 public:
  explicit InputTextStream(std::string text);

  std::size_t Read(void* destination, std::size_t count) override;
  int PeekChar() override;
  int Close() override;
  bool IsOpen() const override { return open_; }
  bool IsEof() const override { return Cursor() == WindowEnd(); }
  std::int64_t Position() const override;
  int NextEntry() override { return -1; }
  std::int64_t TotalSize() const override { return static_cast<std::int64_t>(text_.size()); }
  bool IsDamaged() const override { return false; }

 private:
  bool FillWindow() override { return false; }

  std::string text_;
  bool open_ = true;
};

}  // namespace FileStream
