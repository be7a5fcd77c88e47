// Readers of single values. Lists of them: list_reader_test.cpp; references:
// entity_ref_reader_test.cpp.
#include "step/reader/attribute_reader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "IFC4/enums.h"
#include "support/attribute_source.h"

namespace corvel {
namespace {

using namespace std::string_literals;
using test::TokenList;
using Texts = std::vector<std::string>;

// A token that a reader cannot take, and how messages name it.
struct WrongToken {
  std::string text;
  std::string name;
};

const WrongToken kString{"'x'", "WStringToken"};
const WrongToken kInteger{"7", "IntegerDataTypeToken"};
const WrongToken kReal{"1.5", "RealDataTypeToken"};
const WrongToken kIdentifier{"#1", "IdentifierToken"};
const WrongToken kEnumeration{".T.", "enumeration value"};
const WrongToken kWord{"WORD", "entity name"};
const WrongToken kDollar{"$", "empty argument"};
const WrongToken kStar{"*", "empty argument"};
const WrongToken kOpenBracket{"(", "OpenBracketToken"};
const WrongToken kCloseBracket{")", "closing bracket"};
const WrongToken kSemicolon{";", "SemicolonToken"};
const WrongToken kEqual{"=", "EqualToken"};
const WrongToken kStrange{"&", "UnknownSignToken"};

using WrongTokens = std::vector<WrongToken>;

class AttributeReader : public test::AttributeTest {
 protected:
  // `read` meets a token that it cannot take: it says so once and asks. When the user goes on, it
  // gives its default, what ends something stays, and all else is taken; otherwise the read ends.
  template <class Read>
  void ExpectWrongTokens(const WrongTokens& tokens, const std::string& expected, Read read) {
    for (const WrongToken& token : tokens) {
      const Texts message{"0: Expected: " + expected + ". Got: " + token.name + ".\n"};
      AnswerNo(1);
      read(On(token.text + ",7"));
      EXPECT_EQ(message, Reported()) << token.text;
      const bool stays = token.text == ";" || token.text == ")";
      EXPECT_EQ((stays ? TokenList{token.text, "integer 7"} : TokenList{"integer 7"}), Rest())
          << token.text;
      EXPECT_EQ(0u, platform_.answers.size()) << "the user has been asked";

      read(On(token.text + ",7"));
      EXPECT_EQ(message, Reported()) << token.text;
      EXPECT_TRUE(parser_.IsStopped()) << token.text;
    }
  }
};

// --- Absence -------------------------------------------------------------------------------------

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

// --- Reals ---------------------------------------------------------------------------------------

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
  ExpectWrongTokens(
      {kString, kIdentifier, kEnumeration, kOpenBracket, kSemicolon, kEqual, kStrange},
      "IfcInteger or IfcReal", [](Parser& parser) { EXPECT_EQ(0.0, ReadReal(parser)); });
  ExpectUntouchedWhenStopped([](Parser& parser) { EXPECT_EQ(0.0, ReadReal(parser)); });
}

// --- Integers ------------------------------------------------------------------------------------

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
  ExpectWrongTokens({kString,
                     kIdentifier,
                     kEnumeration,
                     kOpenBracket,
                     kSemicolon,
                     kEqual,
                     kWord,
                     {"NANO", "entity name"}},
                    "IfcInteger", [](Parser& parser) { EXPECT_EQ(0, ReadInteger(parser)); });
  ExpectUntouchedWhenStopped([](Parser& parser) { EXPECT_EQ(0, ReadInteger(parser)); });
}

TEST_F(AttributeReader, BinariesAreIntegersOnly) {
  EXPECT_EQ(101, ReadBinary(On("101)")));
  EXPECT_EQ(0, ReadBinary(On("$)")));
  EXPECT_EQ(0, ReadBinary(On(")")));
  ExpectWrongTokens({kReal,
                     kString,
                     {"NAN", "entity name"},
                     kEnumeration,
                     {"\"", "UnknownSignToken"},
                     kSemicolon},
                    "IfcBinary", [](Parser& parser) { EXPECT_EQ(0, ReadBinary(parser)); });
  ExpectUntouchedWhenStopped([](Parser& parser) { EXPECT_EQ(0, ReadBinary(parser)); });
}

// --- Texts ---------------------------------------------------------------------------------------

TEST_F(AttributeReader, EqualTextsAreOnePointer) {
  const ModelText first = ReadString(On("'wall'"));
  EXPECT_EQ(u"wall", first.ToWide());
  EXPECT_EQ(first.Address(), ReadString(On("'wall'")).Address());
  EXPECT_NE(first.Address(), ReadString(On("'Wall'")).Address());
  EXPECT_EQ(u"", ReadString(On("''")).ToWide());
}

TEST_F(AttributeReader, HowATextIsEscapedMakesNoDifferenceInThePool) {
  const ModelText first = ReadString(On("'it''s a wall'"));
  EXPECT_TRUE(first.IsPlain());
  EXPECT_EQ(u"it's a wall", first.ToWide());
  EXPECT_EQ(first.Address(), ReadString(On("'it\\X\\27s a wall'")).Address());
  EXPECT_EQ(first.Address(), ReadString(On("'it\\X2\\0027\\X0\\s a wall'")).Address());
  EXPECT_EQ(u"\u5EFA", ReadString(On("'\\X2\\5EFA\\X0\\'")).ToWide());
}

TEST_F(AttributeReader, AnAbsentTextIsTheEmptyOneOfThePool) {
  for (const std::string text : {"$", "*", ")"}) {
    EXPECT_EQ(parser_.Pool().EmptyWide().Address(), ReadString(On(text)).Address());
    EXPECT_EQ(parser_.Pool().EmptyNarrow(), ReadGuid(On(text)));
  }
  EXPECT_EQ(Texts{}, Reported());
}

TEST_F(AttributeReader, ATypedTextLeavesItsBracket) {
  EXPECT_EQ(u"x", ReadString(On("IFCLABEL('x'),7")).ToWide());
  EXPECT_EQ((TokenList{")", "integer 7"}), Rest()) << "which then reads as an absent value";
}

TEST_F(AttributeReader, NothingElseIsAText) {
  ExpectWrongTokens({kInteger, kReal, kIdentifier, kEnumeration, kOpenBracket, kSemicolon, kEqual},
                    "String", [](Parser& parser) { EXPECT_EQ(u"", ReadString(parser).ToWide()); });
  ExpectUntouchedWhenStopped([](Parser& parser) { EXPECT_EQ(u"", ReadString(parser).ToWide()); });
}

TEST_F(AttributeReader, ATypedTextThatIsNotThereIsAWrongToken) {
  AnswerNo(1);
  EXPECT_EQ(u"", ReadString(On("IFCLABEL(7),8")).ToWide());
  EXPECT_EQ((Texts{"0: Expected: String. Got: IntegerDataTypeToken.\n"}), Reported());
  EXPECT_EQ((TokenList{")", "integer 8"}), Rest());
}

TEST_F(AttributeReader, AGuidIsTheLowByteOfEachCharacter) {
  EXPECT_EQ("0Ab$_"s, ReadGuid(On("'0Ab$_'")));
  EXPECT_EQ("\xE4\xAC\x84"s, ReadGuid(On("'\\X2\\00E420AC\\X0\\\x84'")));
  EXPECT_EQ(ReadGuid(On("'guid'")), ReadGuid(On("'guid'")));
}

TEST_F(AttributeReader, NothingElseIsAGuid) {
  ExpectWrongTokens({kInteger, kIdentifier, kEnumeration, kOpenBracket, kSemicolon, kWord},
                    "CharString", [](Parser& parser) { EXPECT_EQ(""s, ReadGuid(parser)); });
  ExpectUntouchedWhenStopped([](Parser& parser) { EXPECT_EQ(""s, ReadGuid(parser)); });
}

// --- Booleans and enumerations -------------------------------------------------------------------

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
  EXPECT_EQ((Texts{"0: Enume IfcWallTypeEnum does not contain: \"X\""}), Reported());
  EXPECT_TRUE(parser_.IsStopped());
}

TEST_F(AttributeReader, NothingElseIsAnEnumerationNotEvenAnAbsentOne) {
  const WrongTokens wrong{kDollar, kStar,        kCloseBracket, kInteger,   kString,
                          kWord,   kOpenBracket, kSemicolon,    kIdentifier};
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

}  // namespace
}  // namespace corvel
