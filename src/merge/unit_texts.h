// The words of units, as files write them and as users see them.
#pragma once

#include "core/entity.h"
#include "core/text.h"

namespace corvel {

// The text of a file without its dots and commas, as users see it: "MILLI" for ".MILLI.,".
WideString WithoutDotsAndCommas(WideView text);
// True when both are the same without them; case counts.
bool ComparePrefixes(WideView a, WideView b);

// ".LENGTHUNIT.,"; empty for what is no named unit, null included.
WideString UnitTypeText(IFC::IfcEntity* unit);

}  // namespace corvel
