#include "step/numbers/number_text.h"

#include <charconv>
#include <cmath>
#include <limits>

#include "core/text.h"

namespace corvel {

namespace {

// Powers of ten that a double holds exactly.
constexpr double kTens[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                            1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int kLargestTen = 22;
constexpr std::uint64_t kLargestWhole = std::uint64_t{1} << 53;

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

// Digits and a power of ten that doubles hold exactly need one operation, which rounds as a whole
// number would be: to the nearest. False: the text is not so simple.
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
  const auto whole = static_cast<double>(decimal.digits);
  const double magnitude =
      decimal.power < 0 ? whole / kTens[-decimal.power] : whole * kTens[decimal.power];
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
  return std::to_chars(to, to + kNumberRoom, value).ptr;
}

char* FormatUnsigned(std::uint32_t value, char* to) {
  return std::to_chars(to, to + kNumberRoom, value).ptr;
}

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
  char* const end =
      std::to_chars(to, to + kNumberRoom, value, std::chars_format::scientific, 14).ptr;
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

char* FormatCount(double value, char* to) {
  return std::to_chars(to, to + kNumberRoom, value, std::chars_format::general, 6).ptr;
}

}  // namespace corvel
