// A byte for each unit until one needs two.
#include "step/reader/decoded_text.h"

#include <gtest/gtest.h>

namespace corvel {
namespace {

TEST(DecodedText, UnitsBelow256AreBytes) {
  DecodedText text;
  text.AppendAscii("ab");
  text.Append(u'\u00FF');
  EXPECT_TRUE(text.IsPlain());
  EXPECT_EQ("ab\xFF", text.Bytes());
  EXPECT_TRUE(text.Units().empty());
  EXPECT_EQ(u"ab\u00FF", text.Wide());
}

TEST(DecodedText, TheFirstUnitAbove255TakesTheOthersAlong) {
  DecodedText text;
  text.Append(u'\u00E4');
  text.Append(u'\u0100');
  text.AppendAscii("c");
  text.Append(u'\u00F6');
  EXPECT_FALSE(text.IsPlain());
  EXPECT_TRUE(text.Bytes().empty());
  EXPECT_EQ(u"\u00E4\u0100c\u00F6", text.Units());
  EXPECT_EQ(u"\u00E4\u0100c\u00F6", text.Wide());
}

TEST(DecodedText, AClearedOneIsPlainAgain) {
  DecodedText text;
  text.Append(u'\u0100');
  text.Clear();
  EXPECT_TRUE(text.IsPlain());
  EXPECT_EQ(u"", text.Wide());
  text.AppendAscii("x");
  EXPECT_EQ("x", text.Bytes());
}

TEST(DecodedText, HoldsAUnitInEitherForm) {
  DecodedText text;
  text.Append(u'\0');
  EXPECT_TRUE(text.Holds('\0'));
  EXPECT_FALSE(text.Holds('x'));
  text.Append(u'\u0100');
  EXPECT_TRUE(text.Holds('\0'));
  EXPECT_FALSE(text.Holds('x'));
}

}  // namespace
}  // namespace corvel
