// The numbers of single objects in other units.
#pragma once

#include <array>
#include <cstddef>
#include <unordered_map>
#include <unordered_set>

#include "core/entity.h"
#include "merge/federation/units/curve_parameters.h"
#include "merge/federation/units/map_units.h"
#include "merge/federation/units/unit_sizes.h"
#include "merge/federation/units/value_roles.h"
#include "merge/federation/units/value_spaces.h"
#include "schema/attributes.h"

namespace corvel {

// What a step over a model has met, number by number.
struct ConvertedValues {
  using Counts = std::array<std::size_t, kMeasureCount>;
  Counts converted{};
  Counts unknown{};       // have no unit: nobody knows by what to convert them
  Counts impossible{};    // have a unit that cannot be converted
  std::size_t texts = 0;  // hold a number, and stay

  bool IsComplete() const;
};

// Each object is to be given once. What is seen of a model as a whole is borrowed.
class ValueConverter {
 public:
  // `curves`, `maps` and `spaces` know the model as it was.
  ValueConverter(const Conversions& conversions, const CurveParameters& curves,
                 const MapUnits& maps, const ValueSpaces& spaces, ConvertedValues& counts)
      : conversions_(conversions), curves_(curves), maps_(maps), spaces_(spaces), counts_(counts) {}

  // The numbers of the object's record, those of typed values in it included.
  void Convert(IFC::IfcEntity& entity);

 private:
  void ConvertPlanned(IFC::IfcEntity& entity, const PlannedValue& planned);
  void ConvertByType(const Attribute& attribute, Measure measure, bool withOffset = true);
  void ConvertNumbers(const Attribute& attribute, Measure measure, bool withOffset = true);
  void ConvertTyped(IFC::IfcEntity& value, bool withOffset);
  void ConvertParameter(const Attribute& attribute, const IFC::IfcEntity* curve);
  void ConvertScale(const IFC::IfcEntity& operation, const Attribute& attribute);
  void ConvertScaleProperty(const Attribute& attribute);
  void ConvertCells(const IFC::IfcEntity& row, const Attribute& attribute);
  void ConvertStretched(IFC::IfcEntity& entity);
  void Convert(double& value, Measure measure, bool withOffset = true);
  void Multiply(double& value, Measure measure, int power);
  Measure InSpace(Measure measure) const;
  bool IsFirstTurnOf(const IFC::IfcEntity& value);

  const Conversions& conversions_;
  const CurveParameters& curves_;
  const MapUnits& maps_;
  const ValueSpaces& spaces_;
  ConvertedValues& counts_;
  ValuePlans plans_;
  ValueSpace space_;  // of the object whose turn it is
  std::unordered_map<const TypeFacts*, Measure> measures_;
  std::unordered_set<const IFC::IfcEntity*> valuesInRecords_;
};

}  // namespace corvel
