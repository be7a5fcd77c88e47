// The units of the first model as those of a later one.
#pragma once

#include "merge/document.h"

namespace corvel {

// Assigns to `later` copies of what `first` assigns. The old units stay in the model for those who
// refer to them, and money and what is no measure stay assigned. `first` has to live as long as
// `later`. False when there are no numbers left, which has been reported.
bool AssignUnitsOf(const IfcDocument& first, IfcDocument& later);

}  // namespace corvel
