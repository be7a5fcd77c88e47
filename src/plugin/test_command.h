// A developer's command: one model read and written back.
#pragma once

#include "core/text.h"
#include "merge/merge_shell.h"

namespace corvel::plugin {

// Reads the model at `path` (empty: none is loaded, which is reported) and writes it beside the
// original as `path` + "_test.ifc", which becomes the last created file in `userFolder`.
void TestCommand(const WideString& path, const WideString& userFolder, const MergeOptions& options);

}  // namespace corvel::plugin
