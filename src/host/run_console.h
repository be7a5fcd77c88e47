// Where the engine's reports, ticks and questions go while a command runs: to standard error and to
// the log.
#pragma once

#include <functional>
#include <optional>
#include <string_view>

#include "core/reporting.h"
#include "core/text.h"
#include "host/progress_bars.h"
#include "host/progress_state.h"
#include "host/watched_platform.h"

namespace corvel::host {

// One at a time; the engine reaches the one that is alive through Reporter and Ticks, which are
// plain functions.
class RunConsole {
 public:
  // Where text goes and how wide it may be; replaced by tests.
  struct Output {
    std::function<void(WideView)> write;  // standard error
    std::function<int()> columns;
    bool drawsBars = false;
  };
  // Standard error; bars if `mayDraw` and it is a terminal that can move its cursor.
  static Output StandardError(bool mayDraw);

  explicit RunConsole(Output output);
  ~RunConsole();
  RunConsole(const RunConsole&) = delete;
  RunConsole& operator=(const RunConsole&) = delete;

  // For the engine. Report and Tick of the console that is alive.
  static int Reporter(const char* key, const WideString& message, int mode);
  static bool Ticks(int value, int stageWeight, const WideString* extraText, bool exactMode,
                    int maximum);

  // A report of the engine, with the meaning of ErrorReporter: logged past the muting of the log,
  // and shown with the name of the file at work in front of it. Without a log to stand in, a report
  // of any mode is shown. Gives 0.
  int Report(std::string_view key, const WideString& message, int mode);
  // One line of the program's own, `corvel: text`; no report.
  void Say(WideView text);
  // Draws the bars. False when the user has asked to stop, by Ctrl-C.
  bool Tick(int value, int stageWeight, const WideString* extraText, bool exactMode, int maximum);

  // The file that reports are about; empty: none.
  void SetFileAtWork(WideString path) { fileAtWork_ = std::move(path); }
  ProgressState& Progress() { return progress_; }
  void EraseBars() { bars_.Erase(); }

  // Number of reports so far. Message boxes don't count.
  unsigned ReportCount() const { return reportCount_; }
  // The user has stopped the run: by Ctrl-C and not going back on it, or by an answer of his own.
  bool WasCancelled() const { return cancelConfirmed_ || cancelAsked_; }
  // The same, and it is settled.
  bool CancelIsConfirmed() const { return cancelConfirmed_; }

 private:
  std::optional<platform::Answer> BeforeBox(platform::Buttons buttons);
  void AfterBox(platform::Buttons buttons, platform::Answer answer, bool byAPerson);
  void Show(WideView text);

  Output output_;
  ProgressBars bars_;
  ProgressState progress_;
  WideString fileAtWork_;
  WideString pending_;  // reports of mode 1 that wait to be shown
  unsigned reportCount_ = 0;
  bool cancelAsked_ = false;
  bool cancelConfirmed_ = false;
  WatchedPlatform platform_;
};

}  // namespace corvel::host
