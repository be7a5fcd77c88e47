#include "step/numbers/number_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>

#include "support/token_list.h"

namespace corvel {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::int32_t kLeastInteger = std::numeric_limits<std::int32_t>::min();

std::string Real(double value) {
  char text[kNumberRoom];
  return {text, FormatReal(value, text)};
}

std::string Count(double value) {
  char text[kNumberRoom];
  return {text, FormatCount(value, text)};
}

// Any bit pattern: every exponent is as likely as another.
class RandomDoubles {
 public:
  double Any() { return std::bit_cast<double>(random_()); }
  // Near the border between whole numbers of 32 bits and everything else.
  double Whole() {
    return std::trunc(static_cast<double>(static_cast<std::int64_t>(random_()) >> Shift(63)));
  }
  // Few decimal digits, as models have them.
  double Decimal() {
    return static_cast<double>(static_cast<std::int64_t>(random_()) >> Shift(63)) /
           std::pow(10.0, Shift(12));
  }
  std::uint64_t Bits() { return random_(); }

 private:
  int Shift(unsigned below) { return static_cast<int>(random_() % below); }

  std::mt19937_64 random_{20240307};
};

// Not every C library tells the sign of what is no number.
std::string NotANumber(double value) { return std::signbit(value) ? "-nan" : "nan"; }

// The same bits, or neither is a number.
void ExpectSame(double expected, double got, const std::string& text) {
  ASSERT_EQ(std::bit_cast<std::uint64_t>(expected), std::bit_cast<std::uint64_t>(got)) << text;
}

template <class Number>
struct Reading {
  std::string text;
  Number number;
};

template <class Number>
void ExpectRead(Number (*parse)(std::string_view),
                std::initializer_list<Reading<std::type_identity_t<Number>>> cases) {
  for (const auto& [text, number] : cases) EXPECT_EQ(number, parse(text)) << text;
}

struct Writing {
  double number;
  const char* text;
};

void ExpectWritten(std::string (*format)(double), std::initializer_list<Writing> cases) {
  for (const auto& [number, text] : cases) EXPECT_EQ(text, format(number));
}

// Two ways to write a number agree on `count` numbers of each kind.
void ExpectAgreement(int count, std::string (*format)(double), std::string (*literally)(double)) {
  RandomDoubles random;
  for (int i = 0; i < count; ++i) {
    for (const double value : {random.Any(), random.Whole(), random.Decimal()}) {
      ASSERT_EQ(literally(value), format(value)) << test::Visible(value);
    }
  }
}

// --- ParseReal -----------------------------------------------------------------------------------

TEST(ParseReal, TakesTheLongestBeginningThatIsANumber) {
  ExpectRead(ParseReal, {{"1.", 1.0},
                         {"-.5", -0.5},
                         {"1.5E+2", 150.0},
                         {"1.5e2", 150.0},
                         {"1.5E", 1.5},
                         {"1.5E+", 1.5},
                         {"1.5D+3", 1.5},
                         {"1.5 /* x */", 1.5},
                         {"1.5.7", 1.5},
                         {"-.", 0.0},
                         {".", 0.0},
                         {"", 0.0}});
}

TEST(ParseReal, KeepsTheSignOfZero) { EXPECT_TRUE(std::signbit(ParseReal("-0."))); }

TEST(ParseReal, AgreesWithTheCLibraryOnEdges) {
  for (const char* const text : {"1.7976931348623157E+308",
                                 "1.7976931348623158E+308",
                                 "1.7976931348623159E+308",
                                 "1.8E308",
                                 "-1.8E308",
                                 "1.E309",
                                 "1.E999999999999",
                                 "1.E99999999999999999999",
                                 "-1.E99999999999999999999",
                                 "2.2250738585072014E-308",
                                 "2.2250738585072011E-308",
                                 "2.225E-308",
                                 "4.9E-324",
                                 "4.9406564584124654E-324",
                                 "2.5E-324",
                                 "2.4703282292062328E-324",
                                 "2.4703282292062327E-324",
                                 "2.E-324",
                                 "1.E-400",
                                 "-1.E-400",
                                 "1.E-99999999999999999999",
                                 "0.E999999",
                                 "0.0E-999999",
                                 "-0.E5",
                                 "0.00000000000000000000000000000000001E-300",
                                 "100000000000000000000000000000.E+290",
                                 "9007199254740993.0",
                                 "9007199254740992.5",
                                 "0.1",
                                 "0.30000000000000004",
                                 "123456789012345678901234567890.",
                                 "5.E-1",
                                 "1.0000000000000002220446049250313080847263336181640625",
                                 "1.00000000000000011102230246251565404236316680908203125",
                                 "1.00000000000000011102230246251565404236316680908203124"}) {
    ExpectSame(std::strtod(text, nullptr), ParseReal(text), text);
  }
}

TEST(ParseReal, NumbersOfThousandsOfDigitsAgreeWithTheCLibrary) {
  for (const std::size_t zeros : {300u, 320u, 400u, 5000u}) {
    const std::string large = "1" + std::string(zeros, '0') + ".";
    const std::string small = "0." + std::string(zeros, '0') + "1";
    for (const std::string& text :
         {large, small, "-" + large, "-" + small, large + "E-" + std::to_string(zeros),
          small + "E" + std::to_string(zeros), large + "E5", large + "E-5", small + "E5",
          small + "E-5"}) {
      ExpectSame(std::strtod(text.c_str(), nullptr), ParseReal(text), text);
    }
  }
}

TEST(ParseReal, AgreesWithTheCLibraryOnRandomTexts) {
  RandomDoubles random;
  char text[64];
  for (int i = 0; i < 300'000; ++i) {
    const int digits = static_cast<int>(random.Bits() % 22);
    std::snprintf(text, sizeof text, "%.*e", digits, random.Any());
    if (text[0] == 'n' || text[0] == 'i' || text[1] == 'n' || text[1] == 'i') continue;
    ExpectSame(std::strtod(text, nullptr), ParseReal(text), text);
    std::snprintf(text, sizeof text, "%s%llu.%lluE%d", random.Bits() % 2 == 0 ? "-" : "",
                  static_cast<unsigned long long>(random.Bits() >> (random.Bits() % 64)),
                  static_cast<unsigned long long>(random.Bits() >> (random.Bits() % 64)),
                  static_cast<int>(random.Bits() % 720) - 360);
    ExpectSame(std::strtod(text, nullptr), ParseReal(text), text);
  }
}

// --- ParseInteger --------------------------------------------------------------------------------

TEST(ParseInteger, TakesDigitsAndSaturates) {
  ExpectRead(ParseInteger, {{"", 0},
                            {"-", 0},
                            {"-0", 0},
                            {"0012", 12},
                            {"2147483646", 2147483646},
                            {"2147483647", 2147483647},
                            {"2147483648", 2147483647},
                            {"99999999999999999999999999", 2147483647},
                            {"-2147483647", -2147483647},
                            {"-2147483648", kLeastInteger},
                            {"-2147483649", kLeastInteger},
                            {"-" + std::string(10'000, '9'), kLeastInteger}});
}

TEST(ParseInteger, AgreesWithClampingALargerInteger) {
  RandomDoubles random;
  for (int i = 0; i < 300'000; ++i) {
    const auto value = static_cast<std::int64_t>(random.Bits()) >> (random.Bits() % 64);
    const std::int64_t clamped = std::clamp<std::int64_t>(
        value, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max());
    ASSERT_EQ(clamped, ParseInteger(std::to_string(value))) << value;
  }
}

// --- FormatReal ----------------------------------------------------------------------------------

// The rule, step by step.
std::string LiteralReal(double value) {
  if (std::isnan(value)) return NotANumber(value);
  const bool fits = value >= -2147483648.0 && value <= 2147483647.0;
  if (fits && static_cast<double>(static_cast<std::int32_t>(value)) == value) {
    return std::to_string(static_cast<std::int32_t>(value)) + ".";
  }
  char text[64];
  std::snprintf(text, sizeof text, "%.14e", value);
  std::string result = text;
  std::size_t exponent = result.find('e');
  if (exponent == std::string::npos) return result;
  result[exponent] = 'E';
  while (result[exponent - 1] == '0') result.erase(--exponent, 1);
  return result;
}

TEST(FormatReal, WholeNumbersOf32BitsHaveAPointAndNoExponent) {
  ExpectWritten(Real, {{0.0, "0."},
                       {-0.0, "0."},
                       {1.0, "1."},
                       {3.0, "3."},
                       {-12.0, "-12."},
                       {2147483647.0, "2147483647."},
                       {-2147483648.0, "-2147483648."}});
}

TEST(FormatReal, EverythingElseIsScientific) {
  ExpectWritten(Real, {{2147483648.0, "2.147483648E+09"},
                       {-2147483649.0, "-2.147483649E+09"},
                       {3000000000.0, "3.E+09"},
                       {1e30, "1.E+30"},
                       {1.5, "1.5E+00"},
                       {0.001, "1.E-03"},
                       {2.5e-5, "2.5E-05"},
                       {-2.5e-5, "-2.5E-05"},
                       {123.456789012345678, "1.23456789012346E+02"},
                       {1e100, "1.E+100"},
                       {4.9406564584124654e-324, "4.94065645841247E-324"},
                       {std::numeric_limits<double>::max(), "1.79769313486232E+308"}});
}

TEST(FormatReal, WhatIsNoNumberHasNoExponent) {
  EXPECT_EQ("inf", Real(kInfinity));
  EXPECT_EQ("-inf", Real(-kInfinity));
  EXPECT_EQ("nan", Real(std::numeric_limits<double>::quiet_NaN()));
  EXPECT_EQ("-nan", Real(-std::numeric_limits<double>::quiet_NaN()));
}

TEST(FormatReal, KeepsFifteenSignificantDigits) {
  EXPECT_EQ("1.E+00", Real(1.0000000000000002));
  EXPECT_EQ("1.00000000000001E+00", Real(1.00000000000001));
}

TEST(FormatReal, AgreesWithTheLiteralRuleOnMillionsOfNumbers) {
  ExpectAgreement(700'000, Real, LiteralReal);
}

TEST(FormatReal, WhatIsWrittenReadsAsTheSameText) {
  RandomDoubles random;
  for (int i = 0; i < 500'000; ++i) {
    for (const double value : {random.Any(), random.Decimal()}) {
      const std::string text = Real(value);
      const double read = ParseReal(text);
      if (std::isinf(read) || text.find('.') == std::string::npos) continue;  // rounded too far
      ASSERT_EQ(text, Real(read));
    }
  }
}

// --- FormatCount ---------------------------------------------------------------------------------

std::string StreamCount(double value) {
  if (std::isnan(value)) return NotANumber(value);
  std::ostringstream stream;
  stream.imbue(std::locale::classic());
  stream << value;
  return stream.str();
}

TEST(FormatCount, HasSixDigitsAndNoForcedPoint) {
  ExpectWritten(Count, {{3.0, "3"},
                        {0.0, "0"},
                        {-0.0, "-0"},
                        {0.5, "0.5"},
                        {999999.0, "999999"},
                        {1000000.0, "1e+06"},
                        {999999.5, "1e+06"},
                        {1234567.0, "1.23457e+06"},
                        {0.0001, "0.0001"},
                        {0.00001, "1e-05"}});
}

TEST(FormatCount, AgreesWithAStream) {
  EXPECT_EQ(StreamCount(kInfinity), Count(kInfinity));
  EXPECT_EQ(StreamCount(-kInfinity), Count(-kInfinity));
  ExpectAgreement(200'000, Count, StreamCount);
}

// --- Integers ------------------------------------------------------------------------------------

TEST(FormatInteger, WritesTheWholeRange) {
  char text[kNumberRoom];
  const auto integer = [&](std::int32_t value) {
    return std::string(text, FormatInteger(value, text));
  };
  EXPECT_EQ("0", integer(0));
  EXPECT_EQ("-1", integer(-1));
  EXPECT_EQ("2147483647", integer(2147483647));
  EXPECT_EQ("-2147483648", integer(kLeastInteger));
}

TEST(FormatUnsigned, WritesTheWholeRange) {
  char text[kNumberRoom];
  EXPECT_EQ("4294967295", std::string(text, FormatUnsigned(0xFFFFFFFFu, text)));
  EXPECT_EQ("0", std::string(text, FormatUnsigned(0, text)));
}

}  // namespace
}  // namespace corvel
