#include "step/numbers/exact_real.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string_view>

namespace corvel {

namespace {

constexpr std::size_t kMostDigits = 17;  // that a double needs
constexpr int kFixedLimit = 100'000;     // whole numbers below it have no shorter form

// The first digit times 10 to the power of `power`, and those behind it.
struct ShortestDigits {
  char digits[kMostDigits];
  int count = 0;
  int power = 0;
};

// `value` is finite and above 0.
ShortestDigits DigitsOf(double value) {
  char text[kNumberRoom];
  const char* const end =
      std::to_chars(text, text + kNumberRoom, value, std::chars_format::scientific).ptr;
  ShortestDigits number;
  const char* at = text;
  for (; *at != 'e'; ++at) {
    if (*at != '.') number.digits[number.count++] = *at;
  }
  const bool negative = at[1] == '-';
  std::from_chars(at + 2, end, number.power);
  if (negative) number.power = -number.power;
  return number;
}

char* Put(std::string_view text, char* to) { return std::copy(text.begin(), text.end(), to); }

char* PutZeros(int count, char* to) { return std::fill_n(to, std::max(count, 0), '0'); }

int FixedSize(const ShortestDigits& number) {
  if (number.power < 0) return 1 - number.power + number.count;
  return 1 + std::max(number.count, number.power + 1);
}

int ScientificSize(const ShortestDigits& number) {
  return number.count + (std::abs(number.power) < 100 ? 5 : 6);
}

// "0.00125", "12.5", "1200."
char* PutFixed(const ShortestDigits& number, char* to) {
  const char* const digits = number.digits;
  if (number.power < 0) {
    to = PutZeros(-number.power - 1, Put("0.", to));
    return std::copy_n(digits, number.count, to);
  }
  const int whole = std::min(number.count, number.power + 1);
  to = PutZeros(number.power + 1 - whole, std::copy_n(digits, whole, to));
  *to++ = '.';
  return std::copy(digits + whole, digits + number.count, to);
}

// "1.25E-07": two digits of the power at least, as everywhere in these files.
char* PutScientific(const ShortestDigits& number, char* to) {
  *to++ = number.digits[0];
  *to++ = '.';
  to = std::copy(number.digits + 1, number.digits + number.count, to);
  to = Put(number.power < 0 ? "E-" : "E+", to);
  const int power = std::abs(number.power);
  if (power < 10) *to++ = '0';
  return FormatInteger(power, to);
}

bool IsWhole(double value) {
  return value >= -2147483648.0 && value <= 2147483647.0 && std::trunc(value) == value;
}

}  // namespace

char* FormatExactReal(double value, char* to) {
  if (std::isnan(value)) return FormatReal(value, to);
  if (std::signbit(value)) *to++ = '-';
  const double magnitude = std::abs(value);
  if (magnitude < kFixedLimit && std::trunc(magnitude) == magnitude) {
    to = FormatInteger(static_cast<std::int32_t>(magnitude), to);
    *to++ = '.';
    return to;
  }
  // Too large for any double, so that it reads as what it was.
  if (std::isinf(value)) return Put("1.E+999", to);
  const ShortestDigits number = DigitsOf(magnitude);
  return FixedSize(number) <= ScientificSize(number) ? PutFixed(number, to)
                                                     : PutScientific(number, to);
}

char* FormatExactCount(double value, char* to) {
  const bool isNegativeZero = value == 0.0 && std::signbit(value);
  if (!IsWhole(value) || isNegativeZero) return FormatExactReal(value, to);
  return FormatInteger(static_cast<std::int32_t>(value), to);
}

}  // namespace corvel
