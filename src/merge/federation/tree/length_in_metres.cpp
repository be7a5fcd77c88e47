#include "merge/federation/tree/length_in_metres.h"

#include <cmath>
#include <string_view>

#include "merge/federation/attribute_values.h"
#include "merge/federation/si_prefixes.h"

namespace corvel {

namespace {

// A unit may be made from one that is made by conversion itself. Nobody does this often, and files
// that go in circles do it without an end.
constexpr int kMostConversions = 8;

// What an IfcMeasureWithUnit says without its unit.
double ValueOf(const IFC::IfcEntity& measure) {
  const IFC::IfcEntity* const typed = ReferenceOf(measure, "ValueComponent");
  return typed == nullptr ? 0.0 : RealOf(*typed, "value");
}

}  // namespace

std::optional<double> MetresPerUnit(const IFC::IfcEntity* unit) {
  double factor = 1.0;
  for (int turn = 0; unit != nullptr && turn < kMostConversions; ++turn) {
    if (WordOf(*unit, "UnitType") != "LENGTHUNIT") return std::nullopt;
    if (WordOf(*unit, "Name") == "METRE") return factor * FactorOfPrefix(WordOf(*unit, "Prefix"));
    const IFC::IfcEntity* const measure = ReferenceOf(*unit, "ConversionFactor");
    if (measure == nullptr) return std::nullopt;
    factor *= ValueOf(*measure);
    if (!std::isfinite(factor) || factor <= 0.0) return std::nullopt;
    unit = ReferenceOf(*measure, "UnitComponent");
  }
  return std::nullopt;
}

double MetresPerLengthUnit(const IFC::IfcEntity* unitAssignment) {
  const EntityList* const units =
      unitAssignment == nullptr ? nullptr : ReferencesOf(*unitAssignment, "Units");
  double metres = 1.0;
  if (units == nullptr) return metres;
  for (const IFC::IfcEntity* const unit : *units) {
    if (const auto told = MetresPerUnit(unit)) metres = *told;
  }
  return metres;
}

}  // namespace corvel
