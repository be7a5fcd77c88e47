#include "step/streams/input_text_stream.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace FileStream {

InputTextStream::InputTextStream(std::string text)
    : InputStream({}, nullptr), text_(std::move(text)) {
  SetWindow(text_.data(), text_.data() + text_.size());
}

std::size_t InputTextStream::Read(void* destination, std::size_t count) {
  const std::size_t part = std::min(count, static_cast<std::size_t>(WindowEnd() - Cursor()));
  if (part != 0) std::memcpy(destination, Cursor(), part);
  SkipUncounted(part);
  return part;
}

int InputTextStream::PeekChar() {
  return Cursor() == WindowEnd() ? -1 : static_cast<signed char>(*Cursor());
}

int InputTextStream::Close() {
  DropWindow();
  open_ = false;
  return 0;
}

std::int64_t InputTextStream::Position() const { return open_ ? TotalSize() - Unread() : -1; }

}  // namespace FileStream
