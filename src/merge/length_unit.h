// The size of a model's length unit, for what the host gives in metres and in millimetres.
#pragma once

#include "core/entity.h"
#include "core/reporting.h"

namespace corvel {

// Known are the millimetre, the centimetre and the metre, and a unit by conversion that is named
// FOOT and made from one of these. The last unit of the assignment that is known counts; another
// one (an inch, a decimetre) is passed over. Without a known one, or without an assignment (null),
// it is reported that there is none, and the answer is 1.
//
// Of a foot the factor in the file is not read: its size is a constant that depends on what it is
// made from, in the precision of a 32-bit float. Only a foot made from metres comes out as one.
// Uses the visit stamps. `showError` is not null.
double LengthUnitsPerMetre(const IFC::IfcEntity* unitAssignment, ErrorReporter showError);
double MillimetresPerLengthUnit(const IFC::IfcEntity* unitAssignment, ErrorReporter showError);

}  // namespace corvel
