#include "host/check/findings.h"

#include <algorithm>
#include <functional>
#include <tuple>

namespace corvel::host {

void Totals::Add(Severity severity, std::uint64_t count) {
  switch (severity) {
    case Severity::kError: errors += count; break;
    case Severity::kWarning: warnings += count; break;
    case Severity::kNote: notes += count; break;
  }
}

std::size_t Findings::IndexOf(RuleId rule, std::string_view subject) {
  const auto key = std::pair(rule, std::string(subject));
  const auto [place, isNew] = places_.try_emplace(key, findings_.size());
  if (isNew) findings_.push_back({.rule = rule, .subject = key.second});
  return place->second;
}

void Findings::Add(RuleId rule, std::string_view subject, FindingPlace place,
                   std::string_view guid) {
  AddTo(findings_[IndexOf(rule, subject)], std::move(place), guid);
}

void Findings::Add(Heap& heap, RuleId rule, std::string_view subject, FindingPlace place,
                   std::string_view guid) {
  if (heap.at_ == Heap::kUnknown) heap.at_ = IndexOf(rule, subject);
  AddTo(findings_[heap.at_], std::move(place), guid);
}

void Findings::AddTo(Finding& finding, FindingPlace place, std::string_view guid) const {
  ++finding.count;
  if (finding.places.size() < Finding::kPlacesKept) finding.places.push_back(std::move(place));
  if (keepsGuids_ && !guid.empty()) ++finding.byGuid[std::hash<std::string_view>()(guid)];
}

bool Findings::KeepsNextPlace(RuleId rule, std::string_view subject) const {
  const auto found = places_.find(std::pair(rule, std::string(subject)));
  return found == places_.end() || findings_[found->second].places.size() < Finding::kPlacesKept;
}

void Findings::Add(Finding finding) {
  Finding& known = findings_[IndexOf(finding.rule, finding.subject)];
  known.count += finding.count;
  for (FindingPlace& place : finding.places) {
    if (known.places.size() < Finding::kPlacesKept) known.places.push_back(std::move(place));
  }
}

std::vector<Finding> Findings::Take() {
  places_.clear();
  std::vector<Finding> taken = std::move(findings_);
  findings_.clear();
  std::sort(taken.begin(), taken.end(), [](const Finding& a, const Finding& b) {
    return std::tie(a.rule, a.subject) < std::tie(b.rule, b.subject);
  });
  return taken;
}

Totals TotalsOf(const std::vector<Finding>& findings) {
  Totals totals;
  for (const Finding& finding : findings) totals.Add(finding.HowSevere(), finding.count);
  return totals;
}

}  // namespace corvel::host
