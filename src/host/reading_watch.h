// The bars of commands that read models to say something about them.
#pragma once

#include "core/text.h"
#include "host/progress_bars.h"
#include "host/run_console.h"

namespace corvel::host {

// Draws how far the reading is. The readers take a plain function, so that there is one of these at
// a time. Where there is none, Tick lets them go on and draws nothing.
class ReadingWatch {
 public:
  // `overallText`: over the upper bar. `readingShare`: percent of the whole that one reading takes;
  // 0 leaves the upper bar where StepBegins has put it. Borrows the console.
  ReadingWatch(RunConsole& console, WideString overallText, int readingShare = 0);
  ~ReadingWatch();
  ReadingWatch(const ReadingWatch&) = delete;
  ReadingWatch& operator=(const ReadingWatch&) = delete;

  // `overall`: percent of the whole that is done by now.
  void StepBegins(WideString text, int overall);
  // Percent of the step and of the whole. False as RunConsole::Draw.
  bool Draw(int step, int overall);

  // For the readers: percent of a reading.
  static bool Tick(int value, int stageWeight, const WideString* text, bool exactMode, int maximum);

 private:
  RunConsole& console_;
  int readingShare_;
  int before_ = 0;
  ProgressView view_;
};

}  // namespace corvel::host
