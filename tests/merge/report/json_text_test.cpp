#include "merge/report/shared/json_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <string_view>

namespace corvel {
namespace {

std::string Written(WideView text) {
  JsonText json;
  json.Value(text);
  return json.Take();
}

std::string Written(double value) {
  JsonText json;
  json.Value(value);
  return json.Take();
}

std::string Rounded(double value, int digits) {
  JsonText json;
  json.Rounded(value, digits);
  return json.Take();
}

TEST(JsonText, MembersAndItemsHaveCommasBetweenThem) {
  JsonText json;
  json.BeginObject();
  json.Member("a", 1);
  json.Key("b").BeginArray();
  json.Value(true);
  json.Null();
  json.BeginObject();
  json.EndObject();
  json.NewLine();
  json.Value("x");
  json.EndArray();
  json.Member("c", u"");
  json.EndObject();
  EXPECT_EQ("{\"a\":1,\"b\":[true,null,{},\n\"x\"],\"c\":\"\"}", json.Take());
}

TEST(JsonText, NothingInATextEndsAScript) {
  EXPECT_EQ(R"("\u003c/script\u003e")", Written(u"</script>"));
  EXPECT_EQ(R"("\u003c!--\u0026amp;")", Written(u"<!--&amp;"));
  EXPECT_EQ(R"("\u2028\u2029")", Written(u"\u2028\u2029"));
}

TEST(JsonText, QuotesBackslashesAndControlsAreEscaped) {
  EXPECT_EQ(R"("\"\\\u000a\u0000\u007f")", Written(WideView(u"\"\\\n\0\u007f", 5)));
}

TEST(JsonText, CharactersAreUtf8AndWhatIsNoneIsReplaced) {
  EXPECT_EQ("\"\u00e4\u4e16\U0001F600\"", Written(u"\u00e4\u4e16\U0001F600"));
  const char16_t halves[] = {0xD800, u'a', 0xDC80, 0xD83D};
  EXPECT_EQ("\"\uFFFDa\uFFFD\uFFFD\"", Written(WideView(halves, 4)));
}

TEST(JsonText, WhatIsRoundedIsWrittenAsAnyNumberOfItsDigits) {
  std::mt19937_64 random(7);
  const auto expected = [](double value, int digits) {
    const double factor = std::pow(10.0, digits);
    return Written(std::round(value * factor) / factor + 0.0);
  };
  std::uniform_real_distribution<double> mantissa(-10.0, 10.0);
  for (int i = 0; i < 20000; ++i) {
    const double value = mantissa(random) * std::pow(10.0, static_cast<int>(random() % 20) - 7);
    const int digits = static_cast<int>(random() % 7);
    ASSERT_EQ(expected(value, digits), Rounded(value, digits)) << value << " " << digits;
    const double whole = std::round(value);
    ASSERT_EQ(expected(whole, digits), Rounded(whole, digits)) << whole;
  }
  for (const double value : {0.0, -0.0, -0.00001, 0.0001, 0.0009, 0.001, 0.0012, 1e5, 1.2e5,
                             99999.0, 90000.0, 1e5 + 0.5, 1e8, 123456789.1234, 1e12, 1e300}) {
    EXPECT_EQ(expected(value, 4), Rounded(value, 4)) << value;
    EXPECT_EQ(expected(-value, 3), Rounded(-value, 3)) << value;
  }
}

TEST(JsonText, Utf8IsTheSameAsItsCharacters) {
  for (const std::string_view text :
       {"", "2nQ3fZntkcmUY_HqO04OeE", "a<b", "\"\\", "\u00e4\u2028", "\x7F\n", "\xFF"}) {
    JsonText json;
    json.Utf8(text);
    EXPECT_EQ(Written(FromUtf8(text)), json.Take()) << text;
  }
}

TEST(JsonText, RealsHaveTheFewestDigitsAndWhatIsNoNumberIsNull) {
  EXPECT_EQ("0.1", Written(0.1));
  EXPECT_EQ("1e+300", Written(1e300));
  EXPECT_EQ("null", Written(std::numeric_limits<double>::quiet_NaN()));
  EXPECT_EQ("null", Written(std::numeric_limits<double>::infinity()));
}

TEST(JsonText, RoundedNumbersKeepWhatRoundingWouldLose) {
  JsonText json;
  json.BeginArray();
  json.Rounded(-0.00001, 4);
  json.Rounded(2.00005, 4);
  json.Rounded(1e306, 4);
  json.EndArray();
  EXPECT_EQ("[0,2.0001,1e+306]", json.Take());
}

}  // namespace
}  // namespace corvel
