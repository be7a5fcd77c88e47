// The facts of a file's model.
#pragma once

#include <optional>

#include "core/text.h"
#include "host/facts/model_facts.h"

namespace corvel::host {

// Reads the file with tolerance, and keeps nothing of it in memory. Nothing when that fails; what
// the reading has to say is told to nobody. `workFolder`: for the file that it needs meanwhile.
std::optional<ModelFacts> ReadModelFacts(const WideString& path, const WideString& workFolder);

}  // namespace corvel::host
