#pragma once

#include "core/text.h"

namespace corvel::host {

// What `corvel check --help` prints.
WideView CheckHelp();

}  // namespace corvel::host
