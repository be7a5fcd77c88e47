// The report of a run as a file.
#pragma once

#include <string_view>

#include "core/text.h"
#include "merge/report/run_report.h"

namespace corvel {

// In the form that the name asks for. `language`, `threads`: of a page, see report_page.h. False:
// it could not be written.
bool WriteReport(const RunReport& report, const WideString& path, std::string_view language,
                 unsigned threads = 1);

}  // namespace corvel
