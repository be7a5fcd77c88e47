// Where the streams take their buffers from: one seam, so that tests can run out of memory.
#pragma once

#include <cstddef>
#include <memory>

namespace FileStream {

// Gives `size` bytes, uninitialised, for delete[]. May give null or throw std::bad_alloc.
using BufferAllocator = char* (*)(std::size_t size);

// Puts `allocator` in the place of `new char[]` (null: that again) and gives what stood there.
BufferAllocator ReplaceBufferAllocator(BufferAllocator allocator);

// By the allocator in place: null or std::bad_alloc when it has none to give.
std::unique_ptr<char[]> AllocateBuffer(std::size_t size);

}  // namespace FileStream
