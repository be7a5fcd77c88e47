// What does not fit together among several models.
#pragma once

#include <cstddef>
#include <vector>

#include "host/check/findings.h"
#include "host/check/model_check.h"

namespace corvel::host {

struct BetweenFinding {
  std::size_t file = 0;   // index
  std::size_t other = 0;  // the earlier file that it is compared with
  Finding finding;        // records of `file`; its lines are not known
};

// Each model with the first one that could be read, its GUIDs with those of all before it. Models
// that could not be read are left out. By file, other file, rule and subject.
std::vector<BetweenFinding> CheckBetween(const std::vector<CheckedModel>& models);

}  // namespace corvel::host
