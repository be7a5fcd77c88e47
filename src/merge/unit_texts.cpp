#include "merge/unit_texts.h"

#include <string>

#include "core/entity_cast.h"
#include "schema/interfaces/units.h"

namespace corvel {

WideString WithoutDotsAndCommas(WideView text) {
  WideString word(text);
  std::erase_if(word, [](char16_t unit) { return unit == u'.' || unit == u','; });
  return word;
}

bool ComparePrefixes(WideView a, WideView b) {
  return WithoutDotsAndCommas(a) == WithoutDotsAndCommas(b);
}

WideString UnitTypeText(IFC::IfcEntity* unit) {
  const auto* const named = EntityCast<IFC::VIfcNamedUnit>(unit);
  return named == nullptr ? WideString() : named->getUnitTypeText();
}

}  // namespace corvel
