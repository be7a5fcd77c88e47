// What is new in a model, compared with those that it was made from.
#pragma once

#include <cstdint>
#include <vector>

#include "host/check/findings.h"
#include "host/check/model_check.h"

namespace corvel::host {

struct Comparison {
  // Of each finding of the model, how many of its places are new; the others are old.
  std::vector<std::uint64_t> newPlaces;
  // What the inputs have and the model has no more: so many places, of which none is named.
  std::vector<Finding> gone;
};

// Numbers of records say nothing across files: places are paired by rule, subject and GUID, and
// those without one counted. All are checked with CheckOrder::keepsGuids.
Comparison CompareWith(const CheckedModel& model, const std::vector<CheckedModel>& inputs);

}  // namespace corvel::host
