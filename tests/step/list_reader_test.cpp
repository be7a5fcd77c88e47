// Readers of lists of values. Lists of references: entity_ref_reader_test.cpp.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "step/reader/attribute_reader.h"
#include "support/attribute_source.h"

namespace corvel {
namespace {

using namespace std::string_literals;
using test::TokenList;
using test::Visible;
using Texts = std::vector<std::string>;
using ListReader = test::AttributeTest;

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

TEST_F(ListReader, ListsOfNumbersHoldWhatTheirElementsRead) {
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

TEST_F(ListReader, ListsOfTextsAndEnumerationsDoSoToo) {
  List<ModelText> texts;
  ReadStringList(On("('a','')"), texts);
  ASSERT_EQ(2u, texts.size());
  EXPECT_EQ(u"a", texts[0].ToWide());
  List<std::int32_t> numbers;
  ReadBooleanList(On("(.T.,.F.)"), numbers);
  EXPECT_EQ("0 1", Items(numbers));
  ReadLogicalList(On("(.T.,.F.,.U.)"), numbers);
  EXPECT_EQ("0 1 2", Items(numbers));
  ReadEnumList(On("(.U.,.T.)"), kLogicalDataType, numbers);
  EXPECT_EQ("2 0", Items(numbers));
  EXPECT_EQ(Texts{}, Reported());
}

TEST_F(ListReader, ADollarInAListIsTheDefaultOfTheElementAndStays) {
  List<double> reals;
  ReadRealList(On("(1.5,$,*)"), reals);
  EXPECT_EQ("1.5 0 0", Items(reals));
  List<std::int32_t> numbers;
  ReadBooleanList(On("($,.T.)"), numbers);
  EXPECT_EQ("1 0", Items(numbers));
  List<ModelText> texts;
  ReadStringList(On("($)"), texts);
  ASSERT_EQ(1u, texts.size());
  EXPECT_EQ(u"", texts[0].ToWide());
  List<List<double>> lists;
  ReadRealLists(On("((1.),$,())"), lists);
  EXPECT_EQ("(1)()()", Items(lists));
  EXPECT_EQ(Texts{}, Reported());
}

TEST_F(ListReader, AnAbsentListIsEmptyAndSoIsAnEmptyOne) {
  List<double> reals;
  for (const std::string text : {"$", "*", ")", "()"}) {
    ReadRealList(On("(1.,2.)"), reals);
    ReadRealList(On(text), reals);
    EXPECT_TRUE(reals.empty()) << text;
  }
  EXPECT_EQ(Texts{}, Reported());
}

TEST_F(ListReader, ListsMayStandInLists) {
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

TEST_F(ListReader, AListWithoutABracketIsAWrongTokenThatStays) {
  const struct {
    const char* text;
    const char* name;
    const char* token;
  } cases[] = {{"7", "IntegerDataTypeToken", "integer 7"},
               {"'x'", "WStringToken", "'x'"},
               {"#1", "IdentifierToken", "#1"},
               {".T.", "enumeration value", "enumeration T"},
               {";", "SemicolonToken", ";"}};
  for (const auto& [text, name, token] : cases) {
    AnswerNo(1);
    List<double> reals;
    ReadRealList(On("(1.)"), reals);
    ReadRealList(On(text), reals);
    EXPECT_TRUE(reals.empty());
    EXPECT_EQ((Texts{"0: Expected: OpenBracketToken. Got: "s + name + ".\n"}), Reported());
    EXPECT_EQ(TokenList{token}, Rest());
  }
}

TEST_F(ListReader, WhatIsNoInnerListIsTakenSoThatTheOthersAreRead) {
  AnswerNo(1);
  List<List<double>> lists;
  ReadRealLists(On("((1.),7,(2.)),8"), lists);
  EXPECT_EQ("(1)(2)", Items(lists));
  EXPECT_EQ((Texts{"0: Expected: OpenBracketToken. Got: IntegerDataTypeToken.\n"}), Reported());
  EXPECT_EQ(TokenList{"integer 8"}, Rest());
}

TEST_F(ListReader, AWrongElementIsItsDefaultWhenTheUserGoesOn) {
  AnswerNo(2);
  List<std::int32_t> integers;
  ReadIntegerList(On("(1,'x',(,3)"), integers);
  EXPECT_EQ("1 0 0 3", Items(integers));
  EXPECT_EQ((Texts{"0: Expected: IfcInteger. Got: WStringToken.\n",
                   "0: Expected: IfcInteger. Got: OpenBracketToken.\n"}),
            Reported());
}

TEST_F(ListReader, AListEndsWithTheRecordOrTheInput) {
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

TEST_F(ListReader, AListEndsWhereTheUserStopsTheRead) {
  List<std::int32_t> integers;
  ReadIntegerList(On("(1,'x',3)"), integers);
  EXPECT_TRUE(parser_.IsStopped());
  EXPECT_EQ((Texts{"0: Expected: IfcInteger. Got: WStringToken.\n"}), Reported());
  ExpectUntouchedWhenStopped([](Parser& parser) {
    List<double> reals;
    ReadRealList(parser, reals);
    EXPECT_TRUE(reals.empty());
    List<List<double>> lists;
    ReadRealLists(parser, lists);
    EXPECT_TRUE(lists.empty());
  });
}

TEST_F(ListReader, AListMayHoldAMillionNumbers) {
  std::string text = "(0";
  for (int i = 1; i < 1'000'000; ++i) text += ",1";
  List<std::int32_t> integers;
  ReadIntegerList(On(text + "),7"), integers);
  EXPECT_EQ(1'000'000u, integers.size());
  EXPECT_EQ(TokenList{"integer 7"}, Rest());
}

}  // namespace
}  // namespace corvel
