#include "host/facts/unit_facts.h"

#include <string_view>

#include "merge/federation/attribute_values.h"

namespace corvel::host {

namespace {

// "METRE", "METRE^2".
WideString PowerText(const IFC::IfcEntity& element) {
  const IFC::IfcEntity* const unit = ReferenceOf(element, "Unit");
  const std::int32_t exponent = IntegerOf(element, "Exponent");
  const WideString name = unit == nullptr ? WideString(u"?") : UnitFactsOf(*unit).name;
  return exponent == 1 ? name : name + u"^" + Widen(std::to_string(exponent));
}

WideString ProductOfElements(const EntityList& elements) {
  WideString text;
  for (const IFC::IfcEntity* const element : elements) {
    if (!text.empty()) text += u" ";
    text += PowerText(*element);
  }
  return text;
}

// The prefix is that of the metre, of which the power is taken: SQUARE_MILLIMETRE.
std::string SiUnitName(std::string_view prefix, std::string_view name) {
  std::size_t metre = 0;
  for (const std::string_view power : {"SQUARE_", "CUBIC_"}) {
    if (name.starts_with(power)) metre = power.size();
  }
  return std::string(name.substr(0, metre)).append(prefix).append(name.substr(metre));
}

WideString NameOfUnit(const IFC::IfcEntity& unit) {
  const std::string_view word = WordOf(unit, "Name");
  if (!word.empty()) return Widen(SiUnitName(WordOf(unit, "Prefix"), word));
  if (const EntityList* const elements = ReferencesOf(unit, "Elements")) {
    return ProductOfElements(*elements);
  }
  return TextOf(unit, "Name");
}

}  // namespace

// A currency is a word in older releases and a text in newer ones.
UnitFacts UnitFactsOf(const IFC::IfcEntity& unit) {
  const std::string_view currency = WordOf(unit, "Currency");
  const WideString text = currency.empty() ? TextOf(unit, "Currency") : Widen(currency);
  if (!text.empty()) return {"MONETARYUNIT", text};
  return {std::string(WordOf(unit, "UnitType")), NameOfUnit(unit)};
}

std::vector<UnitFacts> UnitsOf(const IfcDocument& document) {
  std::vector<UnitFacts> facts;
  const IFC::IfcEntity* const assignment = document.getIfcUnitAssignment();
  const EntityList* const units =
      assignment == nullptr ? nullptr : ReferencesOf(*assignment, "Units");
  if (units == nullptr) return facts;
  for (const IFC::IfcEntity* const unit : *units) facts.push_back(UnitFactsOf(*unit));
  return facts;
}

}  // namespace corvel::host
