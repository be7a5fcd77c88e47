// What IFC2X3 says about maps.
#pragma once

#include "core/model_text.h"
#include "core/text.h"

namespace corvel {

// The set that says in IFC2X3 what a map conversion says from IFC4 on.
inline bool IsNameOfConversionProperties(const WideString& propertySet) {
  return ToLowerAscii(propertySet) == u"epset_mapconversion";
}

// That set, and the one that says what a reference system says.
inline bool IsNameOfMapProperties(const WideString& propertySet) {
  return IsNameOfConversionProperties(propertySet) ||
         ToLowerAscii(propertySet) == u"epset_projectedcrs";
}

// The same of a text of a model; nearly all cost a look.
inline bool IsNameOfMapProperties(ModelText propertySet) {
  if (propertySet.IsNull()) return false;
  const bool isOther = propertySet.IsPlain() && !propertySet.Plain().starts_with('e') &&
                       !propertySet.Plain().starts_with('E');
  return !isOther && IsNameOfMapProperties(propertySet.ToWide());
}

}  // namespace corvel
