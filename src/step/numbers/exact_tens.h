// Decimal numbers that need one rounding to become doubles.
#pragma once

#include <cstdint>

namespace corvel {

// Powers of ten that a double holds exactly.
inline constexpr double kTens[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                   1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                   1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
inline constexpr int kLargestTen = 22;
inline constexpr std::uint64_t kLargestWhole = std::uint64_t{1} << 53;

// `digits` times 10 to the power of `power`, rounded to the nearest: both are exact, so that the
// one operation rounds as it would for whole numbers. `digits` is at most kLargestWhole, `power` at
// most kLargestTen either way.
inline double TimesTen(std::uint64_t digits, int power) {
  const auto whole = static_cast<double>(digits);
  return power < 0 ? whole / kTens[-power] : whole * kTens[power];
}

}  // namespace corvel
