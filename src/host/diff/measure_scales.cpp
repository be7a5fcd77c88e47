#include "host/diff/measure_scales.h"

#include <cmath>
#include <numbers>
#include <optional>
#include <string_view>

#include "merge/federation/attribute_values.h"
#include "merge/federation/si_prefixes.h"
#include "merge/federation/tree/length_in_metres.h"

namespace corvel::host::diff {

namespace {

// Units that are made from each other may go in circles.
constexpr int kMostConversions = 8;

struct Kind {
  std::string_view type;
  std::string_view name;
  int power;
};
constexpr Kind kArea = {"AREAUNIT", "SQUARE_METRE", 2};
constexpr Kind kVolume = {"VOLUMEUNIT", "CUBIC_METRE", 3};
constexpr Kind kAngle = {"PLANEANGLEUNIT", "RADIAN", 1};
constexpr double kDegreesPerRadian = 180.0 / std::numbers::pi;

std::optional<double> ScaleOf(const IFC::IfcEntity* unit, const Kind& kind) {
  double factor = 1.0;
  for (int turn = 0; unit != nullptr && turn < kMostConversions; ++turn) {
    if (WordOf(*unit, "UnitType") != kind.type) return std::nullopt;
    if (WordOf(*unit, "Name") == kind.name) {
      const auto prefix = FindPrefix(WordOf(*unit, "Prefix"));
      return prefix ? std::optional(factor * std::pow(*prefix, kind.power)) : std::nullopt;
    }
    const IFC::IfcEntity* const measure = ReferenceOf(*unit, "ConversionFactor");
    const IFC::IfcEntity* const value =
        measure == nullptr ? nullptr : ReferenceOf(*measure, "ValueComponent");
    if (value == nullptr) return std::nullopt;
    factor *= RealOf(*value, "value");
    if (!std::isfinite(factor) || factor <= 0.0) return std::nullopt;
    unit = ReferenceOf(*measure, "UnitComponent");
  }
  return std::nullopt;
}

double ScaleIn(const IFC::IfcEntity* unitAssignment, const Kind& kind) {
  const EntityList* const units =
      unitAssignment == nullptr ? nullptr : ReferencesOf(*unitAssignment, "Units");
  double scale = 1.0;
  if (units == nullptr) return scale;
  for (const IFC::IfcEntity* const unit : *units) {
    if (unit == nullptr) continue;
    if (const auto told = ScaleOf(unit, kind)) scale = *told;
  }
  return scale;
}

}  // namespace

MeasureScales ScalesOf(const IFC::IfcEntity* unitAssignment) {
  return {MetresPerLengthUnit(unitAssignment), ScaleIn(unitAssignment, kArea),
          ScaleIn(unitAssignment, kVolume), ScaleIn(unitAssignment, kAngle) * kDegreesPerRadian};
}

}  // namespace corvel::host::diff
