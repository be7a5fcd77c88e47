#include "step/streams/input_view_stream.h"

#include <algorithm>
#include <cstring>

namespace FileStream {

InputViewStream::InputViewStream(std::string_view bytes) : InputViewStream() { Show(bytes); }

void InputViewStream::Show(std::string_view bytes) {
  bytes_ = bytes;
  SetWindow(bytes_.data(), bytes_.data() + bytes_.size());
}

std::size_t InputViewStream::Read(void* destination, std::size_t count) {
  const std::size_t part = std::min(count, static_cast<std::size_t>(WindowEnd() - Cursor()));
  if (part != 0) std::memcpy(destination, Cursor(), part);
  SkipUncounted(part);
  return part;
}

int InputViewStream::PeekChar() {
  return Cursor() == WindowEnd() ? -1 : static_cast<signed char>(*Cursor());
}

int InputViewStream::Close() {
  DropWindow();
  open_ = false;
  return 0;
}

std::int64_t InputViewStream::Position() const { return open_ ? TotalSize() - Unread() : -1; }

}  // namespace FileStream
