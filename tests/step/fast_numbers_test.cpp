// The short ways of numbers, held against the library's.
#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "step/numbers/byte_runs.h"
#include "step/numbers/number_text.h"
#include "step/numbers/plain_real.h"
#include "step/numbers/real_text.h"

namespace corvel {
namespace {

constexpr int kRounds = 10000;

template <class Number, class... Form>
std::string ByLibrary(Number value, Form... form) {
  char text[400];
  return {text, std::to_chars(text, text + sizeof text, value, form...).ptr};
}

// As files have it: the zeros at the end of 15 digits dropped.
std::string RealByLibrary(double value) {
  if (std::abs(value) <= 2147483647.0 && value == std::trunc(value)) {
    return ByLibrary(static_cast<std::int64_t>(value)) + ".";
  }
  std::string text = ByLibrary(value, std::chars_format::scientific, 14);
  const std::size_t exponent = text.find('e');
  text[exponent] = 'E';
  const std::size_t last = text.find_last_not_of('0', exponent - 1);
  return text.erase(last + 1, exponent - last - 1);
}

std::string WrittenReal(double value) {
  char text[kNumberRoom];
  return {text, FormatReal(value, text)};
}

std::string Unsigned(std::uint32_t value) {
  char text[kNumberRoom];
  return {text, FormatUnsigned(value, text)};
}

double OfBits(std::uint64_t bits) { return std::bit_cast<double>(bits); }

// Of all sizes from 2^-30 to 2^51, of decimals with up to 18 digits, and halfway between two.
std::vector<double> RandomReals(std::mt19937_64& random) {
  const std::uint64_t mantissa = random() >> 12;
  const std::uint64_t power = 1023 - 30 + random() % 82;
  const double decimal =
      static_cast<double>(random() % 1'000'000'000'000'000) / std::pow(10.0, random() % 18);
  const double halves = static_cast<double>(random() % (std::uint64_t{1} << 53)) /
                        static_cast<double>(std::uint64_t{1} << random() % 60);
  return {OfBits(mantissa | power << 52), decimal, std::nextafter(decimal, 1e300),
          std::nextafter(decimal, 0.0), -halves};
}

TEST(FastNumbers, RealsAreRoundedAsTheLibraryRounds) {
  std::mt19937_64 random(1);
  for (int i = 0; i < kRounds; ++i) {
    for (const double value : RandomReals(random)) {
      ASSERT_EQ(RealByLibrary(value), WrittenReal(value)) << std::hexfloat << value;
    }
  }
}

TEST(FastNumbers, NeighboursOfPowersOfTenHaveTheirDigits) {
  for (int power = -12; power <= 22; ++power) {
    const double ten = std::stod("1e" + std::to_string(power));
    double value = ten;
    for (int i = 0; i < 6; ++i) value = std::nextafter(value, 0.0);
    for (int i = 0; i < 12; ++i, value = std::nextafter(value, 1e300)) {
      ASSERT_EQ(RealByLibrary(value), WrittenReal(value)) << std::hexfloat << value;
    }
  }
  EXPECT_EQ("1.E+01", WrittenReal(std::nextafter(10.0, 0.0)));
}

TEST(FastNumbers, HalfwayGoesToTheEvenDigit) {
  EXPECT_EQ("1.00000000000002E+00", WrittenReal(1 + 0x1p-46 + 0x1p-48));
  // 15 digits and a half, which doubles of this size hold exactly.
  EXPECT_EQ("1.00000000000002E+14", WrittenReal(100000000000002.5));
  EXPECT_EQ("1.00000000000004E+14", WrittenReal(100000000000003.5));
}

TEST(FastNumbers, ValuesThatTakeTooManyBitsAreLeftToTheLibrary) {
  RealDigits digits;
  EXPECT_FALSE(RoundToDigits(1e-9, digits));
  EXPECT_FALSE(RoundToDigits(2e15, digits));
  EXPECT_FALSE(RoundToDigits(OfBits(1), digits));
  EXPECT_FALSE(RoundToDigits(HUGE_VAL, digits));
  EXPECT_EQ("1.E-09", WrittenReal(1e-9));
  EXPECT_EQ("-2.5E+300", WrittenReal(-2.5e300));
}

TEST(FastNumbers, WholeNumbersOfAllLengthsAreThoseOfTheLibrary) {
  std::mt19937_64 random(2);
  for (int i = 0; i < kRounds; ++i) {
    const auto value = static_cast<std::uint32_t>(random() >> (32 + random() % 32));
    ASSERT_EQ(ByLibrary(value), Unsigned(value));
    char text[kNumberRoom];
    const auto integer = static_cast<std::int32_t>(value);
    ASSERT_EQ(ByLibrary(integer), std::string(text, FormatInteger(integer, text)));
  }
  for (const std::uint32_t edge : {0u, 9u, 10u, 99'999'999u, 100'000'000u, 4'294'967'295u}) {
    EXPECT_EQ(ByLibrary(edge), Unsigned(edge));
  }
}

// How much of `text` is taken, and the value. Behind it stands what no reading may touch.
std::ptrdiff_t Take(std::string text, double& value) {
  text.append(kPlainRealRoom, '7');
  const char* const end = TakePlainReal(text.data(), value);
  return end == nullptr ? -1 : end - text.data();
}

TEST(FastNumbers, PlainRealsAreReadAsTheLibraryReadsThem) {
  std::mt19937_64 random(3);
  int taken = 0;
  for (int i = 0; i < kRounds; ++i) {
    for (const double value : RandomReals(random)) {
      const int digits = static_cast<int>(random() % 17);
      const bool scientific = random() % 2 == 0;
      std::string text = ByLibrary(
          value, scientific ? std::chars_format::scientific : std::chars_format::fixed, digits);
      double plain = 0.0;
      const std::ptrdiff_t end = Take(text + (random() % 2 == 0 ? "," : ")"), plain);
      if (end < 0) continue;
      ++taken;
      ASSERT_EQ(text.size(), static_cast<std::size_t>(end)) << text;
      ASSERT_EQ(std::bit_cast<std::uint64_t>(ParseReal(text)), std::bit_cast<std::uint64_t>(plain))
          << text;
    }
  }
  EXPECT_GT(taken, kRounds);
}

TEST(FastNumbers, OtherTextsAreNoPlainReals) {
  double value = 0.0;
  for (const char* const text : {"12,", ".5,", "-.5)", "1.5;", "1.5 ,", "1.5E,", "1.5E+,",
                                 "1.5E100,", "1.5E-,", "12345678.5,", "1.1234567890123456,",
                                 "0.30000000000000004,", "1.5E30,", "-,", "1.5.5,", "1.5/*,*/,"}) {
    EXPECT_EQ(-1, Take(text, value)) << text;
  }
  EXPECT_EQ(2, Take("0.,", value));
  EXPECT_EQ(3, Take("-0.,", value));
  EXPECT_TRUE(std::signbit(value));
  EXPECT_EQ(6, Take("1.5E07)", value));
  EXPECT_EQ(1.5e7, value);
}

TEST(FastNumbers, RunsEndAtTheFirstOtherByte) {
  for (unsigned count = 0; count <= 8; ++count) {
    for (unsigned other = 0; other < 256; ++other) {
      const char byte = static_cast<char>(other);
      std::string text = std::string("12345678").substr(0, count) + byte + "\xFF\x80/:9a";
      text.resize(8, '3');
      if (byte < '0' || byte > '9') {
        const DigitRun run = DigitsAt(text.data());
        ASSERT_EQ(count, run.count) << other;
        ASSERT_EQ(count == 0 ? 0u : std::stoul(text.substr(0, count)), run.value) << other;
      }
      const bool isLetter = (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
      if (!isLetter && (byte < '0' || byte > '9')) {
        ASSERT_EQ(count, LettersAndDigitsAt(text.data())) << other;
      }
    }
  }
  EXPECT_EQ(8u, LettersAndDigitsAt("IFCz0aZ9"));
}

}  // namespace
}  // namespace corvel
