// The report of a check as a file: a page for people, JSON for programs.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/text.h"
#include "host/check/check_report.h"

namespace corvel::host {

// One object, in UTF-8 and with a line end: see docs/report.md. It is what stands in a page as
// well.
std::string CheckReportForPrograms(const CheckReport& report);
// One page that needs nothing beside itself. `language`: see ReportAsPage.
std::string CheckReportAsPage(const CheckReport& report, std::string_view language);

// In the form that the name asks for. False: it could not be written.
bool WriteCheckReport(const CheckReport& report, const WideString& path);

}  // namespace corvel::host
