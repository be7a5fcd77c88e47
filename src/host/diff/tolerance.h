// When two numbers are taken for the same.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

#include "host/diff/class_words.h"

namespace corvel::host::diff {

// Lengths by `metres`, axes by kAxis, other numbers by what doubles of 9 digits can tell. Numbers
// with the same word are the same; those with others may be.
struct Tolerance {
  static constexpr double kDefault = 1e-6;
  static constexpr double kAxis = 1e-8;
  static constexpr double kPart = 1e-9;
  static constexpr double kNothing = 1e-12;

  double metres = kDefault;

  // Both in SI units.
  bool Same(double one, double other, Dimension dimension) const {
    if (one == other || (std::isnan(one) && std::isnan(other))) return true;
    const double apart = std::abs(one - other);
    // What is left of a factor between units is no difference, whatever is wanted.
    const double part = dimension == Dimension::kLength ? kNothing : kPart;
    const double least = dimension == Dimension::kLength ? metres : kNothing;
    return apart <= least || apart <= part * std::fmax(std::abs(one), std::abs(other));
  }

  std::uint64_t WordOf(double number, Dimension dimension) const {
    return dimension == Dimension::kLength ? InCells(number, metres) : InDigits(number);
  }

  // Borders of cells lie where no rounded number does.
  static std::uint64_t InCells(double number, double cell) {
    constexpr double kLargest = 4e15;
    const double cells = number / cell;
    if (!(std::abs(cells) < kLargest)) return OfBits(number);
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(std::floor(cells + kBorder)));
  }

 private:
  static constexpr double kBorder = 0.381966;

  static std::uint64_t OfBits(double number) {
    return std::bit_cast<std::uint64_t>(number == 0.0 ? 0.0 : number);
  }
  static std::uint64_t InDigits(double number) {
    constexpr int kDigits = 32;  // binary ones
    constexpr unsigned kAbove = 40;
    if (std::abs(number) < kNothing / 2) return 0;
    if (!std::isfinite(number)) return OfBits(number);
    int exponent = 0;
    const double mantissa = std::frexp(number, &exponent);
    const auto digits =
        static_cast<std::int64_t>(std::floor(std::ldexp(mantissa, kDigits) + kBorder));
    return static_cast<std::uint64_t>(digits) ^
           (static_cast<std::uint64_t>(exponent + 4096) << kAbove);
  }
};

}  // namespace corvel::host::diff
