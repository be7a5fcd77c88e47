// Which names are the same, and which say nothing.
#include "merge/federation/tree/spatial_names.h"

#include <gtest/gtest.h>

namespace corvel {
namespace {

TEST(SpatialNames, BlanksAndCaseDoNotCount) {
  EXPECT_EQ(u"level01", ComparableName(u" Level\t01 "));
  EXPECT_EQ(ComparableName(u"1. OBERGESCHOSS"), ComparableName(u"1.Obergeschoss"));
  EXPECT_EQ(u"a", ComparableName(u"A\u00A0\u3000"));
}

TEST(SpatialNames, LettersOfOtherAlphabetsHaveACaseToo) {
  EXPECT_EQ(u"übergeschoß", ComparableName(u"ÜBERGESCHOß"));
  EXPECT_EQ(u"ŝćžāő", ComparableName(u"ŜĆŽĀŐ"));
  EXPECT_EQ(u"όροφος2", ComparableName(u"όΡΟΦΟς2"));
  EXPECT_EQ(u"этажё", ComparableName(u"ЭТАЖЁ"));
}

TEST(SpatialNames, WhatIsNoLetterStays) {
  EXPECT_EQ(u"+3.00×2÷1_[x]", ComparableName(u"+3.00 × 2 ÷ 1_[X]"));
  EXPECT_EQ(u"階", ComparableName(u"階"));
}

TEST(SpatialNames, OtherDigitsAreOtherNames) {
  EXPECT_NE(ComparableName(u"Level 1"), ComparableName(u"Level 11"));
}

TEST(SpatialNames, NamesOfProgramsAndWordsForTheThingSayNothing) {
  for (const char16_t* const name : {u"", u"Default", u"UNDEFINED", u"Default Site", u"Site",
                                     u"Building Storey", u"Gebäude", u"n/a", u"-", u"Этаж"}) {
    EXPECT_TRUE(IsGenericName(ComparableName(name))) << ToUtf8(name);
  }
}

TEST(SpatialNames, NumbersAndOtherWordsSaySomething) {
  for (const char16_t* const name :
       {u"0", u"1", u"Level 1", u"Nivo 0", u"EG", u"Roof", u"Site A", u"T/FDN"}) {
    EXPECT_FALSE(IsGenericName(ComparableName(name))) << ToUtf8(name);
  }
}

}  // namespace
}  // namespace corvel
