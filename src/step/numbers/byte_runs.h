// Runs of digits and of letters, told eight bytes at a time.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace corvel {

// What these functions read from the place that they are given, whatever they find there.
inline constexpr std::ptrdiff_t kRunRoom = 8;

namespace bytes {

static_assert(std::endian::native == std::endian::little, "the first byte is the lowest");

// The same byte in all eight places.
constexpr std::uint64_t All(unsigned byte) { return 0x0101010101010101u * byte; }

inline std::uint64_t EightAt(const char* at) {
  std::uint64_t word = 0;
  std::memcpy(&word, at, sizeof word);
  return word;
}

// Of a word with the highest bit set in some bytes: how many bytes stand before the first of them.
constexpr unsigned BytesBefore(std::uint64_t flags) {
  return static_cast<unsigned>(std::countr_zero(flags)) / 8;
}

// The highest bit of each byte that is in [first, last]. No byte is above 127.
constexpr std::uint64_t InRange(std::uint64_t word, char first, char last) {
  return (word + All(128u - static_cast<unsigned>(first))) &
         ~(word + All(127u - static_cast<unsigned>(last)));
}

}  // namespace bytes

// The digits at the front of eight bytes.
struct DigitRun {
  std::uint32_t value = 0;
  unsigned count = 0;  // 8: more may follow
};

inline DigitRun DigitsAt(const char* at) {
  using bytes::All;
  // Digits become their values, and nothing else becomes 0 to 9. What a byte carries into the next
  // one matters no more: it is behind the first that is no digit.
  const std::uint64_t word = bytes::EightAt(at) ^ All('0');
  const std::uint64_t others = ((word + All(0x76)) | word) & All(0x80);
  const unsigned count = bytes::BytesBefore(others);
  if (count == 0) return {};
  // Moved to the end, with zeros in front; then two, four and eight digits become one number.
  std::uint64_t digits = word << (64 - 8 * count);
  digits = digits * 10 + (digits >> 8);
  constexpr std::uint64_t kPairs = 0x000000FF000000FF;
  constexpr std::uint64_t kHundredAndMillion = 100 + (std::uint64_t{1000000} << 32);
  constexpr std::uint64_t kOneAndTenThousand = 1 + (std::uint64_t{10000} << 32);
  digits =
      ((digits & kPairs) * kHundredAndMillion + ((digits >> 16) & kPairs) * kOneAndTenThousand) >>
      32;
  return {static_cast<std::uint32_t>(digits), count};
}

// How many of the eight bytes at `at` stand before the first `sign`.
inline unsigned BytesBefore(char sign, const char* at) {
  const std::uint64_t word = bytes::EightAt(at) ^ bytes::All(static_cast<unsigned char>(sign));
  return bytes::BytesBefore((word - bytes::All(1)) & ~word & bytes::All(0x80));
}

// How many of the eight bytes at `at` are letters and digits, up to the first that is not.
inline unsigned LettersAndDigitsAt(const char* at) {
  const std::uint64_t word = bytes::EightAt(at);
  const std::uint64_t low = word & ~bytes::All(0x80);
  const std::uint64_t found =
      bytes::InRange(low | bytes::All(0x20), 'a', 'z') | bytes::InRange(low, '0', '9');
  return bytes::BytesBefore((~found | word) & bytes::All(0x80));
}

}  // namespace corvel
