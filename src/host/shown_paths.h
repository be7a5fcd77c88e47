// Files that stand for something else.
#pragma once

#include "core/text.h"

namespace corvel::host {

// From now on all that this process tells of the file at `path` calls it `name`.
void ShowPathAs(const WideString& path, const WideString& name);

// The text with these names in it, be it for people or JSON.
WideString WithShownPaths(WideView text);

}  // namespace corvel::host
