#include "step/numbers/number_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <locale>
#include <random>
#include <sstream>

#include "support/token_list.h"

namespace corvel {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

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

// The same bits, or neither is a number.
void ExpectSame(double expected, double got, const std::string& text) {
  ASSERT_EQ(std::bit_cast<std::uint64_t>(expected), std::bit_cast<std::uint64_t>(got)) << text;
}

// --- ParseReal -----------------------------------------------------------------------------------

TEST(ParseReal, TakesTheLongestBeginningThatIsANumber) {
  EXPECT_EQ(1.0, ParseReal("1."));
  EXPECT_EQ(-0.5, ParseReal("-.5"));
  EXPECT_EQ(150.0, ParseReal("1.5E+2"));
  EXPECT_EQ(150.0, ParseReal("1.5e2"));
  EXPECT_EQ(1.5, ParseReal("1.5E"));
  EXPECT_EQ(1.5, ParseReal("1.5E+"));
  EXPECT_EQ(1.5, ParseReal("1.5D+3"));
  EXPECT_EQ(1.5, ParseReal("1.5 /* x */"));
  EXPECT_EQ(1.5, ParseReal("1.5.7"));
  EXPECT_EQ(0.0, ParseReal("-."));
  EXPECT_EQ(0.0, ParseReal("."));
  EXPECT_EQ(0.0, ParseReal(""));
  EXPECT_TRUE(std::signbit(ParseReal("-0.")));
}

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
  EXPECT_EQ(0, ParseInteger(""));
  EXPECT_EQ(0, ParseInteger("-"));
  EXPECT_EQ(0, ParseInteger("-0"));
  EXPECT_EQ(12, ParseInteger("0012"));
  EXPECT_EQ(2147483646, ParseInteger("2147483646"));
  EXPECT_EQ(2147483647, ParseInteger("2147483647"));
  EXPECT_EQ(2147483647, ParseInteger("2147483648"));
  EXPECT_EQ(2147483647, ParseInteger("99999999999999999999999999"));
  EXPECT_EQ(-2147483647, ParseInteger("-2147483647"));
  EXPECT_EQ(-2147483647 - 1, ParseInteger("-2147483648"));
  EXPECT_EQ(-2147483647 - 1, ParseInteger("-2147483649"));
  EXPECT_EQ(-2147483647 - 1, ParseInteger("-" + std::string(10'000, '9')));
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
  EXPECT_EQ("0.", Real(0.0));
  EXPECT_EQ("0.", Real(-0.0));
  EXPECT_EQ("1.", Real(1.0));
  EXPECT_EQ("3.", Real(3.0));
  EXPECT_EQ("-12.", Real(-12.0));
  EXPECT_EQ("2147483647.", Real(2147483647.0));
  EXPECT_EQ("-2147483648.", Real(-2147483648.0));
}

TEST(FormatReal, EverythingElseIsScientific) {
  EXPECT_EQ("2.147483648E+09", Real(2147483648.0));
  EXPECT_EQ("-2.147483649E+09", Real(-2147483649.0));
  EXPECT_EQ("3.E+09", Real(3000000000.0));
  EXPECT_EQ("1.E+30", Real(1e30));
  EXPECT_EQ("1.5E+00", Real(1.5));
  EXPECT_EQ("1.E-03", Real(0.001));
  EXPECT_EQ("2.5E-05", Real(2.5e-5));
  EXPECT_EQ("-2.5E-05", Real(-2.5e-5));
  EXPECT_EQ("1.23456789012346E+02", Real(123.456789012345678));
  EXPECT_EQ("1.E+100", Real(1e100));
  EXPECT_EQ("1.E+00", Real(1.0000000000000002)) << "15 digits survive";
  EXPECT_EQ("4.94065645841247E-324", Real(4.9406564584124654e-324));
  EXPECT_EQ("1.79769313486232E+308", Real(std::numeric_limits<double>::max()));
}

TEST(FormatReal, WhatIsNoNumberHasNoExponent) {
  EXPECT_EQ("inf", Real(kInfinity));
  EXPECT_EQ("-inf", Real(-kInfinity));
  EXPECT_EQ("nan", Real(std::numeric_limits<double>::quiet_NaN()));
}

TEST(FormatReal, AgreesWithTheLiteralRuleOnMillionsOfNumbers) {
  RandomDoubles random;
  for (int i = 0; i < 700'000; ++i) {
    for (const double value : {random.Any(), random.Whole(), random.Decimal()}) {
      if (Real(value) != LiteralReal(value)) FAIL() << test::Visible(value);
    }
  }
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
  std::ostringstream stream;
  stream.imbue(std::locale::classic());
  stream << value;
  return stream.str();
}

TEST(FormatCount, HasSixDigitsAndNoForcedPoint) {
  EXPECT_EQ("3", Count(3.0));
  EXPECT_EQ("0", Count(0.0));
  EXPECT_EQ("-0", Count(-0.0));
  EXPECT_EQ("0.5", Count(0.5));
  EXPECT_EQ("999999", Count(999999.0));
  EXPECT_EQ("1e+06", Count(1000000.0));
  EXPECT_EQ("1e+06", Count(999999.5));
  EXPECT_EQ("1.23457e+06", Count(1234567.0));
  EXPECT_EQ("0.0001", Count(0.0001));
  EXPECT_EQ("1e-05", Count(0.00001));
}

TEST(FormatCount, AgreesWithAStream) {
  RandomDoubles random;
  EXPECT_EQ(StreamCount(kInfinity), Count(kInfinity));
  EXPECT_EQ(StreamCount(-kInfinity), Count(-kInfinity));
  for (int i = 0; i < 200'000; ++i) {
    for (const double value : {random.Any(), random.Whole(), random.Decimal()}) {
      if (Count(value) != StreamCount(value)) FAIL() << test::Visible(value);
    }
  }
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
  EXPECT_EQ("-2147483648", integer(-2147483647 - 1));
}

TEST(FormatUnsigned, WritesTheWholeRange) {
  char text[kNumberRoom];
  EXPECT_EQ("4294967295", std::string(text, FormatUnsigned(0xFFFFFFFFu, text)));
  EXPECT_EQ("0", std::string(text, FormatUnsigned(0, text)));
}

}  // namespace
}  // namespace corvel
