// Two models, compared.
#pragma once

#include <functional>
#include <optional>

#include "host/diff/changes.h"
#include "host/diff/shortcuts.h"
#include "host/diff/tolerance.h"
#include "merge/document.h"

namespace corvel::host::diff {

// Asked now and then with the percentage that is done; false: somebody wants to stop.
using DiffProgress = std::function<bool(int percent)>;

// Both models have been read, and nothing else has been done with them; their visit stamps and
// flags are taken. Nothing when `progress` gave false. Memory: 8 bytes for each record, some 20
// more for those in doubt, and what is told of the changes.
std::optional<ModelDiff> CompareModels(const IfcDocument& before, const IfcDocument& after,
                                       const Tolerance& tolerance, const DiffProgress& progress,
                                       Shortcuts shortcuts = Shortcuts::kTaken);

}  // namespace corvel::host::diff
