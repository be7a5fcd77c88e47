// The ticks of one reading: how much of the input has been taken in.
#pragma once

#include <cstdint>
#include <limits>

#include "core/ticker.h"

namespace corvel {

// A tick is due once 50 ms have passed or 64 KiB have been read since the last look, and is sent
// when the whole percent has risen. Both passes of a reading share one, since the percentage of the
// second goes on from that of the first.
class ReadingProgress {
 public:
  // Forgets the reading before.
  void Start() { percent_ = lastPercent_ = 0; }
  // A pass over `totalBytes` (below 1: not known) begins. Without a known size each look counts as
  // a percent more.
  void StartPass(const Stage& stage, std::int64_t totalBytes);
  // `position`: bytes that the pass has taken, -1 without an input. False when the user pressed
  // cancel and meant it, or the process is in CancelMode::kEndUnasked. Most calls cost a
  // comparison: not even the clock is read for them.
  bool Report(std::int64_t position) { return position < quietUntil_ || LookAt(position); }

 private:
  static constexpr std::int64_t kLookAtOnce = std::numeric_limits<std::int64_t>::min();

  bool LookAt(std::int64_t position);
  bool IsTooSoon(std::int64_t position);

  Stage stage_;
  std::int64_t totalBytes_ = -1;
  int percent_ = 0;
  int lastPercent_ = 0;
  std::int64_t lastTime_ = 0;  // nanoseconds
  std::int64_t lastPosition_ = 0;
  std::int64_t quietUntil_ = kLookAtOnce;  // before it nothing can be due
};

}  // namespace corvel
