#include "host/check/value_check.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include "step/numbers/number_text.h"

namespace corvel::host {

namespace {

// What the writer makes of it, read again.
bool ComesBack(double value) {
  char text[kNumberRoom];
  return ParseReal({text, static_cast<std::size_t>(FormatReal(value, text) - text)}) == value;
}

double OfDigits(std::mt19937_64& random, int digits, int exponent) {
  const auto most = static_cast<std::uint64_t>(std::pow(10.0, digits));
  return ParseReal(std::to_string(random() % most) + "E" + std::to_string(exponent));
}

}  // namespace

TEST(IsWrittenWhole, IsWhatWritingAndReadingSays) {
  std::mt19937_64 random(18);
  for (int i = 0; i < 20000; ++i) {
    const int digits = static_cast<int>(random() % 18) + 1;
    const int exponent = static_cast<int>(random() % 60) - 40;
    const double value = OfDigits(random, digits, exponent) * (i % 2 == 0 ? 1 : -1);
    ASSERT_EQ(ComesBack(value), IsWrittenWhole(value)) << digits << " digits, E" << exponent;
  }
}

TEST(IsWrittenWhole, NeighboursOfShortNumbersAreNotWhole) {
  for (const double value : {0.1, 1.0, 2.5, 12345.678, 1e-7, 99999999999999.0, 1e14, 3e22}) {
    EXPECT_TRUE(IsWrittenWhole(value)) << value;
    const double next = std::nextafter(value, 1e300);
    EXPECT_EQ(ComesBack(next), IsWrittenWhole(next)) << value;
    const double before = std::nextafter(value, 0.0);
    EXPECT_EQ(ComesBack(before), IsWrittenWhole(before)) << value;
  }
}

TEST(IsWrittenWhole, WhatIsNoNumberIsNotTold) {
  EXPECT_TRUE(IsWrittenWhole(0.0));
  EXPECT_TRUE(IsWrittenWhole(-0.0));
  EXPECT_TRUE(IsWrittenWhole(std::numeric_limits<double>::infinity()));
  EXPECT_TRUE(IsWrittenWhole(std::numeric_limits<double>::quiet_NaN()));
}

TEST(IsWrittenWhole, CountsHaveSixDigits) {
  EXPECT_TRUE(IsCountWrittenWhole(123456.0));
  EXPECT_TRUE(IsCountWrittenWhole(0.5));
  EXPECT_FALSE(IsCountWrittenWhole(1234567.0));
}

}  // namespace corvel::host
