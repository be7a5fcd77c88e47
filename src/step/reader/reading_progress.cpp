#include "step/reader/reading_progress.h"

#include <algorithm>

#include "platform/platform.h"

namespace corvel {

namespace {

constexpr std::int64_t kNanoseconds = 50'000'000;
constexpr std::int64_t kLongAgo = 1'000'000'000;  // so that the first look is not too soon
constexpr std::int64_t kBytes = 0x10000;

}  // namespace

void ReadingProgress::StartPass(const Stage& stage, std::int64_t totalBytes) {
  stage_ = stage;
  totalBytes_ = totalBytes;
  quietUntil_ = kLookAtOnce;
}

bool ReadingProgress::IsTooSoon(std::int64_t position) {
  const std::int64_t now = platform::Get().MonotonicNanoseconds();
  if (quietUntil_ == kLookAtOnce) {
    lastTime_ = now - kLongAgo;
    lastPosition_ = quietUntil_ = 0;
  }
  if (position < lastPosition_) lastPosition_ = 0;
  if (now - lastTime_ < kNanoseconds && position - lastPosition_ < kBytes) return true;
  lastTime_ = now;
  lastPosition_ = position;
  return false;
}

bool ReadingProgress::LookAt(std::int64_t position) {
  if (IsTooSoon(position)) return true;
  const bool isKnown = totalBytes_ >= 1;
  percent_ = isKnown ? static_cast<int>(position * 100 / totalBytes_) : percent_ + 1;
  percent_ = std::clamp(percent_, 0, 100);
  // The second pass has begun, and counts its own bytes.
  if (percent_ < lastPercent_) lastPercent_ = 0;
  const bool risen = percent_ > lastPercent_;
  const std::int64_t nextRise =
      isKnown ? (std::max(percent_, lastPercent_) + 1) * totalBytes_ / 100 : 0;
  quietUntil_ = std::min(nextRise, position + kBytes);
  if (!risen) return true;
  if (!Ticker(stage_, {}, Ticker::Asking::kUnlessEnding).Tick(percent_)) return false;
  lastPercent_ = percent_;
  return true;
}

}  // namespace corvel
