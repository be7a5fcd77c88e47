// The facts of a model as people read them.
#pragma once

#include "core/text.h"
#include "host/facts/model_facts.h"

namespace corvel::host {

// Some lines of at most 80 columns, each with its end and two blanks in front.
WideString ModelFactsAsText(const ModelFacts& facts);

}  // namespace corvel::host
