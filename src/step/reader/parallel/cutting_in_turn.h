// Cuts for several threads, each of which goes on with what it has cut.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>

#include "step/reader/parallel/record_batch.h"
#include "step/reader/parallel/record_cutter.h"

namespace corvel {

// Who reads a batch cuts it too, so that its bytes are in his cache. Only one cuts at a time, and
// batches are cut in the order of their turns.
class CuttingInTurn {
 public:
  // See RecordCutter.
  CuttingInTurn(FileStream::InputStream& stream, std::size_t size) : cutter_(stream, size) {}

  // The next bytes into `batch`, which is empty; it stays so when there are none. Turns count from
  // 0 on: waits for those before, each of which somebody has done or is at. Throws
  // std::bad_alloc; the turn is over then too. What the stream has to report is held back, so that
  // no thread but the parser's own tells it.
  void Next(std::size_t turn, RecordBatch& batch);

  // As RecordCutter; when nobody cuts.
  std::int64_t TroubleAt() const { return cutter_.TroubleAt(); }

 private:
  std::mutex mutex_;
  std::condition_variable passed_;
  // By the mutex.
  RecordCutter cutter_;
  std::size_t turn_ = 0;
  bool cuts_ = true;  // there may be more to cut
};

}  // namespace corvel
