// What becomes of a press of the cancel button.
#pragma once

#include "core/text.h"

namespace corvel {

// The localised texts of the cancel question, written once per run.
struct CancelTexts {
  WideString question;
  WideString prompt = u"Are you sure you want to cancel?";
  WideString caption = u"Cancel";
};

// What the process is about. The numbers are those of old logs and settings.
enum class CancelMode {
  kAsk = 0,            // cancelling is asked about, error boxes are shown
  kHoldBackBoxes = 1,  // as kAsk, but error boxes are held back
  kEndUnasked = 2      // a reading is to end: it does so without a question
};

// Asks the user whether a run is to end, and remembers the answer. There is one run at a time, so
// one of these serves the process. To be used on the thread of the run only.
class Cancellation {
 public:
  // Made at the first call, and never gone.
  static Cancellation& OfProcess();

  // Forgets a Yes. For whoever starts a run; `mode` is left alone.
  void ForgetAnswer() { confirmed_ = false; }
  // Shows the cancel question, a modal box that waits for its answer (see
  // Platform::ShowMessageBox), whatever the mode is. True for Yes, which is remembered, so that a
  // run can end although the operation that was stopped tells nobody.
  bool Ask();
  // As Ask; where the mode is kEndUnasked the answer is Yes unasked, which is not remembered.
  bool AskUnlessEnding() { return mode == CancelMode::kEndUnasked || Ask(); }
  // Somebody has said Yes since ForgetAnswer.
  bool WasConfirmed() const { return confirmed_; }

  CancelMode mode = CancelMode::kAsk;
  CancelTexts texts;

 private:
  bool confirmed_ = false;
};

}  // namespace corvel
