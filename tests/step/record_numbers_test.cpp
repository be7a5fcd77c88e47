#include "step/record_numbers.h"

#include <gtest/gtest.h>

#include <string>

#include "support/model.h"

namespace corvel {

namespace {

// "1.5 - 2": the numbers of record #1 of `records`, "-" where there is none.
std::string Numbers(const std::string& records) {
  const test::Model model(records);
  std::string text;
  for (const std::optional<double>& number : NumbersOf(*model[1])) {
    if (!text.empty()) text += ' ';
    std::string digits = number ? std::to_string(*number) : "-";
    if (number) digits.resize(digits.find_last_not_of('0') + 1);
    text += digits;
  }
  return text;
}

// The number of an argument that takes values of many kinds.
std::string NumberOfValue(const std::string& value) {
  return Numbers("#1=IFCPROPERTYSINGLEVALUE($,$," + value + ",$);").substr(4);
}

}  // namespace

TEST(NumbersOf, EachArgumentHasItsOwn) {
  EXPECT_EQ("- - 10. -2.5 0. - - 0.001",
            Numbers("#1=IFCMAPCONVERSION(#2,#3,10.,-2.5,0.,$,$,1.E-3);"
                    "#2=IFCGEOMETRICREPRESENTATIONCONTEXT($,$,3,$,$,$);"
                    "#3=IFCPROJECTEDCRS('a',$,$,$,$,$,$);"));
}

TEST(NumbersOf, TypedAndQuotedNumbersCount) {
  EXPECT_EQ("1.5 -", NumberOfValue("IFCREAL(1.5)"));
  EXPECT_EQ("7. -", NumberOfValue("IFCINTEGER(7)"));
  EXPECT_EQ("-2.5 -", NumberOfValue("IFCLABEL('-2.5')"));
  EXPECT_EQ("12. -", NumberOfValue("IFCLABEL('12 m')"));
}

TEST(NumbersOf, OtherTextsAndReferencesAreNone) {
  EXPECT_EQ("- -", NumberOfValue("IFCLABEL('a,(1.')"));
  EXPECT_EQ("- -", NumberOfValue("IFCLABEL('Infinity')"));
  EXPECT_EQ("- -", NumberOfValue("IFCLABEL('')"));
  EXPECT_EQ("- -", NumberOfValue("IFCBOOLEAN(.T.)"));
  EXPECT_EQ("- -", NumberOfValue("$"));
  EXPECT_EQ("- - - -", Numbers("#1=IFCPRESENTATIONLAYERASSIGNMENT($,$,(#2),$);"
                               "#2=IFCSHAPEREPRESENTATION($,$,$,());"));
}

TEST(NumbersOf, OfAListTheFirstCounts) {
  EXPECT_EQ("1.", Numbers("#1=IFCCARTESIANPOINT((1.,2.,3.));"));
  EXPECT_EQ("4.", Numbers("#1=IFCCARTESIANPOINTLIST3D(((4.,2.,3.),(5.,6.,7.)));"));
}

TEST(NumbersOf, AnObjectWithoutArgumentsHasOneWithoutANumber) {
  EXPECT_EQ("-", Numbers("#1=IFCVERTEX();"));
}

// Longer than what is written at once.
TEST(NumbersOf, ArgumentsMayBeLong) {
  const std::string text(20000, 'x');
  EXPECT_EQ("- - 1.5 -",
            Numbers("#1=IFCPROPERTYSINGLEVALUE('" + text + "','" + text + "',IFCREAL(1.5),$);"));
}

}  // namespace corvel
