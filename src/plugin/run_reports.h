// What is reported during a run, and how a run ends for the user.
#pragma once

#include <functional>

#include "core/text.h"

namespace corvel::plugin {

// The one reporter of the whole system; see ErrorReporter. The text goes to the log past its
// muting. Mode 0 shows a box of the viewer with everything that mode 1 has collected in front, and
// where the log lies; no box when there is no text at all. Gives 0.
int ShowError(const char* key, const WideString& message, int mode);

// Who else hears each report: its whole text, and the mode. The text is empty where what was
// collected is shown without another word. May be empty; what hears is not to report. Gives the one
// before.
using ReportEar = std::function<void(const WideString& text, int mode)>;
ReportEar SetReportEar(ReportEar ear);

// Forgets what an earlier run reported and that it was cancelled.
void StartRun();

// Closes the progress dialog and the log. If anything was reported, the user is asked whether to
// see the log, and it stays either way; otherwise it is deleted. Waits for the answer. Who wants to
// see the log sees `report` too, a file that there is, unless it is empty.
void FinishRun(const WideString& report = {});

// True when something was reported since the last StartRun or FinishRun.
bool SomethingWasReported();

}  // namespace corvel::plugin
