#include "merge/federation/units/value_converter.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string_view>

#include "merge/federation/attribute_values.h"
#include "merge/federation/units/number_texts.h"

namespace corvel {

bool ConvertedValues::IsComplete() const {
  return std::all_of(impossible.begin(), impossible.end(),
                     [](std::size_t count) { return count == 0; });
}

// Typed values are converted where they stand, in a record of their own too.
void ValueConverter::Convert(IFC::IfcEntity& entity) {
  if (!entity.isComplexType()) return;
  const ClassFacts* const facts = FindFacts(entity);
  if (facts == nullptr) return;
  space_ = spaces_.AreNone() ? ValueSpace{} : spaces_.Of(entity);
  if (space_.isUntouched) return;
  if (space_.IsStretched()) ConvertStretched(entity);
  for (const PlannedValue& planned : plans_.Of(*facts)) ConvertPlanned(entity, planned);
}

void ValueConverter::ConvertPlanned(IFC::IfcEntity& entity, const PlannedValue& planned) {
  const Attribute attribute(entity, *planned.facts);
  const auto toPower = [&](int power) {
    attribute.ForEach<double>([&](double& value) { Multiply(value, Measure::kLength, power); });
  };
  const auto isThere = [&] {
    return planned.other != nullptr && Attribute(entity, *planned.other).HasValue();
  };
  const auto otherObject = [&]() -> const IFC::IfcEntity* {
    auto* const* const other = planned.other == nullptr
                                   ? nullptr
                                   : Attribute(entity, *planned.other).As<IFC::IfcEntity*>();
    return other == nullptr ? nullptr : *other;
  };
  switch (planned.role) {
    case ValueRole::kByType: return ConvertByType(attribute, planned.measure);
    case ValueRole::kDifference: return ConvertByType(attribute, planned.measure, false);
    case ValueRole::kBesideUnit:
      if (isThere() || maps_.IsCoordinate(entity)) return;
      if (maps_.IsScale(entity)) return ConvertScaleProperty(attribute);
      return ConvertByType(attribute, planned.measure);
    case ValueRole::kBesideUnitOfEnumeration: {
      const IFC::IfcEntity* const enumeration = otherObject();
      if (enumeration != nullptr && ReferenceOf(*enumeration, "Unit") != nullptr) return;
      return ConvertByType(attribute, planned.measure);
    }
    case ValueRole::kInTable: return ConvertCells(entity, attribute);
    case ValueRole::kLength: return toPower(1);
    case ValueRole::kPerLength: return toPower(-1);
    case ValueRole::kPerArea: return toPower(-2);
    case ValueRole::kAttenuation:
    case ValueRole::kCoefficients: {
      int power = planned.role == ValueRole::kAttenuation ? 0 : 1;
      attribute.ForEach<double>([&](double& value) { Multiply(value, Measure::kLength, power--); });
      return;
    }
    case ValueRole::kCurveParameter: return ConvertParameter(attribute, otherObject());
    case ValueRole::kSurfaceParameterU:
      return ConvertNumbers(attribute, curves_.OfSurface(otherObject()).first);
    case ValueRole::kSurfaceParameterV:
      return ConvertNumbers(attribute, curves_.OfSurface(otherObject()).second);
    case ValueRole::kMapCoordinate:
      if (maps_.IsInUnitOfMap(entity, attribute.Name())) return;
      return ConvertByType(attribute, planned.measure);
    case ValueRole::kMapScale: return ConvertScale(entity, attribute);
    case ValueRole::kStays:
    case ValueRole::kInTimeSeries:
    case ValueRole::kParameterSpace:
    case ValueRole::kTextureSpace:
    case ValueRole::kInLibrary: return;
  }
}

void ValueConverter::ConvertByType(const Attribute& attribute, Measure measure, bool withOffset) {
  if (attribute.Facts().kind == ValueKind::kReal) {
    ConvertNumbers(attribute, measure, withOffset);
    return;
  }
  attribute.ForEach<IFC::IfcEntity*>([&](IFC::IfcEntity* value) {
    if (value != nullptr && !value->isComplexType()) ConvertTyped(*value, withOffset);
  });
}

void ValueConverter::ConvertNumbers(const Attribute& attribute, Measure measure, bool withOffset) {
  if (measure == Measure::kNone) return;
  attribute.ForEach<double>([&](double& value) { Convert(value, measure, withOffset); });
}

void ValueConverter::ConvertTyped(IFC::IfcEntity& value, bool withOffset) {
  if (FindFacts(value) == nullptr || !IsFirstTurnOf(value)) return;
  for (const Attribute attribute : AttributesOf(value)) {
    const TypeFacts* const type = attribute.Facts().type;
    const auto [place, isNew] = measures_.try_emplace(type, Measure::kNone);
    if (isNew) place->second = MeasureOf(*type);
    if (attribute.Facts().kind == ValueKind::kReal) {
      ConvertNumbers(attribute, place->second, withOffset);
    }
    attribute.ForEach<ModelText>([this](ModelText text) {
      if (HoldsNumber(text)) ++counts_.texts;
    });
  }
}

// A value in a record of its own may be referred to twice.
bool ValueConverter::IsFirstTurnOf(const IFC::IfcEntity& value) {
  return value.inlineValue || valuesInRecords_.insert(&value).second;
}

// Beside a parameter there may be a point, or a length in its place.
void ValueConverter::ConvertParameter(const Attribute& attribute, const IFC::IfcEntity* curve) {
  const bool isComposite = curves_.IsComposite(curve);
  const Measure measure = isComposite ? Measure::kNone : curves_.Of(curve);
  const auto convert = [&](double& parameter) {
    if (isComposite) {
      parameter = curves_.OnComposite(curve, parameter);
    } else if (measure != Measure::kNone) {
      Convert(parameter, measure);
    }
  };
  attribute.ForEach<double>(convert);
  attribute.ForEach<IFC::IfcEntity*>([&](IFC::IfcEntity* value) {
    if (value == nullptr || value->isComplexType() || FindFacts(*value) == nullptr) return;
    if (std::string_view(FindFacts(*value)->name) != "IfcParameterValue") {
      ConvertTyped(*value, true);
    } else if (IsFirstTurnOf(*value)) {
      for (const Attribute number : AttributesOf(*value)) number.ForEach<double>(convert);
    }
  });
}

void ValueConverter::ConvertCells(const IFC::IfcEntity& row, const Attribute& attribute) {
  const std::vector<bool>* const haveUnits = spaces_.ColumnsOf(row);
  std::size_t column = 0;
  attribute.ForEach<IFC::IfcEntity*>([&](IFC::IfcEntity* value) {
    const std::size_t at = column++;
    if (value == nullptr || value->isComplexType()) return;
    const bool hasUnit = haveUnits != nullptr && at < haveUnits->size() && (*haveUnits)[at];
    if (!hasUnit) ConvertTyped(*value, true);
  });
}

void ValueConverter::ConvertScale(const IFC::IfcEntity& operation, const Attribute& attribute) {
  if (curves_.FactorOf(Measure::kLength) == 1.0) return;
  if (!maps_.IsInUnitOfMap(operation, attribute.Name())) return;
  const double* const scale = attribute.As<double>();
  attribute.Set(scale == nullptr ? maps_.ScaleFactor() : *scale * maps_.ScaleFactor());
}

void ValueConverter::ConvertScaleProperty(const Attribute& attribute) {
  attribute.ForEach<IFC::IfcEntity*>([&](IFC::IfcEntity* value) {
    if (value == nullptr || FindFacts(*value) == nullptr || !IsFirstTurnOf(*value)) return;
    for (const Attribute number : AttributesOf(*value)) {
      number.ForEach<double>([&](double& scale) { scale *= maps_.ScaleFactor(); });
    }
  });
}

// What is drawn in two coordinates of two measures. The rest of such an object goes by its plan.
void ValueConverter::ConvertStretched(IFC::IfcEntity& entity) {
  const double first = curves_.FactorOf(space_.first);
  const double second = curves_.FactorOf(space_.second);
  for (const std::string_view name : {"Coordinates", "CoordList", "DirectionRatios"}) {
    const auto attribute = AttributesOf(entity).Find(name);
    if (!attribute) continue;
    std::size_t index = 0;
    attribute->ForEach<double>([&](double& value) { value *= index++ % 2 == 0 ? first : second; });
  }
  if (const auto magnitude = AttributesOf(entity).Find("Magnitude")) {
    magnitude->ForEach<double>([&](double& value) { value *= spaces_.StretchOf(entity); });
  }
}

// Lengths of an object in a space of its own are what coordinates are there.
Measure ValueConverter::InSpace(Measure measure) const {
  if (measure != Measure::kLength) return measure;
  return space_.IsStretched() ? Measure::kNone : space_.first;
}

void ValueConverter::Convert(double& value, Measure measure, bool withOffset) {
  const Measure inSpace = InSpace(measure);
  if (inSpace == Measure::kNone) return;
  const auto index = static_cast<std::size_t>(inSpace);
  const Conversion& conversion = conversions_[index];
  switch (conversion.kind) {
    case Conversion::Kind::kSame: return;
    case Conversion::Kind::kConvert:
      value *= conversion.factor;
      if (withOffset && conversion.offset != 0.0) value += conversion.offset;
      ++counts_.converted[index];
      return;
    case Conversion::Kind::kUnknown: ++counts_.unknown[index]; return;
    case Conversion::Kind::kImpossible: ++counts_.impossible[index]; return;
  }
}

void ValueConverter::Multiply(double& value, Measure measure, int power) {
  if (power == 0) return;
  const auto index = static_cast<std::size_t>(measure);
  if (conversions_[index].kind == Conversion::Kind::kImpossible) ++counts_.impossible[index];
  if (conversions_[index].kind != Conversion::Kind::kConvert) return;
  value *= std::pow(conversions_[index].factor, power);
  ++counts_.converted[index];
}

}  // namespace corvel
