// What is new in a model, compared with those that it was made from.
#pragma once

#include <cstdint>
#include <vector>

#include "host/check/findings.h"
#include "host/check/known_places.h"
#include "host/check/model_check.h"

namespace corvel::host {

struct Comparison {
  // Of each finding of the model, how many of its places are new; the others are old.
  std::vector<std::uint64_t> newPlaces;
  // What the inputs have and the model has no more. Places are records of the inputs; of
  // several inputs `what` names the file. Their lines are not known.
  std::vector<Finding> gone;
};

// Of models that were checked with CheckOrder::keepsObjects.
KnownPlaces PlacesOf(const std::vector<CheckedModel>& models);

// Numbers of records say nothing across files: places are paired by rule, subject and object, and
// those that are about none are counted. All are checked with CheckOrder::keepsObjects.
Comparison CompareWith(const CheckedModel& model, const std::vector<CheckedModel>& inputs);

}  // namespace corvel::host
