#include "host/diff/property_text.h"

#include "host/diff/value_digests.h"
#include "host/diff/value_text.h"

namespace corvel::host::diff {

bool HoldsProperties(std::string_view attribute) {
  return attribute == "HasProperties" || attribute == "Quantities" || attribute == "Properties";
}

bool IsMainValue(std::string_view attribute) {
  return attribute == "NominalValue" || attribute == "LengthValue" || attribute == "AreaValue" ||
         attribute == "VolumeValue" || attribute == "CountValue" || attribute == "WeightValue" ||
         attribute == "TimeValue" || attribute == "NumberValue" ||
         attribute == "EnumerationValues" || attribute == "ListValues";
}

std::vector<const IFC::IfcEntity*> PropertiesIn(const IFC::IfcEntity* set) {
  std::vector<const IFC::IfcEntity*> properties;
  if (set == nullptr) return properties;
  for (const ConstAttribute attribute : AttributesOf(*set)) {
    if (!HoldsProperties(attribute.Name())) continue;
    attribute.ForEach<IFC::IfcEntity*>([&](const IFC::IfcEntity* property) {
      if (property != nullptr) properties.push_back(property);
    });
  }
  return properties;
}

std::string TextOfProperty(const ComparedModel& model, const IFC::IfcEntity& property) {
  const ClassWord* const words = model.Words().Of(property);
  if (words != nullptr) {
    const ValueText text(model, TellsUnit(property, *words));
    bool mayHaveValue = false;
    for (const AttributeWord& word : words->attributes) {
      const ConstAttribute held(property, *word.facts);
      if (!IsMainValue(word.facts->name)) continue;
      if (held.HasValue()) return text.Of(held, word);
      mayHaveValue = true;
    }
    if (mayHaveValue) return "(no value)";
  }
  return ValueText(model, false).Of(&property);
}

}  // namespace corvel::host::diff
