#include "core/ticker.h"

#include <algorithm>

#include "core/cancellation.h"

namespace corvel {

namespace {

// False: the user pressed cancel.
bool Send(const Stage& stage, int value) {
  return stage.callback == nullptr || stage.callback(std::min(value, stage.maximum), stage.share,
                                                     stage.text, stage.exactMode, stage.maximum);
}

}  // namespace

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
  if (Send(stage_, value)) return true;
  Cancellation& cancellation = Cancellation::OfProcess();
  return !(asking_ == Asking::kAlways ? cancellation.Ask() : cancellation.AskUnlessEnding());
}

void Ticker::Show(int value) const { Send(stage_, value); }

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
