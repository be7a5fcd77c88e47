// Reals whose text gives back the same double, bit by bit.
#pragma once

#include "step/numbers/number_text.h"

namespace corvel {

// Both write at `to` (kNumberRoom bytes are there) and give the end of what they wrote. What is
// not a number has no text in a STEP file; it is written as FormatReal writes it. ParseReal gives
// back every other value, the infinities and the sign of a zero included.

// The fewest digits, as "12.5" or as "1.25E-07", whichever is shorter: a real always has its point.
char* FormatExactReal(double value, char* to);
// A whole number of 32-bit size without a point, as "3"; anything else as FormatExactReal.
char* FormatExactCount(double value, char* to);

}  // namespace corvel
