// Reals that read back as the same double.
#include "step/numbers/exact_real.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <regex>
#include <string>

#include "step/numbers/plain_real.h"

namespace corvel {
namespace {

constexpr double kEndless = std::numeric_limits<double>::infinity();
constexpr double kLargest = std::numeric_limits<double>::max();

std::string Exact(double value) {
  char text[kNumberRoom];
  return {text, FormatExactReal(value, text)};
}

std::string ExactCount(double value) {
  char text[kNumberRoom];
  return {text, FormatExactCount(value, text)};
}

// Bit patterns of all kinds, and numbers as models have them: decimals, sums and their neighbours.
class ManyReals {
 public:
  template <class Action>
  void ForEach(int rounds, Action action) {
    for (int i = 0; i < rounds; ++i) {
      const double decimal = Decimal();
      for (const double value : {std::bit_cast<double>(random_()), decimal, decimal + Decimal(),
                                 std::nextafter(decimal, kLargest), std::trunc(Decimal())}) {
        if (!std::isnan(value)) action(value);
      }
    }
  }

 private:
  double Decimal() {
    const auto digits = static_cast<std::int64_t>(random_()) >> (random_() % 63);
    return static_cast<double>(digits) / std::pow(10.0, static_cast<int>(random_() % 20));
  }

  std::mt19937_64 random_{20261122};
};

bool IsSame(double one, double other) {
  return std::bit_cast<std::uint64_t>(one) == std::bit_cast<std::uint64_t>(other);
}

TEST(ExactReal, TakesTheShorterOfTwoForms) {
  EXPECT_EQ("12.5", Exact(12.5));
  EXPECT_EQ("0.001", Exact(0.001));
  EXPECT_EQ("0.0001", Exact(0.0001));
  EXPECT_EQ("1.E-05", Exact(0.00001));
  EXPECT_EQ("0.00012", Exact(0.00012));
  EXPECT_EQ("1.23E-07", Exact(1.23e-7));
  EXPECT_EQ("-3999.9999", Exact(-3999.9999));
  EXPECT_EQ("90000.", Exact(90000.0));
  EXPECT_EQ("1.E+05", Exact(100000.0));
  EXPECT_EQ("123456.", Exact(123456.0));
  EXPECT_EQ("1230000.", Exact(1230000.0));
  EXPECT_EQ("1.23E+07", Exact(12300000.0));
  EXPECT_EQ("1.E+100", Exact(1e100));
}

TEST(ExactReal, SmallWholeNumbersHaveAPointBehindThem) {
  EXPECT_EQ("0.", Exact(0.0));
  EXPECT_EQ("3.", Exact(3.0));
  EXPECT_EQ("-12.", Exact(-12.0));
  EXPECT_EQ("99999.", Exact(99999.0));
}

TEST(ExactReal, KeepsAsManyDigitsAsItTakes) {
  EXPECT_EQ("0.1", Exact(0.1));
  EXPECT_EQ("0.30000000000000004", Exact(0.1 + 0.2));
  EXPECT_EQ("1.0000000000000002", Exact(1.0000000000000002));
  EXPECT_EQ("1.7976931348623157E+308", Exact(kLargest));
  EXPECT_EQ("5.E-324", Exact(std::numeric_limits<double>::denorm_min()));
}

TEST(ExactReal, KeepsTheSignOfZero) { EXPECT_EQ("-0.", Exact(-0.0)); }

TEST(ExactReal, InfinitiesAreTooLargeForEveryDouble) {
  EXPECT_EQ("1.E+999", Exact(kEndless));
  EXPECT_EQ("-1.E+999", Exact(-kEndless));
  EXPECT_EQ(kEndless, ParseReal("1.E+999"));
}

TEST(ExactReal, ReadsBackAsTheSameBits) {
  ManyReals().ForEach(40'000, [](double value) {
    const std::string text = Exact(value);
    if (!IsSame(value, ParseReal(text))) FAIL() << text << std::hexfloat << " of " << value;
  });
}

TEST(ExactReal, NoOtherFormOfTheSameDoubleIsShorter) {
  ManyReals().ForEach(3'000, [](double value) {
    if (std::isinf(value)) return;
    const std::string text = Exact(value);
    for (int digits = 0; digits < 17; ++digits) {
      char scientific[64];
      std::snprintf(scientific, sizeof scientific, "%.*e", digits, value);
      if (!IsSame(value, std::strtod(scientific, nullptr))) continue;
      // Without its point where there is one digit.
      const std::size_t least = std::string(scientific).size() + (digits == 0 ? 1 : 0);
      EXPECT_LE(text.size(), least) << text;
      break;
    }
    char fixed[400];
    const auto end = std::to_chars(fixed, fixed + sizeof fixed, value, std::chars_format::fixed);
    const std::string_view plain(fixed, end.ptr);
    const bool hasPoint = plain.find('.') != std::string_view::npos;
    EXPECT_LE(text.size(), plain.size() + (hasPoint ? 0 : 1)) << text;
  });
}

TEST(ExactReal, IsARealOfAStepFile) {
  const std::regex real(R"(-?[0-9]+\.[0-9]*(E[+-]?[0-9]+)?)");
  ManyReals().ForEach(2'000, [&](double value) {
    EXPECT_TRUE(std::regex_match(Exact(value), real)) << Exact(value);
  });
}

TEST(ExactReal, FitsInTheRoomOfANumber) {
  ManyReals().ForEach(5'000, [](double value) { EXPECT_LT(Exact(value).size(), kNumberRoom); });
}

TEST(ExactCount, WholeNumbersHaveNoPoint) {
  EXPECT_EQ("0", ExactCount(0.0));
  EXPECT_EQ("1234567", ExactCount(1234567.0));
  EXPECT_EQ("-2147483648", ExactCount(-2147483648.0));
}

TEST(ExactCount, EverythingElseIsAReal) {
  EXPECT_EQ("0.1234567", ExactCount(0.1234567));
  EXPECT_EQ("2147483648.", ExactCount(2147483648.0));
  EXPECT_EQ("1.E+30", ExactCount(1e30));
  EXPECT_EQ("-0.", ExactCount(-0.0));
}

// --- What is read is the nearest double ----------------------------------------------------------

// The digits of a number, more or fewer than it needs, in several forms.
std::string AnyText(std::mt19937_64& random) {
  std::string text = random() % 4 == 0 ? "-" : "";
  const auto putDigits = [&](std::uint64_t count) {
    for (; count != 0; --count) text += static_cast<char>('0' + random() % 10);
  };
  putDigits(1 + random() % (random() % 8 == 0 ? 40 : 9));
  text += '.';
  putDigits(random() % (random() % 4 == 0 ? 40 : 18));
  if (random() % 2 == 0) return text;
  text += random() % 2 == 0 ? "E" : "e";
  text += random() % 3 == 0 ? "-" : random() % 2 == 0 ? "+" : "";
  return text + std::to_string(random() % (random() % 4 == 0 ? 340 : 30));
}

TEST(ExactReading, EveryTextIsRoundedToTheNearestDouble) {
  std::mt19937_64 random(7);
  for (int i = 0; i < 60'000; ++i) {
    const std::string text = AnyText(random);
    const double nearest = std::strtod(text.c_str(), nullptr);
    ASSERT_TRUE(IsSame(nearest, ParseReal(text))) << text;
    const std::string inRecord = text + ")" + std::string(kPlainRealRoom, ' ');
    double value = 0.0;
    if (TakePlainReal(inRecord.data(), value) == nullptr) continue;
    ASSERT_TRUE(IsSame(nearest, value)) << text;
  }
}

// Texts halfway between two doubles, and a little beside.
TEST(ExactReading, TextsBetweenTwoDoublesGoToTheNearest) {
  std::mt19937_64 random(8);
  for (int i = 0; i < 10'000; ++i) {
    const double value = std::abs(std::bit_cast<double>(random() >> 2));
    const long double middle =
        (static_cast<long double>(value) + std::nextafter(value, kLargest)) / 2;
    for (const int digits : {19, 40}) {
      char text[400];
      std::snprintf(text, sizeof text, "%.*LE", digits, middle);
      ASSERT_TRUE(IsSame(std::strtod(text, nullptr), ParseReal(text))) << text;
    }
  }
}

}  // namespace
}  // namespace corvel
