#include "host/record_skipper.h"

#include <gtest/gtest.h>

#include <string>

#include "support/memory_streams.h"

namespace corvel::host {

namespace {

// What is left of `text` behind the arguments, in windows of every size; "(end)" when the input
// ends before.
std::string RestOf(const std::string& text) {
  std::string first;
  for (std::size_t window = 1; window <= text.size() + 1; ++window) {
    test::MemoryInputStream stream(text, window);
    std::string rest = "(end)";
    if (SkipToSemicolon(stream)) {
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

}  // namespace corvel::host
