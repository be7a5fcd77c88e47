// Makes the streams run out of memory.
#pragma once

#include <new>

#include "step/streams/stream_buffer.h"

namespace corvel::test {

// In place from its construction to its destruction.
class ReplacedAllocator {
 public:
  explicit ReplacedAllocator(FileStream::BufferAllocator allocator)
      : before_(FileStream::ReplaceBufferAllocator(allocator)) {}
  ~ReplacedAllocator() { FileStream::ReplaceBufferAllocator(before_); }
  ReplacedAllocator(const ReplacedAllocator&) = delete;
  ReplacedAllocator& operator=(const ReplacedAllocator&) = delete;

  static char* Throwing(std::size_t) { throw std::bad_alloc(); }
  static char* GivingNull(std::size_t) { return nullptr; }

 private:
  FileStream::BufferAllocator before_;
};

}  // namespace corvel::test
