#include "host/check/against.h"

#include <algorithm>
#include <string>
#include <utility>

#include "core/shown_paths.h"

namespace corvel::host {

namespace {

// Places that both have.
std::uint64_t OldPlaces(const Finding& finding, KnownPlaces& known) {
  std::uint64_t old = 0;
  std::uint64_t anonymous = finding.count;
  for (const auto& [identity, place] : finding.byObject) {
    old += known.Take(finding.rule, finding.subject, identity, place.count);
    anonymous -= place.count;
  }
  return old + known.TakeAnonymous(finding.rule, finding.subject, anonymous);
}

// The first by file and number. Of several files it is told which.
std::vector<FindingPlace> PlacesIn(const KnownPlaces::Sum& sum,
                                   const std::vector<CheckedModel>& inputs) {
  std::vector<std::pair<std::size_t, std::uint32_t>> places;
  for (const auto& [identity, object] : sum.objects) {
    if (object.count != 0) places.emplace_back(object.file, object.number);
  }
  std::sort(places.begin(), places.end());
  places.resize(std::min(places.size(), Finding::kPlacesKept));
  std::vector<FindingPlace> first;
  first.reserve(places.size());
  for (const auto& [file, number] : places) {
    FindingPlace& place = first.emplace_back();
    place.number = number;
    if (inputs.size() == 1) continue;
    const WideString name = ShownFileName(inputs[file].path);
    place.what = u"in " + name;
    place.parts = {{PlacePart::Kind::kWord, u"said.in"}, {PlacePart::Kind::kText, name}};
  }
  return first;
}

}  // namespace

KnownPlaces PlacesOf(const std::vector<CheckedModel>& models) {
  KnownPlaces known;
  for (std::size_t file = 0; file < models.size(); ++file) {
    for (const Finding& finding : models[file].findings) {
      known.Add(finding.rule, finding.subject, finding.count, finding.byObject, file);
    }
  }
  return known;
}

Comparison CompareWith(const CheckedModel& model, const std::vector<CheckedModel>& inputs) {
  KnownPlaces known = PlacesOf(inputs);
  Comparison comparison;
  for (const Finding& finding : model.findings) {
    comparison.newPlaces.push_back(finding.count - OldPlaces(finding, known));
  }
  for (const auto& [key, sum] : known.Rest()) {
    const std::uint64_t count = sum.Count();
    if (count == 0) continue;
    comparison.gone.push_back({.rule = key.first,
                               .subject = key.second,
                               .count = count,
                               .places = PlacesIn(sum, inputs)});
  }
  return comparison;
}

}  // namespace corvel::host
