// A header that tells of the run that wrote the file.
#pragma once

#include <vector>

#include "core/text.h"
#include "step/reader/token.h"

namespace corvel {

// Replaces name, time stamp and preprocessor version, and appends the inputs to the description, a
// text each. What the first input says of views, authors and systems stays. `output` and `inputs`
// are paths; of a path the name of the file counts.
void RenewHeader(HeaderToken& header, const WideString& output,
                 const std::vector<WideString>& inputs);

}  // namespace corvel
