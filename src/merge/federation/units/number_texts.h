// Texts that are numbers to whoever reads them.
#pragma once

#include "core/model_text.h"

namespace corvel {

// A number, "2500" or "-2,5E3", with no more behind it than a unit may be: "2500 mm", "12'".
bool HoldsNumber(ModelText text);

}  // namespace corvel
