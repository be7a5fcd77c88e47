// How the engine speaks to whoever runs it: one reporter, one progress call.
#pragma once

#include "core/text.h"

namespace corvel {

// Modes of a report.
inline constexpr int kReportShow = 0;     // shown and logged
inline constexpr int kReportCollect = 1;  // logged, and shown with the next report of mode 0
inline constexpr int kReportLog = 2;      // logged only

// `key` names a localised text that stands before `message`; it may be empty. Both are borrowed for
// the call, which may show a box and wait for it. The result is 0.
using ErrorReporter = int (*)(const char* key, const WideString& message, int mode);

// One tick of a long loop. `value` is 0..100 in steps of the caller, `extraText` may be null and is
// borrowed for the call.
// False means that the user pressed cancel; the caller then asks the cancel question.
using ProgressCallback = bool (*)(int value, int stageWeight, const WideString* extraText,
                                  bool exactMode, int maximum);

}  // namespace corvel
