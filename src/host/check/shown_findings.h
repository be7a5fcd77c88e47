// Which findings people are shown: a rule that is broken everywhere must not bury the others.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/check/findings.h"

namespace corvel::host {

// Those of one rule that are shown, by index, and what is left of the rule.
struct ShownOfRule {
  std::vector<std::size_t> shown;  // in the order of their subjects
  std::size_t hidden = 0;          // findings
  std::uint64_t hiddenPlaces = 0;

  bool operator==(const ShownOfRule&) const = default;
};

// By severity, the worst first, then by rule. Up to ten findings of a rule are shown; of more
// eight, those with new places (`newPlaces`, of each finding; empty: nothing is compared) before
// others, and then those with the most places.
std::vector<ShownOfRule> ShownFindings(const std::vector<Finding>& findings,
                                       const std::vector<std::uint64_t>& newPlaces);

}  // namespace corvel::host
