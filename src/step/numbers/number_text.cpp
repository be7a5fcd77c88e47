#include "step/numbers/number_text.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>

#include "core/text.h"
#include "step/numbers/eight_digits.h"
#include "step/numbers/exact_tens.h"
#include "step/numbers/real_text.h"

namespace corvel {

namespace {

constexpr std::uint32_t kMostInEight = 99'999'999;  // digits

// The digits of a number, its point left out.
struct Decimal {
  std::uint64_t digits = 0;
  int power = 0;  // of ten
  const char* end = nullptr;
};

// No more digits than 64 bits hold.
Decimal ReadDecimal(const char* at, const char* end) {
  constexpr std::ptrdiff_t kMostDigits = 19;
  Decimal decimal;
  if (end - at > kMostDigits) end = at + kMostDigits;
  for (; at != end && IsDigit(*at); ++at) {
    decimal.digits = decimal.digits * 10 + static_cast<unsigned>(*at - '0');
  }
  if (at != end && *at == '.') {
    const char* const point = at;
    for (++at; at != end && IsDigit(*at); ++at) {
      decimal.digits = decimal.digits * 10 + static_cast<unsigned>(*at - '0');
    }
    decimal.power = static_cast<int>(point + 1 - at);
  }
  decimal.end = at;
  return decimal;
}

// For digits and a power of ten that doubles hold exactly. False: the text is not so simple.
bool ParseShort(std::string_view text, double& value) {
  const bool negative = !text.empty() && text.front() == '-';
  if (negative) text.remove_prefix(1);
  const char* const end = text.data() + text.size();
  if (text.empty() || !IsDigit(text.front())) return false;
  Decimal decimal = ReadDecimal(text.data(), end);
  if (end - decimal.end >= 2 && (*decimal.end == 'E' || *decimal.end == 'e')) {
    const char* at = decimal.end + 1;
    const bool negativePower = *at == '-';
    if (negativePower || *at == '+') ++at;
    // Three digits of a power are enough for every double.
    if (at == end || end - at > 3) return false;
    int power = 0;
    for (; at != end && IsDigit(*at); ++at) power = power * 10 + (*at - '0');
    decimal.power += negativePower ? -power : power;
    decimal.end = at;
  }
  if (decimal.end != end || decimal.digits > kLargestWhole) return false;
  if (decimal.power < -kLargestTen || decimal.power > kLargestTen) return false;
  const double magnitude = TimesTen(decimal.digits, decimal.power);
  value = negative ? -magnitude : magnitude;
  return true;
}

// What from_chars leaves open when a number is out of range: too large or too small? Decided by the
// power of ten of the first digit that is not 0.
double OutOfRange(std::string_view number) {
  const bool negative = number.front() == '-';
  if (negative) number.remove_prefix(1);
  long long power = 0;
  bool seenPoint = false;
  bool seenDigit = false;
  std::size_t i = 0;
  for (; i < number.size() && (IsDigit(number[i]) || number[i] == '.'); ++i) {
    if (number[i] == '.') {
      seenPoint = true;
    } else if (seenDigit || number[i] != '0') {
      seenDigit = true;
      if (!seenPoint) ++power;
    } else if (seenPoint) {
      --power;
    }
  }
  bool negativeExponent = false;
  long long exponent = 0;
  if (i < number.size() && (number[i] == 'e' || number[i] == 'E')) {
    ++i;
    if (i < number.size() && (number[i] == '-' || number[i] == '+')) {
      negativeExponent = number[i++] == '-';
    }
    for (; i < number.size() && IsDigit(number[i]) && exponent < 1'000'000'000'000; ++i) {
      exponent = exponent * 10 + (number[i] - '0');
    }
  }
  power += negativeExponent ? -exponent : exponent;
  const double magnitude = power > 0 ? std::numeric_limits<double>::infinity() : 0.0;
  return negative ? -magnitude : magnitude;
}

// By the library: slower, and for all values.
char* FormatAnyReal(double value, char* to) {
  char* const end =
      std::to_chars(to, to + kNumberRoom, value, std::chars_format::scientific, kRealDigits - 1)
          .ptr;
  char* exponent = to;
  while (exponent != end && *exponent != 'e') ++exponent;
  if (exponent == end) return end;  // an infinity or no number at all
  char* mantissaEnd = exponent;
  // Ends at the point at the latest, which stays: 2.E-05
  while (mantissaEnd[-1] == '0') --mantissaEnd;
  *exponent = 'E';
  while (exponent != end) *mantissaEnd++ = *exponent++;
  return mantissaEnd;
}

}  // namespace

double ParseReal(std::string_view text) {
  double value = 0.0;
  if (ParseShort(text, value)) return value;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc::result_out_of_range) {
    return OutOfRange(text.substr(0, static_cast<std::size_t>(end - text.data())));
  }
  return error == std::errc() ? value : 0.0;
}

std::int32_t ParseInteger(std::string_view text) {
  const bool negative = !text.empty() && text.front() == '-';
  if (negative) text.remove_prefix(1);
  constexpr std::int64_t kMost = std::int64_t{1} << 31;
  std::int64_t value = 0;
  for (const char digit : text) {
    if (!IsDigit(digit)) break;
    value = value * 10 + (digit - '0');
    // One more than fits without a sign, so that the smallest number fits with it.
    if (value > kMost) value = kMost;
  }
  if (negative) return static_cast<std::int32_t>(-value);
  return static_cast<std::int32_t>(value == kMost ? kMost - 1 : value);
}

char* FormatInteger(std::int32_t value, char* to) {
  if (value >= 0) return FormatUnsigned(static_cast<std::uint32_t>(value), to);
  *to++ = '-';
  return FormatUnsigned(0u - static_cast<std::uint32_t>(value), to);
}

char* FormatUnsigned(std::uint32_t value, char* to) {
  if (value <= kMostInEight) return PutUpToEightDigits(value, to);
  return std::to_chars(to, to + kNumberRoom, value).ptr;
}

namespace {

// "8.25E-05": zeros at the end of the mantissa go, the point stays.
char* PutDigits(const RealDigits& number, char* to) {
  constexpr std::uint64_t kLast = kMostInEight + 1;
  // Sixteen digits, the first of them a zero.
  const std::uint64_t high = EightDigitsOf(static_cast<std::uint32_t>(number.digits / kLast)) >> 8;
  const std::uint64_t low = EightDigitsOf(static_cast<std::uint32_t>(number.digits % kLast));
  PutEight(high + kEightZeros, to + 1);
  to[0] = to[1];
  to[1] = '.';
  PutEight(low + kEightZeros, to + 8);
  const auto zeros = static_cast<unsigned>(low != 0 ? std::countl_zero(low) / 8
                                                    : 8 + std::countl_zero(high << 8) / 8);
  to += 16 - std::min(zeros, 14u);
  *to++ = 'E';
  *to++ = number.power < 0 ? '-' : '+';
  const int power = std::abs(number.power);
  *to++ = static_cast<char>('0' + power / 10);
  *to++ = static_cast<char>('0' + power % 10);
  return to;
}

}  // namespace

char* FormatReal(double value, char* to) {
  if (value >= -2147483648.0 && value <= 2147483647.0) {
    // A zero with a sign loses it here.
    const auto whole = static_cast<std::int32_t>(value);
    if (static_cast<double>(whole) == value) {
      to = FormatInteger(whole, to);
      *to++ = '.';
      return to;
    }
  }
  if (RealDigits digits; RoundToDigits(std::abs(value), digits)) {
    if (value < 0) *to++ = '-';
    return PutDigits(digits, to);
  }
  return FormatAnyReal(value, to);
}

char* FormatCount(double value, char* to) {
  return std::to_chars(to, to + kNumberRoom, value, std::chars_format::general, 6).ptr;
}

}  // namespace corvel
