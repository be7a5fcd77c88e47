#include "merge/federation/units/unit_sizes.h"

#include <cmath>
#include <cstdint>
#include <string_view>
#include <unordered_map>

#include "core/text.h"
#include "merge/federation/attribute_values.h"
#include "merge/federation/si_prefixes.h"

namespace corvel {

namespace {

// A unit may be made from one that is made by conversion itself. Nobody does this often, and files
// that go in circles do it without an end.
constexpr int kMostConversions = 8;

constexpr double kTolerance = 1e-9;
// Of a number, more than a few multiplications leave.
constexpr double kNoise = 1e-14;
constexpr double kZeroCelsius = 273.15;

// Absolute zero in degrees Fahrenheit, and how many of them are a kelvin.
constexpr double kZeroFahrenheit = 459.67;
constexpr double kFahrenheitPerKelvin = 1.8;
constexpr double kNearFahrenheit = 0.01;

struct SiUnit {
  std::string_view name;
  std::string_view unitType;
  int power = 1;  // of a prefix: a square millimetre is a thousandth of a metre, squared
};

constexpr SiUnit kSiUnits[] = {{"AMPERE", "ELECTRICCURRENTUNIT"},
                               {"BECQUEREL", "RADIOACTIVITYUNIT"},
                               {"CANDELA", "LUMINOUSINTENSITYUNIT"},
                               {"COULOMB", "ELECTRICCHARGEUNIT"},
                               {"CUBIC_METRE", "VOLUMEUNIT", 3},
                               {"DEGREE_CELSIUS", "THERMODYNAMICTEMPERATUREUNIT"},
                               {"FARAD", "ELECTRICCAPACITANCEUNIT"},
                               {"GRAM", "MASSUNIT"},
                               {"GRAY", "ABSORBEDDOSEUNIT"},
                               {"HENRY", "INDUCTANCEUNIT"},
                               {"HERTZ", "FREQUENCYUNIT"},
                               {"JOULE", "ENERGYUNIT"},
                               {"KELVIN", "THERMODYNAMICTEMPERATUREUNIT"},
                               {"LUMEN", "LUMINOUSFLUXUNIT"},
                               {"LUX", "ILLUMINANCEUNIT"},
                               {"METRE", "LENGTHUNIT"},
                               {"MOLE", "AMOUNTOFSUBSTANCEUNIT"},
                               {"NEWTON", "FORCEUNIT"},
                               {"OHM", "ELECTRICRESISTANCEUNIT"},
                               {"PASCAL", "PRESSUREUNIT"},
                               {"RADIAN", "PLANEANGLEUNIT"},
                               {"SECOND", "TIMEUNIT"},
                               {"SIEMENS", "ELECTRICCONDUCTANCEUNIT"},
                               {"SIEVERT", "DOSEEQUIVALENTUNIT"},
                               {"SQUARE_METRE", "AREAUNIT", 2},
                               {"STERADIAN", "SOLIDANGLEUNIT"},
                               {"TESLA", "MAGNETICFLUXDENSITYUNIT"},
                               {"VOLT", "ELECTRICVOLTAGEUNIT"},
                               {"WATT", "POWERUNIT"},
                               {"WEBER", "MAGNETICFLUXUNIT"}};

const SiUnit* FindSiUnit(std::string_view name) {
  for (const SiUnit& unit : kSiUnits) {
    if (unit.name == name) return &unit;
  }
  return nullptr;
}

std::optional<UnitSize> SizeOfSiUnit(const SiUnit& facts, const IFC::IfcEntity& unit) {
  if (WordOf(unit, "UnitType") != facts.unitType) return std::nullopt;
  double factor = std::pow(FactorOfPrefix(WordOf(unit, "Prefix")), facts.power);
  if (facts.name == "GRAM") factor *= 1e-3;
  return UnitSize{factor, facts.name == "DEGREE_CELSIUS" ? kZeroCelsius : 0.0};
}

// What an IfcMeasureWithUnit says without its unit.
double ValueOf(const IFC::IfcEntity& measure) {
  const IFC::IfcEntity* const typed = ReferenceOf(measure, "ValueComponent");
  return typed == nullptr ? 0.0 : RealOf(*typed, "value");
}

bool IsNear(double value, double expected) { return std::abs(value - expected) <= kNearFahrenheit; }

bool IsFahrenheit(const IFC::IfcEntity& unit, double offset) {
  return WordOf(unit, "UnitType") == "THERMODYNAMICTEMPERATUREUNIT" &&
         IsNear(std::abs(offset), kZeroFahrenheit);
}

// Looks at each unit once, however many others are made from it.
class SizeReader {
 public:
  std::optional<UnitSize> Of(const IFC::IfcEntity& unit, int depth = 0) {
    if (depth > kMostConversions || FindFacts(unit) == nullptr) return std::nullopt;
    const auto [known, isNew] = known_.try_emplace(&unit);
    if (!isNew) return known->second;
    const std::optional<UnitSize> size = Made(unit, depth);
    return known_[&unit] = size;
  }

 private:
  std::optional<UnitSize> Made(const IFC::IfcEntity& unit, int depth) {
    if (const SiUnit* const facts = FindSiUnit(WordOf(unit, "Name"))) {
      return SizeOfSiUnit(*facts, unit);
    }
    if (const IFC::IfcEntity* const measure = ReferenceOf(unit, "ConversionFactor")) {
      return Converted(unit, *measure, depth);
    }
    if (const EntityList* const elements = ReferencesOf(unit, "Elements")) {
      return Product(*elements, depth);
    }
    return std::nullopt;
  }

  std::optional<UnitSize> Converted(const IFC::IfcEntity& unit, const IFC::IfcEntity& measure,
                                    int depth) {
    const IFC::IfcEntity* const base = ReferenceOf(measure, "UnitComponent");
    if (base == nullptr) return std::nullopt;
    const std::optional<UnitSize> baseSize = Of(*base, depth + 1);
    const double factor = ValueOf(measure);
    if (!baseSize || !std::isfinite(factor) || factor <= 0.0) return std::nullopt;
    const double offset = RealOf(unit, "ConversionOffset");
    if (!std::isfinite(offset)) return std::nullopt;
    if (IsFahrenheit(unit, offset)) {
      return UnitSize{baseSize->factor / kFahrenheitPerKelvin,
                      baseSize->factor * kZeroFahrenheit / kFahrenheitPerKelvin};
    }
    return UnitSize{baseSize->factor * factor, baseSize->factor * offset + baseSize->offset};
  }

  std::optional<UnitSize> Product(const EntityList& elements, int depth) {
    UnitSize product;
    for (const IFC::IfcEntity* const element : elements) {
      const IFC::IfcEntity* const unit =
          element == nullptr ? nullptr : ReferenceOf(*element, "Unit");
      const std::optional<UnitSize> size = unit == nullptr ? std::nullopt : Of(*unit, depth + 1);
      if (!size) return std::nullopt;
      product.factor *= std::pow(size->factor, IntegerOf(*element, "Exponent"));
    }
    return product;
  }

  // Nothing for those that have been begun: they are made from themselves.
  std::unordered_map<const IFC::IfcEntity*, std::optional<UnitSize>> known_;
};

bool Equal(const UnitSize& one, const UnitSize& other) {
  return std::abs(one.factor / other.factor - 1.0) <= kTolerance &&
         std::abs(one.offset - other.offset) <= kTolerance * std::abs(other.offset);
}

bool HaveOneName(const AssignedUnit& one, const AssignedUnit& other) {
  if (one.unit == nullptr || other.unit == nullptr) return false;
  const WideString name = TextOf(*one.unit, "Name");
  return !name.empty() && ToLowerAscii(name) == ToLowerAscii(TextOf(*other.unit, "Name"));
}

// Millimetres are a thousandth of metres, and not what is left of it by powers and quotients.
double WithoutNoise(double factor) {
  const double whole = std::nearbyint(factor);
  if (whole >= 1.0 && std::abs(factor - whole) <= kNoise * whole) return whole;
  const double part = std::nearbyint(1.0 / factor);
  return part >= 1.0 && std::abs(1.0 / factor - part) <= kNoise * part ? 1.0 / part : factor;
}

Conversion ConversionBetween(const AssignedUnit& from, const AssignedUnit& to,
                             UnitClass unitClass) {
  using Kind = Conversion::Kind;
  if (from.unit == nullptr && to.unit == nullptr) return {};
  if (from.unit == nullptr && unitClass == UnitClass::kDerived) return {.kind = Kind::kUnknown};
  if (!from.size || !to.size) {
    const bool areSame = !from.size && !to.size && HaveOneName(from, to);
    return {.kind = areSame ? Kind::kSame : Kind::kImpossible};
  }
  if (Equal(*from.size, *to.size)) return {};
  const double factor = WithoutNoise(from.size->factor / to.size->factor);
  const double offset = (from.size->offset - to.size->offset) / to.size->factor;
  // Units so far apart that their quotient is no number: nothing would be left of any value.
  if (!std::isnormal(factor) || !std::isfinite(offset)) return {.kind = Kind::kImpossible};
  return {.kind = Kind::kConvert, .factor = factor, .offset = offset};
}

}  // namespace

std::optional<UnitSize> SizeOfUnit(const IFC::IfcEntity& unit) {
  const std::optional<UnitSize> size = SizeReader().Of(unit);
  return size && std::isfinite(size->factor) && size->factor > 0.0 ? size : std::nullopt;
}

ModelUnits::ModelUnits(const IFC::IfcEntity* unitAssignment) {
  const EntityList* const units =
      unitAssignment == nullptr ? nullptr : ReferencesOf(*unitAssignment, "Units");
  if (units == nullptr) return;
  for (const IFC::IfcEntity* const unit : *units) {
    if (unit == nullptr || FindFacts(*unit) == nullptr) continue;
    const Measure measure = MeasureOfUnit(WordOf(*unit, "UnitType"));
    if (measure == Measure::kNone) continue;
    units_[static_cast<std::size_t>(measure)] = {unit, SizeOfUnit(*unit)};
  }
}

Conversions ConversionsBetween(const ModelUnits& from, const ModelUnits& to) {
  Conversions conversions;
  for (std::size_t i = 0; i < kMeasureCount; ++i) {
    const Measure measure{static_cast<std::uint8_t>(i)};
    conversions[i] =
        ConversionBetween(from.Of(measure), to.Of(measure), FactsOf(measure).unitClass);
  }
  return conversions;
}

}  // namespace corvel
