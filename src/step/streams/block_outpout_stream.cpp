#include "step/streams/block_outpout_stream.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "step/streams/stream_buffer.h"

namespace FileStream {

// Larger than what FlushIfFull fills, by what the window may take beyond that.
bool BlockOutpoutStream::AllocateBuffer() {
  const std::uint64_t size = blockSize_ + keepBack_ + kMaxReserve;
  position_ = 0;
  try {
    buffer_ = FileStream::AllocateBuffer(size);
  } catch (const std::bad_alloc&) {
  }
  if (buffer_ == nullptr) return false;
  window_ = buffer_.get();
  windowCapacity_ = size;
  return true;
}

void BlockOutpoutStream::FreeBuffer() {
  buffer_.reset();
  window_ = nullptr;
  position_ = windowCapacity_ = 0;
}

void BlockOutpoutStream::KeepTail(std::uint64_t due) {
  std::memmove(window_, window_ + due, position_ - due);
  position_ -= due;
}

void BlockOutpoutStream::FlushIfFull() {
  if (window_ != nullptr && position_ >= blockSize_ + keepBack_) FlushWindow();
}

template <class Unit>
void BlockOutpoutStream::Store(const Unit* units, std::size_t count) {
  const std::uint64_t fullAt = blockSize_ + keepBack_;
  if (count != 0 && window_ == nullptr) FlushWindow();  // throws: there is nowhere to store
  while (count != 0) {
    FlushIfFull();  // the window or MovePosition may have filled it
    const std::size_t part = std::min<std::uint64_t>(count, fullAt - position_);
    char* const to = window_ + position_;
    if constexpr (sizeof(Unit) == 1) {
      std::memcpy(to, units, part);
    } else {
      for (std::size_t i = 0; i < part; ++i) to[i] = static_cast<char>(units[i]);
    }
    position_ += part;
    units += part;
    count -= part;
    FlushIfFull();
  }
}

template void BlockOutpoutStream::Store(const char* units, std::size_t count);
template void BlockOutpoutStream::Store(const char16_t* units, std::size_t count);

void BlockOutpoutStream::WriteWideText(const char16_t* text) {
  Store(text, corvel::WideView(text).size());
}

void BlockOutpoutStream::WriteNarrowText(const char* text) { Store(text, std::strlen(text)); }

void BlockOutpoutStream::WriteWideString(const corvel::WideString& text) {
  Store(text.data(), text.size());
}

}  // namespace FileStream
