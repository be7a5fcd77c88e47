// Bodies of the units and of the unit assignment.
#pragma once

#include <cstdint>
#include <optional>

#include "schema/interfaces/implement_support.h"
#include "schema/interfaces/units.h"

namespace IFC::implement {

template <class SIUnit>
corvel::WideString PrefixText(const SIUnit& unit, const corvel::EnumTable& prefixes) {
  return unit.PrefixPresent ? EnumText(prefixes, unit.Prefix) : corvel::WideString();
}

template <class SIUnit>
corvel::WideString PrefixOrName(const SIUnit& unit, const corvel::EnumTable& prefixes,
                                const corvel::EnumTable& names) {
  return unit.PrefixPresent ? EnumText(prefixes, unit.Prefix) : EnumText(names, unit.Name);
}

template <class SIUnit>
void SetPrefix(SIUnit& unit, std::optional<std::int32_t> prefix) {
  unit.PrefixPresent = prefix.has_value();
  if (prefix) unit.Prefix = *prefix;
}

template <class Real, class MeasureWithUnit, class ConversionBasedUnit>
IfcEntity* SetConversion(ConversionBasedUnit& conversion, corvel::ModelText name, double factor,
                         VIfcNamedUnit* unit, corvel::MemoryPool& pool) {
  auto* const measure = pool.New<MeasureWithUnit>();
  measure->ValueComponent = NewInlineValue<Real>(factor, pool);
  measure->UnitComponent = Admitted<IFC::IfcUnit>(unit);
  conversion.Name = name;
  conversion.ConversionFactor = measure;
  return measure;
}

template <class Element, class NamedUnit, class DerivedUnit>
IfcEntity* AddElement(DerivedUnit& derived, IfcEntity* unit, std::int32_t exponent,
                      corvel::MemoryPool& pool) {
  auto* const element = pool.New<Element>();
  element->Unit = Admitted<NamedUnit>(unit);
  element->Exponent = exponent;
  derived.Elements.Append(element, pool);
  return element;
}

}  // namespace IFC::implement
