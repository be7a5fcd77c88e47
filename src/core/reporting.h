// How the engine speaks to whoever runs it: one reporter, one progress call, one cancel question.
#pragma once

#include "core/text.h"

namespace corvel {

// Modes of a report.
inline constexpr int kReportShow = 0;     // shown and logged
inline constexpr int kReportCollect = 1;  // logged, and shown with the next report of mode 0
inline constexpr int kReportLog = 2;      // logged only

// `key` names a localised text that stands before `message`; it may be empty. The result is 0.
using ErrorReporter = int (*)(const char* key, const WideString& message, int mode);

// One tick of a long loop. `value` is 0..100 in steps of the caller, `extraText` may be null.
// False means that the user pressed cancel; the caller then asks the cancel question.
using ProgressCallback = bool (*)(int value, int stageWeight, const WideString* extraText,
                                  bool exactMode, int maximum);

// The localised texts of the cancel question. One process-wide record, written once per run.
struct CancelTexts {
  WideString question;
  WideString prompt = u"Are you sure you want to cancel?";
  WideString caption = u"Cancel";
};

CancelTexts& SharedCancelTexts();

// Shows the cancel question and gives true for Yes. It does not look at `CancelMode`.
bool AskCancelQuestion(const CancelTexts& texts);

// Raised by each Yes to that question, so that a run can end although the operation that was
// stopped tells nobody. Process-wide; whoever starts a run takes it down.
bool& CancelWasConfirmed();

// Process-wide word: below 2 the user is asked before a reading ends early, 2 ends it unasked.
int& CancelMode();

}  // namespace corvel
