// Numbers of up to eight digits, made into text in one go.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace corvel {

// The digits of `number`, below 100,000,000, as values 0 to 9: the first of eight in the lowest
// byte, zeros in front included.
inline std::uint64_t EightDigitsOf(std::uint32_t number) {
  // Halves of four digits, then pairs, then single ones, all of them at once.
  const std::uint64_t halves = number / 10000 | std::uint64_t{number % 10000} << 32;
  constexpr std::uint64_t kEachHalf = 0x0000007F0000007F;
  const std::uint64_t hundreds = (halves * 10486 >> 20) & kEachHalf;  // by 100, exact up to 9999
  const std::uint64_t pairs = hundreds + ((halves - hundreds * 100) << 16);
  constexpr std::uint64_t kEachPair = 0x000F000F000F000F;
  const std::uint64_t tens = (pairs * 103 >> 10) & kEachPair;  // by 10, exact up to 99
  return tens + ((pairs - tens * 10) << 8);
}

inline constexpr std::uint64_t kEightZeros = 0x3030303030303030;  // "00000000"

// Writes eight bytes at `to`.
inline void PutEight(std::uint64_t bytes, char* to) {
  static_assert(std::endian::native == std::endian::little, "the first byte is the lowest");
  std::memcpy(to, &bytes, sizeof bytes);
}

// Writes `number`, below 100,000,000, without zeros in front. Gives its end; eight bytes are used.
inline char* PutUpToEightDigits(std::uint32_t number, char* to) {
  const std::uint64_t digits = EightDigitsOf(number);
  // The last digit stays, though it were 0.
  const auto zeros = static_cast<unsigned>(std::countr_zero(digits | std::uint64_t{1} << 56)) / 8;
  PutEight((digits + kEightZeros) >> (8 * zeros), to);
  return to + (8 - zeros);
}

}  // namespace corvel
