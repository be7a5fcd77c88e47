// The viewer's progress dialog with its two bars: the whole run above, the step at work below.
//
// Stages of the run have weights in percent of the upper bar. The loops of the engine tick through
// UpdateProgress; each tick is where the viewer keeps itself alive and where a cancel is seen.
#pragma once

#include "core/text.h"

namespace corvel::plugin {

// For the viewer's user-interface thread alone.
class ProgressWindow {
 public:
  // The engine's ticks are calls of a plain function, so there is one window.
  static ProgressWindow& Instance();

  // Opens the dialog with the bars at zero. An empty title becomes "Corvel". Reports when the
  // dialog is open already, and changes nothing then.
  void InitProgress(const WideString& title);
  bool IsOpen() const { return !title_.empty(); }

  // One tick; see ProgressCallback. With `exactMode` the value counts out of `maximum` for the
  // upper bar, otherwise out of 100. The upper bar never falls within a run. Without a dialog it
  // reports and throws std::logic_error.
  bool Update(int value, int stageWeight, const WideString* extraText, bool exactMode, int maximum);
  // The same for callers that know no window. A ProgressCallback.
  static bool UpdateProgress(int value, int stageWeight, const WideString* extraText,
                             bool exactMode, int maximum);

  void SetOverallText(const WideString& text) { overallText_ = text; }
  void SetCurrentText(const WideString& text);
  // Puts ": " and the name of the file behind the current text.
  void SetCurrentFile(const WideString& path);
  // The file of the current text; empty when it names none.
  const WideString& CurrentFile() const { return currentFile_; }

  // The stage before is done; the next one is worth `weight` percent.
  void StartStage(int weight);
  // The same with all that is left.
  void StartLastStage() { StartStage(100 - stageBase_ - stageWeight_); }
  // Puts texts and stages back to their first values; the dialog stays.
  void Reset();
  // Fills the bars and closes the dialog.
  void Finish();

 private:
  int ShareOf(int value, int stageWeight, bool exactMode, int maximum);

  WideString overallText_ = u"Overall progress";
  WideString currentText_ = u"Current progress";
  WideString currentFile_;
  WideString title_;  // empty: no dialog
  int stageWeight_ = 0;
  int stageBase_ = 0;
  bool stageStarted_ = false;  // the weight of this stage has been taken over
  int shownOverall_ = 0;
};

}  // namespace corvel::plugin
