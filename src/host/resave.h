// One model in, the same model out.
#pragma once

#include "core/text.h"

namespace corvel::host {

// Reads `input` and writes `output`, with the plug-in's progress and reports. True when the output
// is there, complete. Needs the plug-in to be loaded.
bool Resave(const WideString& input, const WideString& output, bool ignoreEnumErrors);

}  // namespace corvel::host
