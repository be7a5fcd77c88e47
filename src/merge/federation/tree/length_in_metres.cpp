#include "merge/federation/tree/length_in_metres.h"

#include <cmath>
#include <string_view>

#include "merge/federation/attribute_values.h"

namespace corvel {

namespace {

// A unit may be made from one that is made by conversion itself. Nobody does this often, and files
// that go in circles do it without an end.
constexpr int kMostConversions = 8;

struct Prefix {
  std::string_view name;
  double factor;
};

constexpr Prefix kPrefixes[] = {{"EXA", 1e18},  {"PETA", 1e15},  {"TERA", 1e12},   {"GIGA", 1e9},
                                {"MEGA", 1e6},  {"KILO", 1e3},   {"HECTO", 1e2},   {"DECA", 1e1},
                                {"DECI", 1e-1}, {"CENTI", 1e-2}, {"MILLI", 1e-3},  {"MICRO", 1e-6},
                                {"NANO", 1e-9}, {"PICO", 1e-12}, {"FEMTO", 1e-15}, {"ATTO", 1e-18}};

double FactorOfPrefix(std::string_view name) {
  for (const Prefix& prefix : kPrefixes) {
    if (prefix.name == name) return prefix.factor;
  }
  return 1.0;
}

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
