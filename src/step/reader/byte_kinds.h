// The kinds of bytes that readers tell apart.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "core/text.h"

namespace corvel {

inline constexpr std::uint8_t kLetterByte = 1;
inline constexpr std::uint8_t kDigitByte = 2;
inline constexpr std::uint8_t kBlankByte = 4;  // white space, and "_", which vanishes like a blank
inline constexpr std::uint8_t kCommaByte = 8;
inline constexpr std::uint8_t kNumberByte = 16;  // what numbers with a point are made of

inline constexpr std::uint8_t kValueByte = 32;  // the first of a value that is there

inline constexpr std::string_view kCommentStart = "/*";
inline constexpr char kLastByte = '\xFF';  // outside of strings and comments it ends the input

inline constexpr std::array<std::uint8_t, 256> kByteKinds = [] {
  std::array<std::uint8_t, 256> kinds{};
  for (unsigned c = 'A'; c <= 'Z'; ++c) kinds[c] = kinds[c | 0x20] = kLetterByte;
  for (unsigned c = '0'; c <= '9'; ++c) kinds[c] = kDigitByte | kNumberByte;
  for (const char c : {'.', '-', '+'}) kinds[static_cast<unsigned char>(c)] = kNumberByte;
  kinds['E'] = kinds['e'] = kLetterByte | kNumberByte;
  for (unsigned c = 9; c <= 13; ++c) kinds[c] = kBlankByte;
  kinds[' '] = kinds['_'] = kBlankByte;
  kinds[','] = kCommaByte;
  for (std::uint8_t& kind : kinds) {
    if ((kind & (kLetterByte | kDigitByte)) != 0) kind |= kValueByte;
  }
  for (const char c : {'#', '\'', '(', '-', '.'})
    kinds[static_cast<unsigned char>(c)] |= kValueByte;
  return kinds;
}();

constexpr bool IsOfKind(char byte, unsigned kinds) {
  return (kByteKinds[static_cast<unsigned char>(byte)] & kinds) != 0;
}
constexpr bool IsLetter(char byte) { return IsOfKind(byte, kLetterByte); }
constexpr bool IsBlank(char byte) { return IsOfKind(byte, kBlankByte); }

}  // namespace corvel
