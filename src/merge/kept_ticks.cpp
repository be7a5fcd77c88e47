#include "merge/kept_ticks.h"

#include <algorithm>

#include "core/ticker.h"

namespace corvel {

namespace {

// Of the thread that works ahead. A tick has room for nothing of its own.
thread_local KeptTicks* kept = nullptr;
thread_local const std::atomic<bool>* keepingEnds = nullptr;

}  // namespace

KeptTicks::Keeping::Keeping(KeptTicks& ticks, const std::atomic<bool>& ends) {
  kept = &ticks;
  keepingEnds = &ends;
}

KeptTicks::Keeping::~Keeping() {
  kept = nullptr;
  keepingEnds = nullptr;
}

bool KeptTicks::Callback(int value, int stageWeight, const WideString* extraText, bool exactMode,
                         int maximum) {
  if (*keepingEnds) throw Ended();
  kept->ticks_.push_back({value, stageWeight, maximum, extraText != nullptr, exactMode,
                          extraText == nullptr ? WideString() : *extraText});
  return true;
}

bool KeptTicks::SendTo(ProgressCallback progress) const {
  return std::all_of(ticks_.begin(), ticks_.end(), [progress](const Tick& tick) {
    const WideString* const text = tick.hasText ? &tick.text : nullptr;
    return Ticker({progress, tick.share, text, tick.exactMode, tick.maximum}).Tick(tick.value);
  });
}

}  // namespace corvel
