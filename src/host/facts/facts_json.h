// The facts of a model as programs read them.
#pragma once

#include "host/facts/model_facts.h"
#include "host/json.h"

namespace corvel::host {

// An object whose keys and their order are fixed: see "facts" in docs/check.schema.json.
Json ModelFactsAsJson(const ModelFacts& facts);

}  // namespace corvel::host
