// The terminal of a command: lines on standard error, the two bars, and an ear on every question.
#pragma once

#include <functional>
#include <optional>

#include "core/text.h"
#include "host/progress_bars.h"
#include "host/run_pace.h"
#include "host/watched_platform.h"

namespace corvel::host {

class RunConsole {
 public:
  // Where text goes and how wide it may be; replaced by tests.
  struct Output {
    std::function<void(WideView)> write;  // standard error
    std::function<int()> columns;
    bool drawsBars = false;
    bool tellsPrograms = false;  // a line of JSON for each view, in the place of bars
  };
  // Standard error; bars if `mayDraw` and it is a terminal that can move its cursor.
  static Output StandardError(bool mayDraw, bool tellsPrograms = false);

  explicit RunConsole(Output output);
  RunConsole(const RunConsole&) = delete;
  RunConsole& operator=(const RunConsole&) = delete;

  // `corvel: text`, without blanks and line feeds at its end.
  void Say(WideView text);
  // Draws the bars, the upper one up to 99 percent: nothing is done before the run has ended, and
  // then they go. False when the user has asked to stop, by Ctrl-C, or the system has.
  bool Draw(const ProgressView& view);
  void EraseBars() { bars_.Erase(); }
  // So many bytes are going to be read; the bars tell how fast that goes. From here on time counts.
  void StartClock(std::int64_t bytes);
  // For programs: the run is over, with that exit status.
  void TellEnd(int status);
  // From now on boxes that only tell are not shown: the command tells all that matters itself.
  void HoldBackBoxes() { holdsBackBoxes_ = true; }
  // For steps without ticks: true when the run is to end here. Asks whoever pressed Ctrl-C.
  bool ShallEnd();

  // A cancel question was answered with Yes, by whomever; unasked when the system asked the process
  // to end.
  bool WasCancelled() const { return cancelConfirmed_; }
  // The same where nobody was asked and nobody had interrupted the run.
  bool WasStoppedUnasked() const { return stoppedUnasked_; }
  // The log was offered, because something had been reported. The answer is No, unasked.
  bool LogWasOffered() const { return logOffered_; }

 private:
  std::optional<platform::Answer> BeforeBox(platform::Buttons buttons, platform::Icon icon);
  bool EndsAsRequested();
  void AfterBox(platform::Buttons buttons, platform::Answer answer, bool byAPerson);

  Output output_;
  RunPace pace_;
  ProgressView told_;
  ProgressBars bars_;
  bool holdsBackBoxes_ = false;
  bool cancelConfirmed_ = false;
  bool stoppedUnasked_ = false;
  bool logOffered_ = false;
  WatchedPlatform platform_;
};

}  // namespace corvel::host
