// A remark on a model that the map places badly or not at all.
#pragma once

#include "core/text.h"

namespace corvel {

struct PlaceWarning {
  WideString path;
  WideString text;  // "it has no map conversion, and a.ifc has one; it is not placed by the map"
};

}  // namespace corvel
