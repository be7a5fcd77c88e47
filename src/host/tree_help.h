// The help of `corvel tree`.
#pragma once

#include "core/text.h"

namespace corvel::host {

WideView TreeHelp();

}  // namespace corvel::host
