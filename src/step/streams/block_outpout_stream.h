// What the streams that write to a disk have in common: one buffer that keeps its tail.
//
// The buffer holds a block and a keep-back. A flush hands on all but the last keep-back bytes and
// moves these to the front, where MovePosition still reaches them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "step/streams/outpout_stream.h"

namespace FileStream {

class BlockOutpoutStream : public OutpoutStream {
 public:
  void WriteWideText(const char16_t* text) override;
  void WriteNarrowText(const char* text) override;
  void WriteWideString(const corvel::WideString& text) override;
  void FlushIfFull() override;

 protected:
  // Bytes that a flush waits for, and bytes that stay behind it.
  BlockOutpoutStream(std::uint64_t blockSize, std::uint64_t keepBack)
      : blockSize_(blockSize), keepBack_(keepBack) {}

  // Takes the buffer; the position is 0. False when the memory cannot be had: nothing can be stored
  // then, which FlushWindow has to throw for.
  bool AllocateBuffer();
  void FreeBuffer();
  // Stores the low byte of each unit, flushing at each point where a flush after every byte would.
  template <class Unit>
  void Store(const Unit* units, std::size_t count);
  // What a flush hands on.
  std::uint64_t DueBytes() const { return position_ < keepBack_ ? 0 : position_ - keepBack_; }
  // Moves the bytes behind the first `due` to the front.
  void KeepTail(std::uint64_t due);

  std::uint64_t blockSize_;
  std::uint64_t keepBack_;

 private:
  std::unique_ptr<char[]> buffer_;
};

extern template void BlockOutpoutStream::Store(const char* units, std::size_t count);
extern template void BlockOutpoutStream::Store(const char16_t* units, std::size_t count);

}  // namespace FileStream
