// How large the units of a model are.
#pragma once

#include <array>
#include <optional>
#include <vector>

#include "core/entity.h"
#include "merge/federation/units/measures.h"

namespace corvel {

// A value in the unit is `factor` times it plus `offset` in the coherent unit of the SI: kilograms,
// radians, kelvin.
struct UnitSize {
  double factor = 1.0;
  double offset = 0.0;
};

// Of an SI unit with any prefix, of one made from such by conversion, whether with an offset or
// not, and of one derived from such as a product of powers, in which offsets count for nothing.
// Nothing for any other: one that depends on its context, money, one that is made from itself, one
// whose factor is no positive number, one whose name is that of another kind of unit.
//
// A unit with an offset is made by "factor, then offset" as the schema tells it. Degrees Fahrenheit
// are often written the other way round (times 1.8, less 459.67) or with the offset counted in
// their own degrees; such are told by these numbers and taken for what they are.
std::optional<UnitSize> SizeOfUnit(const IFC::IfcEntity& unit);

struct AssignedUnit {
  const IFC::IfcEntity* unit = nullptr;  // null: none is assigned
  // Nothing when it cannot be told. Where none is assigned that of the SI.
  std::optional<UnitSize> size = UnitSize{};
};

// What a model assigns. Of two units of one type the last one counts.
class ModelUnits {
 public:
  // Null: nothing is assigned.
  explicit ModelUnits(const IFC::IfcEntity* unitAssignment);

  const AssignedUnit& Of(Measure measure) const {
    return units_[static_cast<std::size_t>(measure)];
  }

 private:
  std::array<AssignedUnit, kMeasureCount> units_;
};

// From a number in the units of one model to that in the units of another.
struct Conversion {
  enum class Kind : std::uint8_t {
    kSame,        // the units are equal: the number is not touched
    kConvert,     // times `factor`, plus `offset`
    kUnknown,     // the model assigns no unit, and there is none to be taken for it
    kImpossible,  // one of the two units cannot be told, or nothing of a number would be left
  };
  Kind kind = Kind::kSame;
  double factor = 1.0;
  double offset = 0.0;

  double Of(double value) const { return value * factor + offset; }
};

using Conversions = std::array<Conversion, kMeasureCount>;

// By Measure. Units whose factors differ by less than a billionth are equal, and so are two of
// which no size can be told but that have one name.
Conversions ConversionsBetween(const ModelUnits& from, const ModelUnits& to);

}  // namespace corvel
