// The facts of a model as programs read them.
#pragma once

#include <nlohmann/json.hpp>

#include "host/facts/model_facts.h"

namespace corvel::host {

// An object whose keys and their order are fixed: see "facts" in docs/check.schema.json.
nlohmann::ordered_json ModelFactsAsJson(const ModelFacts& facts);

}  // namespace corvel::host
