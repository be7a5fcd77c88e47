#include "core/ticker.h"

#include <algorithm>

#include "core/cancellation.h"

namespace corvel {

Ticker::Ticker(const Stage& stage, const TickSteps& steps, Asking asking)
    : stage_(stage),
      asking_(asking),
      block_(OrNever(steps.block)),
      left_(steps.first != 0 ? steps.first : block_),
      value_(steps.valueBefore),
      ticksLeft_(steps.most) {
  if (ticksLeft_ <= 0) left_ = kNever;
}

bool Ticker::Tick(int value) const {
  if (stage_.callback == nullptr ||
      stage_.callback(std::min(value, stage_.maximum), stage_.share, stage_.text, stage_.exactMode,
                      stage_.maximum)) {
    return true;
  }
  Cancellation& cancellation = Cancellation::OfProcess();
  return !(asking_ == Asking::kAlways ? cancellation.Ask() : cancellation.AskUnlessEnding());
}

void Ticker::Show(int value) const {
  if (stage_.callback == nullptr) return;
  stage_.callback(std::min(value, stage_.maximum), stage_.share, stage_.text, stage_.exactMode,
                  stage_.maximum);
}

bool Ticker::SendDueTicks(std::size_t pieces) {
  while (pieces >= left_) {
    pieces -= left_;
    left_ = --ticksLeft_ > 0 ? block_ : kNever;
    // A stage that has reached its maximum goes on ticking there, so that it can be cancelled.
    if (value_ < stage_.maximum) ++value_;
    if (!Tick(value_)) return false;
  }
  left_ -= pieces;
  return true;
}

}  // namespace corvel
