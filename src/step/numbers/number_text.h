// Numbers as STEP files write them, without any use of the C locale.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace corvel {

// The longest prefix that is a decimal number, as the C library's atof takes it; 0 if there is
// none. Out of range gives an infinity or 0. Rounds to the nearest double.
double ParseReal(std::string_view text);

// An optional "-" and digits, cut to 32 bits. No digits give 0.
std::int32_t ParseInteger(std::string_view text);

// Room that any formatted number fits in.
inline constexpr std::size_t kNumberRoom = 40;

// Each writes at `to` (kNumberRoom bytes are there) and gives the end of what it wrote.
char* FormatInteger(std::int32_t value, char* to);
char* FormatUnsigned(std::uint32_t value, char* to);
// A whole number of 32-bit size as "3.", anything else as "2.5E-05": 14 digits after the point,
// zeros at the end of the mantissa dropped. 15 significant digits survive.
char* FormatReal(double value, char* to);
// Six significant digits and no forced point: 3, 1e+06, 0.5.
char* FormatCount(double value, char* to);

}  // namespace corvel
