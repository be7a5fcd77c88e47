// Records as text, cut and put together again.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "step/carried/carried_text.h"
#include "step/carried/record_text.h"

namespace corvel {
namespace {

using Views = std::vector<std::string_view>;

TEST(RecordText, ARecordIsCutAtItsOuterCommas) {
  const RecordText record = CutRecord("#12=IFCNEW('a,b',(1,2),IFCX(#3,$),*);");
  EXPECT_EQ("IFCNEW", record.name);
  EXPECT_EQ((Views{"'a,b'", "(1,2)", "IFCX(#3,$)", "*"}), record.arguments);
  EXPECT_TRUE(record.IsPlain());
}

TEST(RecordText, BlanksAndCommentsAroundArgumentsAreGlue) {
  const RecordText record =
      CutRecord("/* #1=IFCOLD(); */\n#12 = IFC_NEW ( 1 /*,*/,\n\t(2 , 3) ) ;");
  EXPECT_EQ("IFC_NEW", record.name);
  EXPECT_EQ((Views{"1", "(2 , 3)"}), record.arguments);
  EXPECT_EQ((Views{" ", " /*,*/,\n\t", " "}), record.glue);
  EXPECT_FALSE(record.IsPlain());
}

TEST(RecordText, QuotesInStringsAreDoubled) {
  EXPECT_EQ((Views{"'it''s, (so'", "2"}), CutRecord("#1=A('it''s, (so',2);").arguments);
}

TEST(RecordText, AQuoteMayBeALetterOfAnotherPage) {
  EXPECT_EQ((Views{"'a\\S\\'b'", "2"}), CutRecord("#1=A('a\\S\\'b',2);").arguments);
  EXPECT_EQ((Views{"'a\\\\S\\'", "2"}), CutRecord("#1=A('a\\\\S\\',2);").arguments);
}

TEST(RecordText, UnderscoresAroundTheNumberAreBlanks) {
  EXPECT_EQ("_A_", CutRecord("_#1 _=_A_(2);").name);
}

TEST(RecordText, EmptyBracketsHoldNoArgument) {
  EXPECT_EQ(Views{}, CutRecord("#1=A();").arguments);
  EXPECT_EQ(Views{" "}, CutRecord("#1=A( );").glue);
}

TEST(RecordText, NothingBesideACommaIsAnEmptyArgument) {
  EXPECT_EQ((Views{"1", "", "2", ""}), CutRecord("#1=A(1,,2,);").arguments);
  EXPECT_EQ((Views{"", ""}), CutRecord("#1=A(,);").arguments);
}

TEST(RecordText, OpenBracketsAndStringsEndWithTheText) {
  EXPECT_EQ((Views{"1", "(2"}), CutRecord("#1=A(1,(2;").arguments);
  EXPECT_EQ((Views{"1", "'2;"}), CutRecord("#1=A(1,'2;").arguments);
  EXPECT_EQ((Views{"1", "2"}), CutRecord("#1=A(1,2").arguments);
}

TEST(RecordText, AComplexInstanceIsOneArgumentWithoutAName) {
  const RecordText record = CutRecord("#1=(IFCA(1)IFCB(2,3));");
  EXPECT_EQ("", record.name);
  EXPECT_TRUE(record.hasBrackets);
  EXPECT_EQ(Views{"IFCA(1)IFCB(2,3)"}, record.arguments);
}

TEST(RecordText, WhatHasNoBracketIsAllName) {
  const RecordText record = CutRecord("#1= 'a;b' ;");
  EXPECT_FALSE(record.hasBrackets);
  EXPECT_EQ("'a;b'", record.name);
}

// --- References ----------------------------------------------------------------------------------

class Node final : public IFC::IfcComplexType {};

class CarriedTextTest : public testing::Test {
 protected:
  CarriedTextTest() {
    one_.marker = 71;
    two_.marker = 72;
  }

  std::string Written(std::string_view text) {
    const CarriedText carried = CarryText(
        text,
        [this](std::uint32_t number) -> IFC::IfcEntity* {
          return number == 1 ? &one_ : number == 2 ? &two_ : nullptr;
        },
        pool_);
    return TextOf(carried, [](const CarriedReference& reference) {
      return reference.target != nullptr ? reference.target->marker : reference.number;
    });
  }

  MemoryPool pool_{1024};
  Node one_;
  Node two_;
};

TEST_F(CarriedTextTest, ReferencesGetTheNumbersOfTheirObjects) {
  EXPECT_EQ("#71", Written("#1"));
  EXPECT_EQ("(#72 , IFCX(#71),$)", Written("(#2 , IFCX(#1),$)"));
}

TEST_F(CarriedTextTest, NumbersInStringsAndCommentsAreText) {
  EXPECT_EQ("('#1',/* #2 */'it''s #2')", Written("('#1',/* #2 */'it''s #2')"));
}

TEST_F(CarriedTextTest, ANumberOfNothingStaysWhatItIs) {
  EXPECT_EQ("(#3,#0,#,#99999999999)", Written("(#3,#0,#,#99999999999)"));
}

TEST_F(CarriedTextTest, ADeletedMemberLeavesItsList) {
  one_.marker = IFC::kDeleted;
  EXPECT_EQ("(#72)", Written("(#1,#2)"));
  EXPECT_EQ("(#72)", Written("(#2,#1)"));
  EXPECT_EQ("(#72,#72)", Written("(#2,#1,#2)"));
  EXPECT_EQ("((),'a')", Written("((#1,#1),'a')"));
}

TEST_F(CarriedTextTest, ADeletedObjectOutsideOfListsIsAbsent) {
  one_.marker = IFC::kDeleted;
  EXPECT_EQ("$", Written("#1"));
  EXPECT_EQ("IFCX($,#72)", Written("IFCX(#1,#2)"));
}

TEST(WithoutNumbers, TextsThatDifferInNumbersAloneBecomeEqual) {
  std::vector<std::string_view> numbers;
  EXPECT_EQ("(#,'#3',#)", WithoutNumbers("(#1,'#3',#22)", &numbers));
  EXPECT_EQ((Views{"1", "22"}), numbers);
  EXPECT_EQ("( #7 ,'#3', #8 )", WithNumbers("( #1 ,'#3', #2 )", Views{"7", "8"}));
  EXPECT_EQ(std::nullopt, WithNumbers("#1", Views{"7", "8"}));
  EXPECT_EQ(std::nullopt, WithNumbers("(#1,#2)", Views{"7"}));
}

}  // namespace
}  // namespace corvel
