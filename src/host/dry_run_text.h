// What a dry run tells.
#pragma once

#include "core/text.h"
#include "merge/report/run_report.h"

namespace corvel::host {

// What would become of each model, what the steps of federation would do, and what would be
// written, as lines for a terminal.
WideString DryRunText(const RunReport& report);

}  // namespace corvel::host
