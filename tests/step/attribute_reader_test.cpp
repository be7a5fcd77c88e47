// Readers of scalars and of aggregates of them. References: entity_ref_reader_test.cpp.
#include "step/reader/attribute_reader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "IFC4/enums.h"
#include "support/attribute_source.h"

namespace corvel {
namespace {

using namespace std::string_literals;
using test::TokenList;
using test::Visible;
using Texts = std::vector<std::string>;

class AttributeReader : public test::AttributeTest {
 protected:
  // `read` meets a token that it cannot take: it says so once, asks, and gives its default. What
  // ends something stays, all else goes.
  template <class Read>
  void ExpectWrongTokens(const Texts& texts, const std::string& expected, Read read) {
    for (const std::string& text : texts) {
      AnswerNo(1);
      Parser& parser = On(text + ",7");
      const Token& token = *parser.scanner->PeekToken();
      const WideString name = token.getName();
      const bool stays = token.Is(TokenType::SemicolonToken) ||
                         token.Is(TokenType::CloseBracketToken) ||
                         token.Is(TokenType::EndOfFileToken);
      const std::string kept = Visible(token);
      read(parser);
      const std::string shown = name == u"EnumerationToken"      ? "enumeration value"
                                : name == u"EntityNameToken"     ? "entity name"
                                : name == u"EmptyParameterToken" ? "empty argument"
                                : name == u"CloseBracketToken"   ? "closing bracket"
                                                                 : Narrow(name);
      EXPECT_EQ((Texts{"0: Expected: " + expected + ". Got: " + shown + ".\n"}), Reported())
          << text;
      EXPECT_EQ((stays ? TokenList{kept, "integer 7"} : TokenList{"integer 7"}), Rest()) << text;
      EXPECT_EQ(0u, platform_.answers.size()) << "the user has been asked";
    }
  }
  // A stopped reader gives its value and touches nothing.
  template <class Read>
  void ExpectUntouchedWhenStopped(Read read) {
    read(Stopped("$,7"));
    EXPECT_EQ((TokenList{"$", "integer 7"}), Rest());
    EXPECT_EQ(Texts{}, Reported());
    Parser& parser = On("$,7");
    parser.scanner->Stop();
    read(parser);
    EXPECT_EQ(Texts{}, Reported());
  }
};

// --- Absence
// -----------------------------------------------------------------------------------------

TEST_F(AttributeReader, IsAbsentTakesADollarOrAStar) {
  EXPECT_TRUE(IsAbsent(On("$,7")));
  EXPECT_EQ(TokenList{"integer 7"}, Rest());
  EXPECT_TRUE(IsAbsent(On("*,7")));
  EXPECT_EQ(TokenList{"integer 7"}, Rest());
}

TEST_F(AttributeReader, IsAbsentLeavesAClosingBracket) {
  EXPECT_TRUE(IsAbsent(On(");")));
  EXPECT_TRUE(IsAbsent(parser_)) << "so that all further attributes are absent too";
  EXPECT_EQ((TokenList{")", ";"}), Rest());
}

TEST_F(AttributeReader, IsAbsentSaysNoToEverythingElse) {
  for (const std::string text : {"7", "#1", "'x'", "(", ";", "", ".T.", "IFCREAL(1.)"}) {
    EXPECT_FALSE(IsAbsent(On(text))) << text;
  }
  EXPECT_FALSE(IsAbsent(Stopped("$")));
  EXPECT_EQ(TokenList{"$"}, Rest());
}

TEST_F(AttributeReader, AListEndsAtItsBracketAndWithTheRecordAndTheInput) {
  for (const std::string text : {")", ";", ""}) {
    EXPECT_TRUE(IsListEnd(On(text))) << text;
    EXPECT_EQ(text.empty() ? TokenList{} : TokenList{text}, Rest());
  }
  for (const std::string text : {"7", "$", "(", "#1", "=", "&"}) {
    EXPECT_FALSE(IsListEnd(On(text))) << text;
  }
  EXPECT_TRUE(IsListEnd(Stopped("7")));
}

// --- Reals
// -------------------------------------------------------------------------------------------

TEST_F(AttributeReader, RealsAndIntegersAreReals) {
  EXPECT_EQ(1.5, ReadReal(On("1.5,$")));
  EXPECT_EQ(TokenList{"$"}, Rest());
  EXPECT_EQ(5.0, ReadReal(On("5)")));
  EXPECT_EQ(3e9, ReadReal(On("3000000000)"))) << "in full";
  EXPECT_TRUE(std::isinf(ReadReal(On("inf)"))));
}

TEST_F(AttributeReader, AnAbsentRealIsZero) {
  EXPECT_EQ(0.0, ReadReal(On("$")));
  EXPECT_EQ(0.0, ReadReal(On("*")));
  EXPECT_EQ(0.0, ReadReal(On(")")));
  EXPECT_EQ(Texts{}, Reported());
}

TEST_F(AttributeReader, NotANumberIsZero) {
  for (const std::string word : {"NAN", "nan", "NaN"}) {
    EXPECT_EQ(0.0, ReadReal(On(word + ",7")));
    EXPECT_EQ(TokenList{"integer 7"}, Rest());
  }
  EXPECT_EQ(Texts{}, Reported());
}

TEST_F(AttributeReader, ATypedRealIsARealWhateverItsName) {
  EXPECT_EQ(2.5, ReadReal(On("IFCREAL(2.5),7")));
  EXPECT_EQ(TokenList{"integer 7"}, Rest());
  EXPECT_EQ(2.5, ReadReal(On("ANYTHING(2.5),7")));
  EXPECT_EQ(Texts{}, Reported());
}

TEST_F(AttributeReader, ATypedIntegerIsNoReal) {
  AnswerNo(1);
  EXPECT_EQ(0.0, ReadReal(On("IFCREAL(5),7")));
  EXPECT_EQ((Texts{"0: Expected: IfcInteger or IfcReal. Got: IntegerDataTypeToken.\n"}),
            Reported());
  EXPECT_EQ((TokenList{")", "integer 7"}), Rest());
}

TEST_F(AttributeReader, ATypedRealThatIsNotThereLeavesWhatEnds) {
  AnswerNo(1);
  EXPECT_EQ(0.0, ReadReal(On("IFCREAL();")));
  EXPECT_EQ((Texts{"0: Expected: IfcInteger or IfcReal. Got: closing bracket.\n"}), Reported());
  EXPECT_EQ((TokenList{")", ";"}), Rest());
}

TEST_F(AttributeReader, NothingElseIsAReal) {
  ExpectWrongTokens({"'x'", "#1", ".T.", "(", ";", "=", "&"}, "IfcInteger or IfcReal",
                    [](Parser& parser) { EXPECT_EQ(0.0, ReadReal(parser)); });
  ExpectUntouchedWhenStopped([](Parser& parser) { EXPECT_EQ(0.0, ReadReal(parser)); });
}

// --- Integers
// ------------------------------------------------------------------------------------------

TEST_F(AttributeReader, RealsInIntegersAreCut) {
  EXPECT_EQ(7, ReadInteger(On("7)")));
  EXPECT_EQ(5, ReadInteger(On("5.7)")));
  EXPECT_EQ(-5, ReadInteger(On("-5.7)")));
  EXPECT_EQ(0, ReadInteger(On("-0.9)")));
}

TEST_F(AttributeReader, IntegersSaturate) {
  constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
  constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
  EXPECT_EQ(kMost, ReadInteger(On("99999999999)")));
  EXPECT_EQ(kLeast, ReadInteger(On("-99999999999)")));
  EXPECT_EQ(kMost, ReadInteger(On("2147483647.5)")));
  EXPECT_EQ(kMost, ReadInteger(On("1.E300)")));
  EXPECT_EQ(kMost - 1, ReadInteger(On("2147483646.9)")));
  EXPECT_EQ(kLeast, ReadInteger(On("-1.E300)")));
  EXPECT_EQ(kLeast, ReadInteger(On("-2147483648.9)")));
  EXPECT_EQ(kMost, ReadInteger(On("inf)")));
}

TEST_F(AttributeReader, AnAbsentIntegerIsZero) {
  for (const std::string text : {"$", "*", ")", "NAN", "Nan"}) EXPECT_EQ(0, ReadInteger(On(text)));
  EXPECT_EQ(Texts{}, Reported());
}

TEST_F(AttributeReader, NothingElseIsAnInteger) {
  ExpectWrongTokens({"'x'", "#1", ".T.", "(", ";", "=", "IFCINTEGER", "NANO"}, "IfcInteger",
                    [](Parser& parser) { EXPECT_EQ(0, ReadInteger(parser)); });
  ExpectUntouchedWhenStopped([](Parser& parser) { EXPECT_EQ(0, ReadInteger(parser)); });
}

TEST_F(AttributeReader, BinariesAreIntegersOnly) {
  EXPECT_EQ(101, ReadBinary(On("101)")));
  EXPECT_EQ(0, ReadBinary(On("$)")));
  EXPECT_EQ(0, ReadBinary(On(")")));
  ExpectWrongTokens({"1.5", "'x'", "NAN", ".T.", "\"", ";"}, "IfcBinary",
                    [](Parser& parser) { EXPECT_EQ(0, ReadBinary(parser)); });
  ExpectUntouchedWhenStopped([](Parser& parser) { EXPECT_EQ(0, ReadBinary(parser)); });
}

// --- Texts
// ---------------------------------------------------------------------------------------------

TEST_F(AttributeReader, EqualTextsAreOnePointer) {
  const char16_t* const first = ReadString(On("'wall'"));
  EXPECT_EQ(u"wall"s, first);
  EXPECT_EQ(first, ReadString(On("'wall'")));
  EXPECT_NE(first, ReadString(On("'Wall'")));
  EXPECT_EQ(u""s, ReadString(On("''")));
}

TEST_F(AttributeReader, AnAbsentTextIsTheEmptyOneOfThePool) {
  for (const std::string text : {"$", "*", ")"}) {
    EXPECT_EQ(parser_.Pool().EmptyWide(), ReadString(On(text)));
    EXPECT_EQ(parser_.Pool().EmptyNarrow(), ReadGuid(On(text)));
  }
  EXPECT_EQ(Texts{}, Reported());
}

TEST_F(AttributeReader, ATypedTextLeavesItsBracket) {
  EXPECT_EQ(u"x"s, ReadString(On("IFCLABEL('x'),7")));
  EXPECT_EQ((TokenList{")", "integer 7"}), Rest()) << "which then reads as an absent value";
}

TEST_F(AttributeReader, NothingElseIsAText) {
  ExpectWrongTokens({"7", "1.5", "#1", ".T.", "(", ";", "="}, "String",
                    [](Parser& parser) { EXPECT_EQ(u""s, ReadString(parser)); });
  ExpectUntouchedWhenStopped([](Parser& parser) { EXPECT_EQ(u""s, ReadString(parser)); });
  AnswerNo(1);
  EXPECT_EQ(u""s, ReadString(On("IFCLABEL(7),8")));
  EXPECT_EQ((Texts{"0: Expected: String. Got: IntegerDataTypeToken.\n"}), Reported());
  EXPECT_EQ((TokenList{")", "integer 8"}), Rest());
}

TEST_F(AttributeReader, AGuidIsTheLowByteOfEachCharacter) {
  EXPECT_EQ("0Ab$_"s, ReadGuid(On("'0Ab$_'")));
  EXPECT_EQ("\xE4\xAC\x84"s, ReadGuid(On("'\\X2\\00E420AC\\X0\\\x84'")));
  EXPECT_EQ(ReadGuid(On("'guid'")), ReadGuid(On("'guid'")));
}

TEST_F(AttributeReader, NothingElseIsAGuid) {
  ExpectWrongTokens({"7", "#1", ".T.", "(", ";", "IFCGLOBALLYUNIQUEID"}, "CharString",
                    [](Parser& parser) { EXPECT_EQ(""s, ReadGuid(parser)); });
  ExpectUntouchedWhenStopped([](Parser& parser) { EXPECT_EQ(""s, ReadGuid(parser)); });
}

// --- Booleans and enumerations
// ---------------------------------------------------------------------------

TEST_F(AttributeReader, TrueIsZero) {
  EXPECT_EQ(0, ReadBoolean(On(".T.")));
  EXPECT_EQ(1, ReadBoolean(On(".F.")));
  EXPECT_EQ(0, ReadLogical(On(".T.")));
  EXPECT_EQ(1, ReadLogical(On(".F.")));
  EXPECT_EQ(2, ReadLogical(On(".U.")));
}

TEST_F(AttributeReader, UnknownTextsAreNamedWithTheirEnumeration) {
  AnswerNo(5);
  EXPECT_EQ(1, ReadBoolean(On(".U.,7")));
  EXPECT_EQ(1, ReadBoolean(On(".t.,7")));
  EXPECT_EQ(2, ReadLogical(On(".TRUE.,7")));
  EXPECT_EQ(8, ReadEnum(On(".X.,7"), IFC4::kIfcDoorStyleConstructionEnum));
  EXPECT_EQ(TokenList{"integer 7"}, Rest());
  ReadEnum(On(".shear.,7"), IFC4::kIfcWallTypeEnum);
  EXPECT_EQ((Texts{"0: Enume BooleanDataType does not contain: \"U\"",
                   "0: Enume BooleanDataType does not contain: \"t\"",
                   "0: Enume LogicalDataType does not contain: \"TRUE\"",
                   "0: Enume IfcDoorStyleConstructionEnum does not contain: \"X\"",
                   "0: Enume IfcWallTypeEnum does not contain: \"shear\""}),
            Reported());
  EXPECT_EQ(0u, platform_.answers.size());
}

TEST_F(AttributeReader, AnUnknownTextEndsTheReadWhenTheUserAgrees) {
  EXPECT_EQ(IFC4::kIfcWallTypeEnum.Fallback(), ReadEnum(On(".X."), IFC4::kIfcWallTypeEnum));
  EXPECT_TRUE(parser_.IsStopped());
}

TEST_F(AttributeReader, EnumerationsHaveNoAbsentForm) {
  const Texts wrong{"$", "*", ")", "7", "'T'", "T", "(", ";", "#1"};
  ExpectWrongTokens(wrong, "enumeration value",
                    [](Parser& parser) { EXPECT_EQ(1, ReadBoolean(parser)); });
  ExpectWrongTokens(wrong, "enumeration value",
                    [](Parser& parser) { EXPECT_EQ(2, ReadLogical(parser)); });
  ExpectWrongTokens(wrong, "enumeration value", [](Parser& parser) {
    EXPECT_EQ(IFC4::kIfcWallTypeEnum.Fallback(), ReadEnum(parser, IFC4::kIfcWallTypeEnum));
  });
  ExpectUntouchedWhenStopped([](Parser& parser) { EXPECT_EQ(1, ReadBoolean(parser)); });
  ExpectUntouchedWhenStopped([](Parser& parser) { EXPECT_EQ(2, ReadLogical(parser)); });
}

TEST_F(AttributeReader, WithErrorsIgnoredEnumerationsAreLoggedAndReadingGoesOn) {
  parser_.ignoreEnumErrors = true;
  const std::int32_t fallback = IFC4::kIfcWallTypeEnum.Fallback();
  EXPECT_EQ(fallback, ReadEnum(On(".X.,7"), IFC4::kIfcWallTypeEnum));
  EXPECT_EQ(TokenList{"integer 7"}, Rest());
  EXPECT_EQ(fallback, ReadEnum(On("'x',7"), IFC4::kIfcWallTypeEnum));
  EXPECT_EQ(TokenList{"integer 7"}, Rest());
  EXPECT_EQ(1, ReadBoolean(On(")")));
  EXPECT_EQ(TokenList{")"}, Rest());
  EXPECT_EQ(2, ReadLogical(On(".X.")));
  EXPECT_EQ((Texts{"2: Enume IfcWallTypeEnum does not contain: \"X\"",
                   "2: Expected: enumeration value. Got: WStringToken.\n",
                   "2: Expected: enumeration value. Got: closing bracket.\n",
                   "2: Enume LogicalDataType does not contain: \"X\""}),
            Reported());
  EXPECT_TRUE(platform_.boxes.empty());
}

TEST_F(AttributeReader, AMandatoryBooleanValueMayBeAbsent) {
  for (const std::string text : {"$", "*", ")"}) {
    EXPECT_EQ(1, ReadBooleanValue(On(text)));
    EXPECT_EQ(2, ReadLogicalValue(On(text)));
  }
  EXPECT_EQ(0, ReadBooleanValue(On(".T.")));
  EXPECT_EQ(0, ReadLogicalValue(On(".T.")));
  EXPECT_EQ(Texts{}, Reported());
  ExpectUntouchedWhenStopped([](Parser& parser) { EXPECT_EQ(1, ReadBooleanValue(parser)); });
  ExpectUntouchedWhenStopped([](Parser& parser) { EXPECT_EQ(2, ReadLogicalValue(parser)); });
}

// --- Aggregates
// --------------------------------------------------------------------------------------------

// All items of a list of numbers: "0 1.5 3".
template <class Item>
std::string Items(const List<Item>& list) {
  std::string shown;
  for (const Item& item : list) shown += (shown.empty() ? "" : " ") + Visible(double(item));
  return shown;
}
template <class Item>
std::string Items(const List<List<Item>>& lists) {
  std::string shown;
  for (const List<Item>& list : lists) shown += "(" + Items(list) + ")";
  return shown;
}

TEST_F(AttributeReader, ListsOfNumbers) {
  List<double> reals;
  ReadRealList(On("(1.5,2,NAN,IFCREAL(2.5)),7"), reals);
  EXPECT_EQ("1.5 2 0 2.5", Items(reals));
  EXPECT_EQ(TokenList{"integer 7"}, Rest());
  List<std::int32_t> integers;
  ReadIntegerList(On("(1,-2.5,99999999999)"), integers);
  EXPECT_EQ("1 -2 2147483647", Items(integers));
  ReadBinaryList(On("(0,1,101)"), integers);
  EXPECT_EQ("0 1 101", Items(integers));
  EXPECT_EQ(Texts{}, Reported());
}

TEST_F(AttributeReader, ListsOfTextsAndEnumerations) {
  List<const char16_t*> texts;
  ReadStringList(On("('a','')"), texts);
  ASSERT_EQ(2u, texts.size());
  EXPECT_EQ(u"a"s, texts[0]);
  List<std::int32_t> numbers;
  ReadBooleanList(On("(.T.,.F.)"), numbers);
  EXPECT_EQ("0 1", Items(numbers));
  ReadLogicalList(On("(.T.,.F.,.U.)"), numbers);
  EXPECT_EQ("0 1 2", Items(numbers));
  ReadEnumList(On("(.U.,.T.)"), kLogicalDataType, numbers);
  EXPECT_EQ("2 0", Items(numbers));
  EXPECT_EQ(Texts{}, Reported());
}

TEST_F(AttributeReader, ADollarInAListIsTheDefaultOfTheElementAndStays) {
  List<double> reals;
  ReadRealList(On("(1.5,$,*)"), reals);
  EXPECT_EQ("1.5 0 0", Items(reals));
  List<std::int32_t> numbers;
  ReadBooleanList(On("($,.T.)"), numbers);
  EXPECT_EQ("1 0", Items(numbers));
  List<const char16_t*> texts;
  ReadStringList(On("($)"), texts);
  ASSERT_EQ(1u, texts.size());
  EXPECT_EQ(u""s, texts[0]);
  List<List<double>> lists;
  ReadRealLists(On("((1.),$,())"), lists);
  EXPECT_EQ("(1)()()", Items(lists));
  EXPECT_EQ(Texts{}, Reported());
}

TEST_F(AttributeReader, AnAbsentListIsEmptyAndSoIsAnEmptyOne) {
  List<double> reals;
  for (const std::string text : {"$", "*", ")", "()"}) {
    ReadRealList(On("(1.,2.)"), reals);
    ReadRealList(On(text), reals);
    EXPECT_TRUE(reals.empty()) << text;
  }
  EXPECT_EQ(Texts{}, Reported());
}

TEST_F(AttributeReader, ListsOfLists) {
  List<List<double>> reals;
  ReadRealLists(On("((1.,2.),(),(3.)),7"), reals);
  EXPECT_EQ("(1 2)()(3)", Items(reals));
  EXPECT_EQ(TokenList{"integer 7"}, Rest());
  List<List<std::int32_t>> integers;
  ReadIntegerLists(On("((1,2),(3))"), integers);
  EXPECT_EQ("(1 2)(3)", Items(integers));
  ReadIntegerLists(On("$"), integers);
  EXPECT_TRUE(integers.empty());
}

TEST_F(AttributeReader, AListWithoutABracketIsAWrongTokenThatStays) {
  for (const std::string text : {"7", "'x'", "#1", ".T.", ";"}) {
    AnswerNo(1);
    List<double> reals;
    ReadRealList(On("(1.)"), reals);
    const std::string name = Narrow(On(text).scanner->PeekToken()->getName());
    ReadRealList(parser_, reals);
    EXPECT_TRUE(reals.empty());
    EXPECT_EQ((Texts{"0: Expected: OpenBracketToken. Got: " +
                     (name == "EnumerationToken" ? "enumeration value" : name) + ".\n"}),
              Reported());
    EXPECT_EQ(1u, Rest().size());
  }
}

TEST_F(AttributeReader, WhatIsNoInnerListIsTakenSoThatTheOthersAreRead) {
  AnswerNo(1);
  List<List<double>> lists;
  ReadRealLists(On("((1.),7,(2.)),8"), lists);
  EXPECT_EQ("(1)(2)", Items(lists));
  EXPECT_EQ((Texts{"0: Expected: OpenBracketToken. Got: IntegerDataTypeToken.\n"}), Reported());
  EXPECT_EQ(TokenList{"integer 8"}, Rest());
}

TEST_F(AttributeReader, AWrongElementIsItsDefaultWhenTheUserGoesOn) {
  AnswerNo(2);
  List<std::int32_t> integers;
  ReadIntegerList(On("(1,'x',(,3)"), integers);
  EXPECT_EQ("1 0 0 3", Items(integers));
  EXPECT_EQ(2u, Reported().size());
}

TEST_F(AttributeReader, AListEndsWithTheRecordOrTheInput) {
  List<double> reals;
  ReadRealList(On("(1,2;#3=A();"), reals);
  EXPECT_EQ("1 2", Items(reals));
  EXPECT_EQ(";", Rest().front());
  ReadRealList(On("(1,2"), reals);
  EXPECT_EQ("1 2", Items(reals));
  List<List<double>> lists;
  ReadRealLists(On("((1,2;"), lists);
  EXPECT_EQ("(1 2)", Items(lists));
  ReadRealLists(On("((1),(2"), lists);
  EXPECT_EQ("(1)(2)", Items(lists));
  EXPECT_EQ(Texts{}, Reported());
}

TEST_F(AttributeReader, AListEndsWhereTheUserStopsTheRead) {
  List<std::int32_t> integers;
  ReadIntegerList(On("(1,'x',3)"), integers);
  EXPECT_TRUE(parser_.IsStopped());
  EXPECT_EQ(1u, Reported().size());
  ExpectUntouchedWhenStopped([](Parser& parser) {
    List<double> reals;
    ReadRealList(parser, reals);
    EXPECT_TRUE(reals.empty());
    List<List<double>> lists;
    ReadRealLists(parser, lists);
    EXPECT_TRUE(lists.empty());
  });
}

TEST_F(AttributeReader, AListOfAMillionNumbers) {
  std::string text = "(0";
  for (int i = 1; i < 1'000'000; ++i) text += ",1";
  List<std::int32_t> integers;
  ReadIntegerList(On(text + "),7"), integers);
  EXPECT_EQ(1'000'000u, integers.size());
  EXPECT_EQ(TokenList{"integer 7"}, Rest());
}

}  // namespace
}  // namespace corvel
