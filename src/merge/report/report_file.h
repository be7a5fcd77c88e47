// A report as a file of its own.
#pragma once

#include <string_view>

#include "core/text.h"
#include "merge/report/run_report.h"

namespace corvel {

enum class ReportForm { kNone, kJson, kPage };

// By the ending of the name, in any case: .json, .html.
ReportForm ReportFormOf(WideView path);

// Writes it in the form that the name asks for; what stood there before goes when the new one is
// complete. `language`: of a page, see report_page.h. False: it could not be written.
bool WriteReport(const RunReport& report, const WideString& path, std::string_view language);

}  // namespace corvel
