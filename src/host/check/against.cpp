#include "host/check/against.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

namespace corvel::host {

namespace {

using Key = std::pair<RuleId, std::string_view>;

struct Sum {
  std::uint64_t count = 0;
  std::map<std::uint64_t, std::uint64_t> byGuid{};

  void Add(const Finding& finding) {
    count += finding.count;
    for (const auto& [guid, places] : finding.byGuid) byGuid[guid] += places;
  }
};

std::uint64_t WithoutGuid(std::uint64_t count,
                          const std::map<std::uint64_t, std::uint64_t>& byGuid) {
  for (const auto& [guid, places] : byGuid) count -= places;
  return count;
}

// Places that both have.
std::uint64_t OldPlaces(const Finding& finding, const Sum& before) {
  std::uint64_t old = std::min(WithoutGuid(finding.count, finding.byGuid),
                               WithoutGuid(before.count, before.byGuid));
  for (const auto& [guid, places] : finding.byGuid) {
    const auto there = before.byGuid.find(guid);
    if (there != before.byGuid.end()) old += std::min(places, there->second);
  }
  return old;
}

}  // namespace

Comparison CompareWith(const CheckedModel& model, const std::vector<CheckedModel>& inputs) {
  std::map<Key, Sum> before;
  for (const CheckedModel& input : inputs) {
    for (const Finding& finding : input.findings) {
      before[{finding.rule, finding.subject}].Add(finding);
    }
  }
  Comparison comparison;
  for (const Finding& finding : model.findings) {
    Sum& there = before[{finding.rule, finding.subject}];
    const std::uint64_t old = OldPlaces(finding, there);
    comparison.newPlaces.push_back(finding.count - old);
    there.count -= old;
  }
  for (const auto& [key, sum] : before) {
    if (sum.count == 0) continue;
    comparison.gone.push_back(
        {.rule = key.first, .subject = std::string(key.second), .count = sum.count});
  }
  return comparison;
}

}  // namespace corvel::host
