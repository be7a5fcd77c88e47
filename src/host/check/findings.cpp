#include "host/check/findings.h"

#include <algorithm>
#include <functional>
#include <tuple>
#include <unordered_set>

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

void Findings::Add(RuleId rule, std::string_view subject, FindingPlace place) {
  AddTo(findings_[IndexOf(rule, subject)], std::move(place));
}

void Findings::Add(Heap& heap, RuleId rule, std::string_view subject, FindingPlace place) {
  if (heap.at_ == Heap::kUnknown) heap.at_ = IndexOf(rule, subject);
  AddTo(findings_[heap.at_], std::move(place));
}

void Findings::AddTo(Finding& finding, FindingPlace place) {
  ++finding.count;
  if (container_ != nullptr) NoteObject(finding, place);
  Keep(finding.places, std::move(place));
}

void Findings::NoteObject(Finding& finding, FindingPlace& place) {
  IFC::IfcEntity* const entity =
      place.number == 0 ? nullptr : container_->entities.Find(place.number);
  if (entity == nullptr) {
    place.isNew = known_ != nullptr && known_->TakeAnonymous(finding.rule, finding.subject, 1) == 0;
    return;
  }
  const std::uint64_t identity = identity_.Of(*entity);
  ++finding.byObject.try_emplace(identity, PlaceOfObject{0, place.number}).first->second.count;
  place.isNew = known_ != nullptr && known_->Take(finding.rule, finding.subject, identity, 1) == 0;
}

// A new place takes that of an old one, and comes behind the new ones.
void Findings::Keep(std::vector<FindingPlace>& places, FindingPlace place) {
  if (place.isNew && !places.empty()) {
    const auto behind = std::find_if(places.begin(), places.end(),
                                     [](const FindingPlace& kept) { return !kept.isNew; });
    places.insert(behind, std::move(place));
    places.resize(std::min(places.size(), Finding::kPlacesKept));
  } else if (places.size() < Finding::kPlacesKept) {
    places.push_back(std::move(place));
  }
}

bool Findings::MayKeepPlace(RuleId rule, std::string_view subject) const {
  const auto found = places_.find(std::pair(rule, std::string(subject)));
  if (found == places_.end()) return true;
  const std::vector<FindingPlace>& places = findings_[found->second].places;
  return places.size() < Finding::kPlacesKept || (known_ != nullptr && !places.back().isNew);
}

void Findings::Add(Finding finding, std::span<const std::uint32_t> numbers) {
  Finding& known = findings_[IndexOf(finding.rule, finding.subject)];
  const std::uint64_t all = known.count + finding.count;
  std::unordered_set<std::uint32_t> added;
  for (FindingPlace& place : finding.places) {
    added.insert(place.number);
    AddTo(known, std::move(place));
  }
  if (container_ != nullptr) {
    for (const std::uint32_t number : numbers) {
      if (!added.contains(number)) AddTo(known, {.number = number});
    }
  }
  known.count = all;
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
