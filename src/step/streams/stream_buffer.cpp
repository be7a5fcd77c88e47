#include "step/streams/stream_buffer.h"

#include <utility>

namespace FileStream {

namespace {

char* AllocateFromHeap(std::size_t size) { return new char[size]; }

BufferAllocator currentAllocator = &AllocateFromHeap;

}  // namespace

BufferAllocator ReplaceBufferAllocator(BufferAllocator allocator) {
  return std::exchange(currentAllocator, allocator != nullptr ? allocator : &AllocateFromHeap);
}

std::unique_ptr<char[]> AllocateBuffer(std::size_t size) {
  return std::unique_ptr<char[]>(currentAllocator(size));
}

}  // namespace FileStream
