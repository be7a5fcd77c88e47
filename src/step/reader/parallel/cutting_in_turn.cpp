#include "step/reader/parallel/cutting_in_turn.h"

namespace corvel {

void CuttingInTurn::Next(std::size_t turn, RecordBatch& batch) {
  std::unique_lock lock(mutex_);
  passed_.wait(lock, [&] { return turn_ == turn; });
  ++turn_;
  // Whoever is waked waits for the mutex.
  passed_.notify_all();
  if (cuts_) cuts_ = cutter_.Next(batch.bytes);
  batch.troubleAt = cutter_.TroubleAt();
}

}  // namespace corvel
