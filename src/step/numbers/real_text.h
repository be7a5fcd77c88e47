// The digits of a double.
#pragma once

#include <cstdint>

namespace corvel {

inline constexpr int kRealDigits = 15;  // significant ones

// `digits`, which has kRealDigits of them, times 10 to the power of `power` - kRealDigits + 1.
struct RealDigits {
  std::uint64_t digits = 0;
  int power = 0;  // of ten, of the first digit
};

// `value`, above 0, rounded to the nearest number of so many digits, and halfway to the even one,
// as std::to_chars does it. False for a value that would take more than 128 bits: one that is not
// between 1E-8 and 1E15; and for all values where the compiler has no such numbers.
bool RoundToDigits(double value, RealDigits& rounded);

}  // namespace corvel
