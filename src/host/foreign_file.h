// What a file is that is no STEP file.
#pragma once

#include <optional>

#include "core/text.h"

namespace corvel::host {

// "this is no STEP file, it begins with 'hello'"; of archives "the model in it is ...". Nothing
// when the file at `path` begins as a STEP file does, behind whatever readers pass over, or cannot
// be opened.
std::optional<WideString> NoStepFile(const WideString& path);

}  // namespace corvel::host
