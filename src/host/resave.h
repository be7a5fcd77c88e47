// One model in, the same model out.
#pragma once

#include "core/text.h"
#include "merge/merge_job.h"
#include "merge/merge_shell.h"

namespace corvel::host {

// Reads `input` and writes `output`, with the plug-in's progress and reports. Of the options those
// count that concern reading. Needs the plug-in to be loaded. What goes wrong has been reported, a
// lack of memory too.
RunResult Resave(const WideString& input, const WideString& output, const MergeOptions& options);

}  // namespace corvel::host
