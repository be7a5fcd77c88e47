// What IFC2X3 says about maps.
#pragma once

#include "core/text.h"

namespace corvel {

// The sets that say in IFC2X3 what map conversions and reference systems say from IFC4 on.
inline bool IsNameOfMapProperties(const WideString& propertySet) {
  const WideString name = ToLowerAscii(propertySet);
  return name == u"epset_mapconversion" || name == u"epset_projectedcrs";
}

}  // namespace corvel
