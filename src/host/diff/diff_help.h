// The help of `corvel diff`.
#pragma once

#include "core/text.h"

namespace corvel::host::diff {

WideView Help();

}  // namespace corvel::host::diff
