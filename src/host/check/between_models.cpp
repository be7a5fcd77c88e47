#include "host/check/between_models.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <string_view>

#include "host/model_frame.h"
#include "host/wrapped_text.h"
#include "merge/report/shared/html_text.h"

namespace corvel::host {

namespace {

constexpr double kFarMetres = 1000.0;

using Kind = PlacePart::Kind;

WideString UnitText(const LengthUnit& unit) {
  return unit.name.empty() ? WideString(u"no length unit") : unit.name;
}

PlacePart UnitPart(const LengthUnit& unit) {
  if (unit.name.empty()) return {Kind::kWord, u"said.noLengthUnit"};
  return {Kind::kUnit, unit.name};
}

// "FOOT for METRE"
FindingPlace Difference(const WideString& what, PlacePart here, PlacePart there) {
  return {.what = what,
          .parts = {std::move(here), {Kind::kWord, u"said.insteadOf"}, std::move(there)}};
}

// What the name of an SI unit of that type ends with behind its prefix; empty: a merge does not
// compare such.
WideView SiNameOf(std::string_view type) {
  if (type == "AREAUNIT" || type == "VOLUMEUNIT") return u"METRE";
  if (type == "MASSUNIT") return u"GRAM";
  return type == "PLANEANGLEUNIT" ? u"RADIAN" : WideView();
}

bool IsSi(const UnitFacts& unit) {
  const bool isPower = unit.name.starts_with(u"SQUARE_") || unit.name.starts_with(u"CUBIC_");
  const bool wantsPower = unit.type == "AREAUNIT" || unit.type == "VOLUMEUNIT";
  const WideView name = SiNameOf(unit.type);
  return !name.empty() && isPower == wantsPower && unit.name.ends_with(name) &&
         unit.name.find(u' ') == WideString::npos;
}

// The last one of a type speaks. Null without one that a merge compares.
const UnitFacts* LastSiUnit(const std::vector<UnitFacts>& units, std::string_view type) {
  const auto found = std::find_if(units.rbegin(), units.rend(), [type](const UnitFacts& unit) {
    return unit.type == type && IsSi(unit);
  });
  return found == units.rend() ? nullptr : &*found;
}

// For these, too, a merge leaves a file out. A type that one of the two lacks is no difference.
void CompareOtherUnits(const ModelFacts& first, const ModelFacts& facts, Findings& findings) {
  for (const char* const type : {"AREAUNIT", "VOLUMEUNIT", "MASSUNIT", "PLANEANGLEUNIT"}) {
    const UnitFacts* const here = LastSiUnit(facts.units, type);
    const UnitFacts* const there = LastSiUnit(first.units, type);
    if (here == nullptr || there == nullptr || here->name == there->name) continue;
    findings.Add(RuleId::kOtherUnit, type,
                 Difference(here->name + u" for " + there->name, {Kind::kUnit, here->name},
                            {Kind::kUnit, there->name}));
  }
}

// How far the two boxes are from each other; 0 when they touch.
double Distance(const Extent& one, const Extent& other) {
  double square = 0.0;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const double gap =
        std::max({0.0, one.least[axis] - other.most[axis], other.least[axis] - one.most[axis]});
    square += gap * gap;
  }
  return std::sqrt(square);
}

// The names of a map conversion's values, in their order.
const PlacePart kValueNames[MapConversion::kCount] = {
    {Kind::kWord, u"eastings"},      {Kind::kWord, u"northings"},     {Kind::kWord, u"height"},
    {Kind::kText, u"XAxisAbscissa"}, {Kind::kText, u"XAxisOrdinate"}, {Kind::kWord, u"scale"}};

FindingPlace DifferenceOfPlaces(const std::optional<MapConversion>& here,
                                const std::optional<MapConversion>& there) {
  const PlacePart none{Kind::kWord, u"said.none"};
  const PlacePart one{Kind::kWord, u"said.one"};
  if (!here) return Difference(u"none for one", none, one);
  if (!there) return Difference(u"one for none", one, none);
  FindingPlace place{.what = DifferenceBetween(*there, *here)};
  for (std::size_t i = 0; i < MapConversion::kCount; ++i) {
    if (here->values[i] == there->values[i]) continue;
    place.parts.push_back(kValueNames[i]);
    place.parts.push_back({Kind::kNumber, Widen(FewestDigits(here->values[i]))});
    place.parts.push_back({Kind::kWord, u"said.insteadOf"});
    place.parts.push_back({Kind::kNumber, Widen(FewestDigits(there->values[i]))});
  }
  return place;
}

void CompareFrames(const ModelFacts& first, const ModelFacts& facts, Findings& findings) {
  if (facts.release != first.release) {
    const WideString here = Widen(facts.release);
    const WideString there = Widen(first.release);
    findings.Add(RuleId::kOtherRelease, {},
                 Difference(here + u" for " + there, {Kind::kText, here}, {Kind::kText, there}));
  }
  if (Differ(first.lengthUnit, facts.lengthUnit)) {
    findings.Add(RuleId::kOtherUnit, {},
                 Difference(UnitText(facts.lengthUnit) + u" for " + UnitText(first.lengthUnit),
                            UnitPart(facts.lengthUnit), UnitPart(first.lengthUnit)));
  }
  CompareOtherUnits(first, facts, findings);
  const auto& here = facts.georeference.conversion;
  const auto& there = first.georeference.conversion;
  if (here != there) findings.Add(RuleId::kOtherPlace, {}, DifferenceOfPlaces(here, there));
  if (facts.extent.placed == 0 || first.extent.placed == 0) return;
  const double metres = Distance(first.extent, facts.extent);
  if (metres > kFarMetres) {
    const WideString what = MetresText(metres);  // "1234.500 m"
    findings.Add(
        RuleId::kFarApart, {},
        {.what = what,
         .parts = {{Kind::kNumber, what.substr(0, what.find(u' '))}, {Kind::kText, u"m"}}});
  }
}

// Holders of all models so far, each GUID once, with the first that has it.
struct KnownHolder {
  GuidHolder holder;
  std::size_t file = 0;
};

using FindingsByFile = std::map<std::size_t, Findings>;

void CompareHolders(const GuidHolder& here, const KnownHolder& there, FindingsByFile& byFile) {
  const std::string_view className = here.facts->name;
  const std::string_view other = there.holder.facts->name;
  const bool isSame = className == other;
  WideString what = FromUtf8(here.guid.Text()) + u" #" + ToWide(there.holder.number);
  if (!isSame) what += u" " + Widen(other);
  byFile[there.file].Add(isSame ? RuleId::kSharedGuid : RuleId::kGuidOfOtherClass, className,
                         {.number = here.number, .what = what});
}

// Both sides ascend by GUID. What is new is added to `known`.
void CompareGuids(const CheckedModel& model, std::size_t file, std::vector<KnownHolder>& known,
                  FindingsByFile& byFile) {
  const std::size_t before = known.size();
  std::size_t at = 0;
  const GuidHolder* last = nullptr;
  for (const GuidHolder& holder : model.holders) {
    // The others of a GUID are doubled within the file, which is told there.
    if (last != nullptr && last->guid == holder.guid) continue;
    last = &holder;
    while (at < before && known[at].holder.guid < holder.guid) ++at;
    if (at < before && known[at].holder.guid == holder.guid) {
      CompareHolders(holder, known[at], byFile);
    } else {
      known.push_back({holder, file});
    }
  }
  std::inplace_merge(
      known.begin(), known.begin() + static_cast<std::ptrdiff_t>(before), known.end(),
      [](const KnownHolder& a, const KnownHolder& b) { return a.holder.guid < b.holder.guid; });
}

}  // namespace

std::vector<BetweenFinding> CheckBetween(const std::vector<CheckedModel>& models) {
  std::vector<BetweenFinding> all;
  std::vector<KnownHolder> known;
  std::size_t first = models.size();
  for (std::size_t file = 0; file < models.size(); ++file) {
    const CheckedModel& model = models[file];
    if (!model.facts) continue;
    FindingsByFile byFile;
    first = std::min(first, file);
    if (first != file) CompareFrames(*models[first].facts, *model.facts, byFile[first]);
    CompareGuids(model, file, known, byFile);
    for (auto& [other, findings] : byFile) {
      for (Finding& finding : findings.Take()) all.push_back({file, other, std::move(finding)});
    }
  }
  return all;
}

}  // namespace corvel::host
