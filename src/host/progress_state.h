// The two bars of a run as numbers: the whole run above, the step at work below.
#pragma once

#include "core/text.h"

namespace corvel::host {

// What is to be seen. Percents are 0..100.
struct ProgressView {
  int overall = 0;
  int step = 0;
  WideString overallText;
  WideString stepText;
  bool operator==(const ProgressView&) const = default;
};

// A run is a row of stages, each worth a part of the overall bar: its weight, in percent. The loops
// of the engine know their own progress only.
class ProgressState {
 public:
  // Ends the stage at work, which counts as filled, and starts one that is worth `weight`.
  void StartStage(int weight);
  // Starts the last stage, which is worth what is left.
  void StartLastStage() { StartStage(100 - stageBase_ - stageWeight_); }
  void SetTexts(WideString overallText, WideString stepText);

  // One tick of a loop that is at `value` percent (see ProgressCallback). A `stageWeight` of 1 or
  // more splits a stage: what was before counts as filled, and the rest has this weight. With
  // `exactMode` the loop counts up to `maximum`, and whenever it gets there, the same weight starts
  // once more.
  ProgressView Tick(int value, int stageWeight, const WideString* extraText, bool exactMode,
                    int maximum);

 private:
  WideString overallText_;
  WideString stepText_;
  int stageBase_ = 0;
  int stageWeight_ = 0;
  bool stageStarted_ = false;
};

}  // namespace corvel::host
