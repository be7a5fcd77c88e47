// Which unit a number is in, by the type that the schemas declare it of.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "step/class_facts.h"

namespace corvel {

// A row of AllMeasures.
enum class Measure : std::uint8_t {
  kLength = 0,
  kPlaneAngle = 1,
  kTemperature = 2,
  kNone = 0xFF,  // a number without a unit, or in one that no model assigns
};

enum class UnitClass : std::uint8_t {
  kNamed,   // of IfcUnitEnum: where a model assigns none it is that of the SI
  kDerived  // of IfcDerivedUnitEnum: where a model assigns none nobody knows it
};

struct MeasureFacts {
  std::string_view type;  // "IfcLengthMeasure": it and all types that are made of it
  std::string_view unit;  // "LENGTHUNIT"
  UnitClass unitClass;
};

// Of all releases. Each has a unit of its own.
std::span<const MeasureFacts> AllMeasures();
inline constexpr std::size_t kMeasureCount = 76;
inline const MeasureFacts& FactsOf(Measure measure) {
  return AllMeasures()[static_cast<std::size_t>(measure)];
}

// Numbers of these types stay as they are whatever the units of a model.
struct UnmeasuredType {
  std::string_view type;  // "IfcRatioMeasure"
  std::string_view why;
};
std::span<const UnmeasuredType> AllUnmeasuredTypes();

// Compares names: remember it by address.
Measure MeasureOf(const TypeFacts& type);
// By the word of IfcUnitEnum or IfcDerivedUnitEnum, as any release spells it.
Measure MeasureOfUnit(std::string_view unitType);

}  // namespace corvel
