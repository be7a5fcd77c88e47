// A report as a file of its own.
#pragma once

#include "core/text.h"

namespace corvel {

enum class ReportForm { kNone, kJson, kPage };

// By the ending of the name, in any case: .json, .html.
ReportForm ReportFormOf(WideView path);

// The local time as reports tell it: "2026-11-22 14:05:09".
WideString TimeOfReport();

}  // namespace corvel
