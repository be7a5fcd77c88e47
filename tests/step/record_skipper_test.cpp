#include "step/reader/record_skipper.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <string>

#include "step/reader/string_decoder.h"
#include "support/memory_streams.h"

namespace corvel {

namespace {

using Skip = std::function<bool(FileStream::InputStream&)>;

// What `skip` leaves of `text`, in windows of every size; "(end)" when the input ends before.
std::string RestOf(
    const std::string& text,
    const Skip& skip = [](FileStream::InputStream& stream) { return SkipToSemicolon(stream); }) {
  std::string first;
  for (std::size_t window = 1; window <= text.size() + 1; ++window) {
    test::MemoryInputStream stream(text, window);
    std::string rest = "(end)";
    if (skip(stream)) {
      rest.clear();
      for (int c = stream.GetChar(); c != -1; c = stream.GetChar()) {
        rest.push_back(static_cast<char>(c));
      }
    }
    if (window == 1) first = rest;
    EXPECT_EQ(first, rest) << "window " << window;
  }
  return first;
}

// What the decoder of strings leaves of `text`.
std::string RestOfDecoded(const std::string& text) {
  test::MemoryInputStream stream(text);
  WideString decoded;
  DecodeString(stream, decoded);
  return {stream.Cursor(), stream.WindowEnd()};
}

}  // namespace

TEST(SkipToSemicolon, StopsBeforeIt) { EXPECT_EQ(";\n#2", RestOf("(#1,$,3.);\n#2")); }

TEST(SkipToSemicolon, ASemicolonInAStringIsText) { EXPECT_EQ(";x", RestOf("('a;b',';');x")); }

TEST(SkipToSemicolon, ADoubledApostropheDoesNotEndTheString) {
  EXPECT_EQ(";x", RestOf("('it''s; here');x"));
  EXPECT_EQ(";x", RestOf("('''');x"));
}

TEST(SkipToSemicolon, ASemicolonInACommentIsText) {
  EXPECT_EQ(";x", RestOf("(1/* ; ' */,2/***/,3/* * / **/);x"));
}

TEST(SkipToSemicolon, ASlashAloneIsNoComment) { EXPECT_EQ(";x;", RestOf("(1/2,'/*');x;")); }

TEST(SkipToSemicolon, TheEndOfTheInputIsNoSemicolon) {
  EXPECT_EQ("(end)", RestOf("(1,2)"));
  EXPECT_EQ("(end)", RestOf("('a;"));
  EXPECT_EQ("(end)", RestOf("(/* ; "));
  EXPECT_EQ("(end)", RestOf("(/* ; *"));
  EXPECT_EQ("(end)", RestOf("(/"));
  EXPECT_EQ("(end)", RestOf(""));
}

TEST(SkipToSemicolon, AnEndInsideOfAStringIsTold) {
  for (const auto& [text, inString] :
       {std::pair("('a;", true), std::pair("('a');x", false), std::pair("(/* ' ", false),
        std::pair("(1,2)", false), std::pair("('a',$", false), std::pair("('a''b", true)}) {
    bool endsInString = false;
    test::MemoryInputStream stream(text);
    SkipToSemicolon(stream, &endsInString);
    EXPECT_EQ(inString, endsInString) << text;
  }
}

TEST(SkipToSemicolon, AByteOf255OutsideOfStringsAndCommentsEndsTheInput) {
  EXPECT_EQ("(end)", RestOf("(1,\xFF$);x"));
  EXPECT_EQ("(end)", RestOf("('a',/**/\xFF$);x"));
  EXPECT_EQ(";x", RestOf("('\xFF',/*\xFF*/1);x"));
  EXPECT_EQ(";\xFE", RestOf("(1);\xFE"));
}

TEST(SkipToSemicolon, AnApostropheBehindADirectiveDoesNotEndTheString) {
  EXPECT_EQ(";x", RestOf(R"(('\S\';'),);x)"));
}

TEST(SkipToSemicolon, StringsAndCommentsBehindTheSemicolonDoNotMatter) {
  EXPECT_EQ(";'/*", RestOf("(1);'/*"));
}

// In windows of one byte nothing is looked at eight bytes at a time.
TEST(SkipToSemicolon, StopsAtTheSamePlaceWhateverStandsInTheWindow) {
  std::mt19937 random(11);  // NOLINT: the same records every time
  const std::string signs =
      "#(),.1A\x80\x7F'';/*+7 \n\xFB\xA7\xAF"
      "\xBB"
      "3:&";
  for (int round = 0; round < 300; ++round) {
    std::string text;
    for (std::size_t i = random() % 40; i > 0; --i) text += signs[random() % signs.size()];
    RestOf(text + "bcdefghi;j");
  }
}

TEST(SkipString, StopsBehindTheClosingApostrophe) {
  EXPECT_EQ(",x'", RestOf("abc',x'", SkipString));
  EXPECT_EQ(",x", RestOf("it''s',x", SkipString));
  EXPECT_EQ("", RestOf("'", SkipString));
  EXPECT_EQ("(end)", RestOf("abc", SkipString));
  EXPECT_EQ("(end)", RestOf("abc''", SkipString));
}

// The two have to agree about where a string ends, whatever stands in it.
TEST(SkipString, StopsWhereTheDecoderStops) {
  std::mt19937 random(7);  // NOLINT: the same strings every time
  const std::string signs = R"(\\\\\\'''SX240PA1 )";
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    for (std::size_t i = random() % 12; i > 0; --i) text += signs[random() % signs.size()];
    text += "';rest'";
    const std::string decoded = RestOfDecoded(text);
    test::MemoryInputStream stream(text);
    const bool ended = SkipString(stream);
    ASSERT_EQ(decoded, std::string(stream.Cursor(), stream.WindowEnd())) << text;
    ASSERT_TRUE(ended || decoded.empty()) << text;
  }
}

TEST(SkipBlanks, StopsAtWhatIsNoBlankAndNoComment) {
  EXPECT_EQ("#1", RestOf(" \r\n\t_#1", SkipBlanks));
  EXPECT_EQ("#1", RestOf("/* #2 */ /***/#1", SkipBlanks));
  EXPECT_EQ("a", RestOf("/a", SkipBlanks));
  EXPECT_EQ("#1", RestOf("#1", SkipBlanks));
  EXPECT_EQ("(end)", RestOf("  /* #1", SkipBlanks));
  EXPECT_EQ("(end)", RestOf("", SkipBlanks));
  EXPECT_EQ("(end)", RestOf(" /*\xFF*/\xFF#1", SkipBlanks));
}

}  // namespace corvel
