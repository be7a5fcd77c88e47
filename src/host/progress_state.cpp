#include "host/progress_state.h"

#include <algorithm>
#include <utility>

namespace corvel::host {

void ProgressState::StartStage(int weight) {
  stageBase_ += stageWeight_;
  stageWeight_ = weight;
  stageStarted_ = false;
}

void ProgressState::SetTexts(WideString overallText, WideString stepText) {
  overallText_ = std::move(overallText);
  stepText_ = std::move(stepText);
}

ProgressView ProgressState::Tick(int value, int stageWeight, const WideString* extraText,
                                 bool exactMode, int maximum) {
  if (stageWeight >= 1 && !stageStarted_) {
    StartStage(stageWeight);
    stageStarted_ = true;
  }
  const int base = stageBase_;
  int share = value * stageWeight_ / 100;
  if (exactMode && stageWeight >= 1) {
    share = stageWeight * value / std::max(maximum, 1);
    if (share >= stageWeight) {
      stageBase_ += stageWeight_;
      stageWeight_ = stageWeight;
    }
  }
  ProgressView view;
  view.overall = std::clamp(std::max(base, base + share), 0, 100);
  view.step = std::clamp(value, 0, 100);
  view.overallText = overallText_;
  view.stepText = extraText == nullptr ? stepText_ : stepText_ + u" " + *extraText;
  return view;
}

}  // namespace corvel::host
