#include "step/streams/input_file_stream.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include "step/streams/stream_buffer.h"

namespace FileStream {

InputFileStream::InputFileStream(const corvel::WideString& path, corvel::ErrorReporter showError,
                                 std::size_t bufferSize)
    : InputStream(path, showError) {
  open_ = file_.Open(path, platform::OpenMode::kRead);
  if (!open_) return;
  sizeAtOpening_ = file_.Size();
  Allocate(bufferSize);
}

InputFileStream::~InputFileStream() { InputFileStream::Close(); }

void InputFileStream::Allocate(std::size_t size) {
  const char16_t* failure = u"Memory allocation error";
  try {
    buffer_ = AllocateBuffer(size);
  } catch (const std::bad_alloc&) {
    failure = u"Unable to alloc enought memory. Try to use 64-bit Orlenta.";
  }
  if (buffer_ == nullptr) {
    damaged_ = true;
    Tell(failure);
    return;
  }
  capacity_ = size;
  SetWindow(buffer_.get(), buffer_.get());
}

// A read error ends the data as the end of the file does, and so does somebody who cuts the file
// short meanwhile; but not unseen.
std::size_t InputFileStream::ReadFile(char* destination, std::size_t count) {
  const std::size_t taken = file_.Read(destination, count);
  windowEndOffset_ += static_cast<std::int64_t>(taken);
  if (file_.ReadFailed()) {
    Lose(u"Could not read from file: ");
  } else if (taken < count && windowEndOffset_ < sizeAtOpening_) {
    Lose(u"The file was cut short while it was read: ");
  }
  return taken;
}

void InputFileStream::Lose(const char16_t* message) {
  if (!std::exchange(damaged_, true)) Tell(message + ContainerPath());
}

bool InputFileStream::FillWindow() {
  if (!open_) return false;
  const std::size_t valid = ReadFile(buffer_.get(), capacity_);
  endFound_ = valid < capacity_;
  SetWindow(buffer_.get(), buffer_.get() + valid);
  return valid != 0;
}

int InputFileStream::PeekChar() {
  if (Cursor() != WindowEnd()) return static_cast<signed char>(*Cursor());
  char byte = 0;
  if (!open_) return -1;
  const std::size_t taken = ReadFile(&byte, 1);
  windowEndOffset_ -= static_cast<std::int64_t>(taken);
  if (taken == 0) return -1;
  // The byte was read for a look only: the next window begins with it.
  file_.Seek(windowEndOffset_);
  return static_cast<signed char>(byte);
}

std::size_t InputFileStream::Read(void* destination, std::size_t count) {
  char* const bytes = static_cast<char*>(destination);
  std::size_t copied = 0;
  while (open_ && copied < count) {
    const std::size_t wanted = count - copied;
    if (Cursor() == WindowEnd()) {
      if (endFound_) break;
      // Two windows or more go past the buffer, which would only copy them.
      if (wanted / 2 >= capacity_) {
        const std::size_t taken = ReadFile(bytes + copied, wanted);
        endFound_ = taken < wanted;
        return copied + taken;
      }
      if (!Refill()) {
        endFound_ = true;
        break;
      }
    }
    const std::size_t part = std::min(wanted, static_cast<std::size_t>(WindowEnd() - Cursor()));
    std::memcpy(bytes + copied, Cursor(), part);
    SkipUncounted(part);
    copied += part;
  }
  return copied;
}

int InputFileStream::Close() {
  if (!open_) return 0;
  open_ = false;
  DropWindow();
  buffer_.reset();
  return file_.Close() ? 0 : -1;
}

std::int64_t InputFileStream::Position() const { return open_ ? windowEndOffset_ - Unread() : -1; }

std::int64_t InputFileStream::TotalSize() const {
  platform::File second;
  return second.Open(ContainerPath(), platform::OpenMode::kRead) ? second.Size() : -1;
}

}  // namespace FileStream
