// Bytes that grow at their end, a few at a time.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace corvel {

// A std::string asks more than the copying of so few bytes costs.
class ByteText {
 public:
  void Append(std::string_view bytes) { size_ += bytes.copy(Room(bytes.size()), bytes.size()); }
  void Append(char byte) {
    *Room(1) = byte;
    ++size_;
  }
  // Where at least so many bytes can be written behind the end; TookUpTo says how many were. Good
  // until the next call.
  char* Room(std::size_t bytes) {
    if (bytes_.size() - size_ < bytes) [[unlikely]]
      Enlarge(bytes);
    return bytes_.data() + size_;
  }
  // `end`: behind what was written into the room.
  void TookUpTo(const char* end) { size_ = static_cast<std::size_t>(end - bytes_.data()); }

  // What stands between these two sizes, once more.
  void AppendAgain(std::size_t begin, std::size_t end) {
    char* const room = Room(end - begin);
    size_ += std::string_view(bytes_).substr(begin, end - begin).copy(room, end - begin);
  }
  // So many bytes more are to come.
  void Expect(std::size_t bytes) {
    if (bytes_.capacity() - size_ < bytes) bytes_.reserve(size_ + bytes);
  }

  std::size_t Size() const { return size_; }
  std::string Take() {
    bytes_.resize(std::exchange(size_, 0));
    return std::exchange(bytes_, {});
  }

 private:
  void Enlarge(std::size_t bytes);

  std::string bytes_;  // as long as there is room
  std::size_t size_ = 0;
};

}  // namespace corvel
