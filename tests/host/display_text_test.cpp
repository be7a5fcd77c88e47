#include "host/display_text.h"

#include <gtest/gtest.h>

namespace corvel::host {

TEST(Printable, ControlCharactersBecomeQuestionMarks) {
  EXPECT_EQ(u"?[2Jx", Printable(u"\x1b[2Jx"));
  EXPECT_EQ(u"a?b?c", Printable(u"a\nb\tc"));
  EXPECT_EQ(u"?", Printable(u"\u009b"));
  EXPECT_EQ(u"?", Printable(u"\u007f"));
}

TEST(Printable, MarksOfDirectionBecomeQuestionMarksToo) {
  EXPECT_EQ(u"a?cfi.exe", Printable(u"a\u202ecfi.exe"));
  EXPECT_EQ(u"????????????", Printable(u"\u061c\u200e\u200f\u2028\u2029\u202a\u202b\u202c\u202d"
                                       u"\u2066\u2068\u2069",
                                       true));
  EXPECT_EQ(u"\u200d\u2030", Printable(u"\u200d\u2030"));
}

TEST(Printable, LinesStayWhereTheyAreWanted) {
  EXPECT_EQ(u"a\nb\tc?", Printable(u"a\nb\tc\r", true));
}

TEST(Printable, LettersStay) { EXPECT_EQ(u"Bürohaus \u4e2d", Printable(u"Bürohaus \u4e2d")); }

TEST(ColumnsOf, CountsWideAndCombiningLetters) {
  EXPECT_EQ(3u, ColumnsOf(u"abc"));
  EXPECT_EQ(4u, ColumnsOf(u"\u4e2d\u6587"));
  EXPECT_EQ(1u, ColumnsOf(u"e\u0301"));
  EXPECT_EQ(2u, ColumnsOf(u"\U0001F3E0"));
  EXPECT_EQ(1u, ColumnsOf(u"\U00010400"));
}

TEST(ColumnsOf, ALoneSurrogateTakesOne) {
  EXPECT_EQ(1u, ColumnsOf(WideString(1, char16_t{0xDCE9})));
  EXPECT_EQ(1u, ColumnsOf(WideString(1, char16_t{0xD83C})));
}

TEST(FitToColumns, FillsWithBlanks) {
  EXPECT_EQ(u"ab   ", FitToColumns(u"ab", 5));
  EXPECT_EQ(u"abcde", FitToColumns(u"abcde", 5));
}

TEST(FitToColumns, KeepsTheEndOfWhatIsTooLong) {
  EXPECT_EQ(u"...fgh", FitToColumns(u"abcdefgh", 6));
  EXPECT_EQ(u"..", FitToColumns(u"abcdefgh", 2));
  EXPECT_EQ(u"", FitToColumns(u"abcdefgh", 0));
}

TEST(FitToColumns, AWideLetterThatDoesNotFitLeavesABlank) {
  EXPECT_EQ(u"...\u6587 ", FitToColumns(u"\u4e2d\u4e2d\u4e2d\u6587", 6));
}

TEST(FitToColumns, SurrogatePairsStayWhole) {
  EXPECT_EQ(u"...\U0001F3E0", FitToColumns(u"\U0001F3E0\U0001F3E0\U0001F3E0", 5));
}

}  // namespace corvel::host
