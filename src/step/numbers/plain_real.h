// Numbers as nearly all files have them.
#pragma once

#include <cstddef>

namespace corvel {

// What TakePlainReal reads from the place that it is given, whatever it finds there.
inline constexpr std::ptrdiff_t kPlainRealRoom = 40;

// A number with a point and in front of "," or ")", such as 12.5 or -1.E-07, whose digits and power
// of ten doubles hold exactly: the value is that of ParseReal. Gives its end, or null for any other
// text.
const char* TakePlainReal(const char* at, double& value);

}  // namespace corvel
