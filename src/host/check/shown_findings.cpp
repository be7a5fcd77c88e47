#include "host/check/shown_findings.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace corvel::host {

namespace {

constexpr std::size_t kAllShown = 10;
constexpr std::size_t kShownOfMore = 8;

using Indexes = std::vector<std::size_t>;

Indexes BySeverityAndRule(const std::vector<Finding>& findings) {
  Indexes order(findings.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  const auto keyOf = [&](std::size_t i) {
    return std::pair(-static_cast<int>(findings[i].HowSevere()), findings[i].rule);
  };
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return keyOf(a) < keyOf(b); });
  return order;
}

ShownOfRule Cut(Indexes ofRule, const std::vector<Finding>& findings,
                const std::vector<std::uint64_t>& newPlaces) {
  if (ofRule.size() <= kAllShown) return {std::move(ofRule)};
  const auto keyOf = [&](std::size_t i) {
    return std::pair(newPlaces.empty() ? 0 : newPlaces[i], findings[i].count);
  };
  std::stable_sort(ofRule.begin(), ofRule.end(),
                   [&](std::size_t a, std::size_t b) { return keyOf(a) > keyOf(b); });
  ShownOfRule cut;
  cut.hidden = ofRule.size() - kShownOfMore;
  for (std::size_t i = kShownOfMore; i < ofRule.size(); ++i) {
    cut.hiddenPlaces += findings[ofRule[i]].count;
  }
  ofRule.resize(kShownOfMore);
  std::sort(ofRule.begin(), ofRule.end());
  cut.shown = std::move(ofRule);
  return cut;
}

}  // namespace

std::vector<ShownOfRule> ShownFindings(const std::vector<Finding>& findings,
                                       const std::vector<std::uint64_t>& newPlaces) {
  std::vector<ShownOfRule> rules;
  Indexes ofRule;
  for (const std::size_t i : BySeverityAndRule(findings)) {
    if (!ofRule.empty() && findings[ofRule.front()].rule != findings[i].rule) {
      rules.push_back(Cut(std::exchange(ofRule, {}), findings, newPlaces));
    }
    ofRule.push_back(i);
  }
  if (!ofRule.empty()) rules.push_back(Cut(std::move(ofRule), findings, newPlaces));
  return rules;
}

}  // namespace corvel::host
