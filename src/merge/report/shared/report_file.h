// A report as a file of its own.
#pragma once

#include <string>

#include "core/text.h"

namespace corvel {

enum class ReportForm { kNone, kJson, kPage };

// By the ending of the name, in any case: .json, .html.
ReportForm ReportFormOf(WideView path);

// What stood there before goes when the new file is complete. False: it could not be written.
bool WriteReportFile(const WideString& path, const std::string& text);

// The local time as reports tell it: "2026-11-22 14:05:09".
WideString TimeOfReport();

}  // namespace corvel
