#include "step/numbers/real_text.h"

#include <array>
#include <bit>

#include "step/numbers/exact_tens.h"

namespace corvel {

#ifdef __SIZEOF_INT128__

namespace {

__extension__ using Wide = unsigned __int128;

constexpr int kMantissaBits = 52;
constexpr std::uint64_t kHiddenBit = std::uint64_t{1} << kMantissaBits;
constexpr int kExponentBias = 1023;

constexpr int kLargestWholeTen = 19;  // in 64 bits
constexpr auto kWholeTens = [] {
  std::array<std::uint64_t, kLargestWholeTen + 1> tens{1};
  for (std::size_t i = 1; i < tens.size(); ++i) tens[i] = tens[i - 1] * 10;
  return tens;
}();
constexpr std::uint64_t kTooMany = kWholeTens[kRealDigits];

// Up to kLargestTen, with which a mantissa of 53 bits makes 127.
Wide TimesWholeTen(std::uint64_t number, int tens) {
  if (tens > kLargestWholeTen) {
    return TimesWholeTen(number, kLargestWholeTen) *
           kWholeTens[static_cast<std::size_t>(tens - kLargestWholeTen)];
  }
  return Wide{number} * kWholeTens[static_cast<std::size_t>(tens)];
}

// floor(log10(2 to the power of `power`)) for the powers of doubles.
int TensOfTwos(int power) { return (power * 78913) >> 18; }

// number / 2 to the power of `bits`, rounded. `bits` is above 0.
std::uint64_t ShiftRounded(Wide number, int bits) {
  const auto whole = static_cast<std::uint64_t>(number >> bits);
  const Wide rest = number - (Wide{whole} << bits);
  const Wide half = Wide{1} << (bits - 1);
  return whole + (rest > half || (rest == half && whole % 2 != 0) ? 1 : 0);
}

}  // namespace

// The value is a whole number by a power of two, and so is the value times a power of ten: nothing
// is lost before it is rounded.
bool RoundToDigits(double value, RealDigits& rounded) {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  const std::uint64_t mantissa = (bits & (kHiddenBit - 1)) | kHiddenBit;
  const int twos = static_cast<int>(bits >> kMantissaBits) - kExponentBias;
  int power = TensOfTwos(twos);  // or one more
  if (power + 1 >= 0 && power + 1 <= kLargestTen && value >= kTens[power + 1]) ++power;
  for (;; ++power) {
    const int tens = kRealDigits - 1 - power;
    if (tens < 0 || tens > kLargestTen) return false;
    rounded.digits = ShiftRounded(TimesWholeTen(mantissa, tens), kMantissaBits - twos);
    rounded.power = power;
    // Digits that are one too many are rounded anew, with one less.
    if (rounded.digits < kTooMany) return true;
  }
}

#else

bool RoundToDigits(double, RealDigits&) { return false; }

#endif

}  // namespace corvel
