// A report for programs.
#pragma once

#include <string>
#include <string_view>

#include "merge/report/run_report.h"

namespace corvel {

// The words of the report: stable, and the same in each language.
std::string_view WordOf(DropReason reason);  // "notSelected"
std::string_view WordOf(RunStage stage);     // "read"

// The report as one object, in UTF-8 and with a line end. It is what stands in a page as well.
std::string ReportAsJson(const RunReport& report);

}  // namespace corvel
