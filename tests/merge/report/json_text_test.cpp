#include "merge/report/shared/json_text.h"

#include <gtest/gtest.h>

#include <limits>

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
