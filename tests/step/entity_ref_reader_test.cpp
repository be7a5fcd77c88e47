// Readers of references and of typed values.
#include <gtest/gtest.h>

#include "IFC4/class_tests.h"
#include "step/reader/attribute_reader.h"
#include "support/attribute_source.h"

namespace corvel {
namespace {

using namespace std::string_literals;
using test::ReferenceTo;
using test::TokenList;
using Texts = std::vector<std::string>;

constexpr const char* kExpected = "0: Expected: #, *, entity name, or number(real, integer). Got: ";

class EntityRefReader : public test::AttributeTest {
 protected:
  EntityRefReader() {
    point_ = File(1, "IFCCARTESIANPOINT", "((1.,2.))");
    wall_ = File(2, "IFCWALL", "('g')");
  }

  IFC::IfcEntity* Point(const std::string& text) {
    return ReadEntityRef(On(text), IFC4::isIfcCartesianPoint);
  }
  IFC::IfcEntity* Value(const std::string& text) {
    return ReadEntityRef(On(text), IFC4::isIfcValue);
  }
  // The value as it is written back.
  std::string WrittenValue(const std::string& text) { return ReferenceTo(Value(text)); }
  std::string Points(const std::string& text) {
    EntityList list;
    ReadEntityRefList(On(text), IFC4::isIfcCartesianPoint, list);
    std::string shown;
    for (const IFC::IfcEntity* const member : list) {
      shown += (shown.empty() ? "" : " ") + ReferenceTo(member);
    }
    return shown;
  }

  IFC::IfcEntity* point_;
  IFC::IfcEntity* wall_;
};

// --- Numbers -------------------------------------------------------------------------------------

TEST_F(EntityRefReader, ANumberThatIsFiledGivesItsObject) {
  EXPECT_EQ(point_, Point("#1,7"));
  EXPECT_EQ(TokenList{"integer 7"}, Rest());
  EXPECT_FALSE(parser_.forwardReference);
}

TEST_F(EntityRefReader, ANumberThatIsNotFiledIsAForwardReference) {
  EXPECT_EQ(nullptr, Point("#3,7"));
  EXPECT_EQ(TokenList{"integer 7"}, Rest());
  EXPECT_TRUE(parser_.forwardReference);
  EXPECT_EQ(Texts{}, Reported());
}

TEST_F(EntityRefReader, AnObjectOfAnotherClassIsNullWithoutAWord) {
  EXPECT_EQ(nullptr, Point("#2"));
  EXPECT_FALSE(parser_.forwardReference);
  EXPECT_EQ(nullptr, Value("#2"));
  EXPECT_EQ(wall_, ReadEntityRef(On("#2"), IFC4::isIfcProduct)) << "a class above its own";
  EXPECT_EQ(Texts{}, Reported());
}

TEST_F(EntityRefReader, AnAbsentReferenceIsNull) {
  for (const std::string text : {"$", "*", ")", "()"}) EXPECT_EQ(nullptr, Point(text)) << text;
  EXPECT_EQ(nullptr, Point("(),7"));
  EXPECT_EQ(TokenList{"integer 7"}, Rest());
  EXPECT_EQ(Texts{}, Reported());
}

// --- Typed values --------------------------------------------------------------------------------

TEST_F(EntityRefReader, ATypedValueIsANewInlineObject) {
  IFC::IfcEntity* const value = Value("IFCTEXT('a'),7");
  ASSERT_NE(nullptr, value);
  EXPECT_TRUE(value->inlineValue);
  EXPECT_EQ(0u, value->marker);
  EXPECT_FALSE(value->isComplexType());
  EXPECT_EQ(u"IfcText"s, value->getClassName());
  EXPECT_EQ(TokenList{"integer 7"}, Rest());
  EXPECT_NE(value, Value("IFCTEXT('a')")) << "each value is an object of its own";
}

TEST_F(EntityRefReader, TypedValuesOfEveryGroupComeBack) {
  for (const std::string text :
       {"IFCLENGTHMEASURE(1.5E+00)", "IFCREAL(3.)", "IFCINTEGER(-7)", "IFCLABEL('x')",
        "IFCLABEL('')", "IFCBOOLEAN(.T.)", "IFCLOGICAL(.U.)", "IFCPOSITIVELENGTHMEASURE(2.)",
        "IFCCOUNTMEASURE(3)", "IFCNUMERICMEASURE(2.5)", "IFCDATETIME('2024-03-07')",
        "IFCCOMPLEXNUMBER((1.,2.5E-01))", "IFCCOMPOUNDPLANEANGLEMEASURE((1,2,3,4))",
        "IFCTIMESTAMP(1)", "IFCIDENTIFIER('i')", "IFCBINARY(101)"}) {
    EXPECT_EQ(text, WrittenValue(text + ",7"));
    EXPECT_EQ(TokenList{"integer 7"}, Rest()) << text;
  }
  EXPECT_EQ(Texts{}, Reported());
}

TEST_F(EntityRefReader, ACountKeepsSixDigits) {
  EXPECT_EQ("IFCCOUNTMEASURE(1.23457e+06)", WrittenValue("IFCCOUNTMEASURE(1234567.)"));
}

TEST_F(EntityRefReader, AValueWithoutContentIsItsDefault) {
  EXPECT_EQ("IFCREAL(0.)", WrittenValue("IFCREAL($)"));
  EXPECT_EQ("IFCLABEL('')", WrittenValue("IFCLABEL()"));
  EXPECT_EQ(Texts{}, Reported());
  AnswerNo(1);
  EXPECT_EQ("IFCBOOLEAN(.F.)", WrittenValue("IFCBOOLEAN($)"));
  EXPECT_EQ((Texts{"0: Expected: enumeration value. Got: empty argument.\n"}), Reported());
}

TEST_F(EntityRefReader, AnExtraBracketAroundAValueIsTakenAndNotWritten) {
  EXPECT_EQ("IFCREAL(1.)", WrittenValue("(IFCREAL(1.)),7"));
  EXPECT_EQ(TokenList{"integer 7"}, Rest());
}

TEST_F(EntityRefReader, AnEntityMayStandInlineToo) {
  EXPECT_EQ("IFCCARTESIANPOINT((1.))", ReferenceTo(Point("IFCCARTESIANPOINT((1.)),7")));
  EXPECT_EQ(TokenList{"integer 7"}, Rest());
}

TEST_F(EntityRefReader, AValueThatIsNotAdmittedIsDropped) {
  EXPECT_EQ(nullptr, Point("IFCLABEL('x'),7"));
  EXPECT_EQ(TokenList{"integer 7"}, Rest());
  EXPECT_EQ(nullptr, ReadEntityRef(On("IFCNONNEGATIVELENGTHMEASURE(1.)"),
                                   IFC4::isIfcHatchLineDistanceSelect))
      << "nor is a wrapper admitted because its base is";
  EXPECT_NE(nullptr,
            ReadEntityRef(On("IFCPOSITIVELENGTHMEASURE(1.)"), IFC4::isIfcHatchLineDistanceSelect));
  EXPECT_EQ(Texts{}, Reported());
}

TEST_F(EntityRefReader, TheValuelessStyleLeavesItsBracketAndLosesTheOther) {
  IFC::IfcEntity* const style =
      ReadEntityRef(On("IFCNULLSTYLE(.NULL.),7"), IFC4::isIfcPresentationStyleSelect);
  EXPECT_EQ((TokenList{")", "integer 7"}), Rest());
  EXPECT_EQ("IFCNULLSTYLE)", ReferenceTo(style));
}

TEST_F(EntityRefReader, AValueMayHoldReferences) {
  IFC::IfcEntity* const set = ReadEntityRef(On("IFCPROPERTYSETDEFINITIONSET((#9)),7"),
                                            IFC4::isIfcPropertySetDefinitionSelect);
  ASSERT_NE(nullptr, set);
  EXPECT_TRUE(parser_.forwardReference);
  EXPECT_EQ("IFCPROPERTYSETDEFINITIONSET(())", ReferenceTo(set));
  EXPECT_EQ(TokenList{"integer 7"}, Rest());
}

// --- Names that mean nothing ---------------------------------------------------------------------

TEST_F(EntityRefReader, AnUnknownNameIsReportedAndItsBracketTaken) {
  EXPECT_EQ(nullptr, Value("IFCNOTHING('x',(1,(2)),.T.),7"));
  EXPECT_EQ((Texts{"0: unknown_entity_name_in_schema IFCNOTHING"}), Reported());
  EXPECT_EQ(TokenList{"integer 7"}, Rest());
  EXPECT_TRUE(platform_.boxes.empty()) << "nobody is asked";
}

TEST_F(EntityRefReader, TheNameOfASelectIsUnknown) {
  EXPECT_EQ(nullptr, Value("IFCVALUE('x'),7"));
  EXPECT_EQ((Texts{"0: unknown_entity_name_in_schema IFCVALUE"}), Reported());
}

TEST_F(EntityRefReader, AnUnknownNameInAnExtraBracketTakesBoth) {
  EXPECT_EQ(nullptr, Value("(IFCNOTHING('x')),7"));
  EXPECT_EQ((Texts{"0: unknown_entity_name_in_schema IFCNOTHING"}), Reported());
  EXPECT_EQ(TokenList{"integer 7"}, Rest());
}

TEST_F(EntityRefReader, AnUnknownNameTakesNothingBeyondItsRecord) {
  EXPECT_EQ(nullptr, Value("IFCNOTHING,7"));
  EXPECT_EQ(TokenList{"integer 7"}, Rest());
  EXPECT_EQ(nullptr, Value("IFCNOTHING((1;#2"));
  EXPECT_EQ((TokenList{";", "#2"}), Rest());
  EXPECT_EQ(nullptr, Value("(IFCNOTHING(1);#2"));
  EXPECT_EQ((TokenList{";", "#2"}), Rest());
  EXPECT_EQ(nullptr, Value("IFCNOTHING("));
  EXPECT_EQ(Texts(4, "0: unknown_entity_name_in_schema IFCNOTHING"), Reported());
}

// --- Bare numbers --------------------------------------------------------------------------------

TEST_F(EntityRefReader, ABareRealMakesTheRecordUnreadable) {
  EXPECT_THROW(Value("0.5,7"), UnreadableRecord);
  EXPECT_THROW(Value("inf,7"), UnreadableRecord);
}

TEST_F(EntityRefReader, ABareIntegerStandsForDimensions) {
  IFC::IfcEntity* const exponents = ReadEntityRef(On("5,7"), IFC4::isIfcDimensionalExponents);
  ASSERT_NE(nullptr, exponents);
  EXPECT_EQ(u"IfcDimensionalExponents"s, exponents->getClassName());
  EXPECT_FALSE(exponents->inlineValue);
  EXPECT_EQ(0u, exponents->marker);
  EXPECT_EQ("*", ReferenceTo(exponents)) << "neither inline nor numbered";
  EXPECT_EQ(TokenList{"integer 7"}, Rest());
}

TEST_F(EntityRefReader, ABareIntegerIsNothingElse) {
  AnswerNo(1);
  EXPECT_EQ(nullptr, Point("5,7"));
  EXPECT_EQ((Texts{kExpected + "IntegerDataTypeToken.\n"s}), Reported());
  EXPECT_EQ(TokenList{"integer 7"}, Rest());
}

// --- Wrong tokens --------------------------------------------------------------------------------

TEST_F(EntityRefReader, NothingElseIsAReference) {
  const struct {
    std::string text;
    std::string name;
    TokenList rest;
  } cases[] = {{"'x',7", "WStringToken", {"integer 7"}},
               {".T.,7", "enumeration value", {"integer 7"}},
               {"=7", "EqualToken", {"integer 7"}},
               {"&7", "UnknownSignToken", {"integer 7"}},
               {";7", "SemicolonToken", {";", "integer 7"}},
               {"(#1),7", "OpenBracketToken", {"#1", ")", "integer 7"}},
               {"(0.5),7", "OpenBracketToken", {"real 0.5", ")", "integer 7"}},
               {"((#1)),7", "OpenBracketToken", {"(", "#1", ")", ")", "integer 7"}}};
  for (const auto& [text, name, rest] : cases) {
    AnswerNo(1);
    EXPECT_EQ(nullptr, Point(text));
    EXPECT_EQ((Texts{kExpected + name + ".\n"}), Reported());
    EXPECT_EQ(0u, platform_.answers.size()) << "the user has been asked";
    EXPECT_EQ(rest, Rest()) << text;
  }
}

TEST_F(EntityRefReader, AWrongTokenEndsTheReadWhenTheUserAgrees) {
  EXPECT_EQ(nullptr, Point("'x',7"));
  EXPECT_EQ((Texts{kExpected + "WStringToken.\n"s}), Reported());
  EXPECT_EQ(1u, QuestionsAsked());
  EXPECT_TRUE(parser_.IsStopped());
}

TEST_F(EntityRefReader, AtTheEndOfTheInputTheReadEndsWithoutAQuestion) {
  EXPECT_EQ(nullptr, Point(""));
  EXPECT_EQ((Texts{kExpected + "EndOfFileToken.\n"s}), Reported());
  EXPECT_EQ(0u, QuestionsAsked());
  EXPECT_TRUE(parser_.IsStopped());
}

TEST_F(EntityRefReader, AStoppedReaderTouchesNothing) {
  EXPECT_EQ(nullptr, ReadEntityRef(Stopped("#1,7"), IFC4::isIfcCartesianPoint));
  EXPECT_EQ((TokenList{"#1", "integer 7"}), Rest());
  EntityList list;
  ReadEntityRefList(Stopped("(#1),7"), IFC4::isIfcCartesianPoint, list);
  EXPECT_TRUE(list.empty());
  EXPECT_EQ((TokenList{"(", "#1", ")", "integer 7"}), Rest());
}

// --- Lists ---------------------------------------------------------------------------------------

TEST_F(EntityRefReader, ListsLeaveOutWhatComesBackNull) {
  EXPECT_EQ("#1 #1", Points("(#1,$,#1),7"));
  EXPECT_EQ(TokenList{"integer 7"}, Rest());
  EXPECT_EQ("#1", Points("(#2,#1,*)")) << "a wall is no point";
  EXPECT_FALSE(parser_.forwardReference);
  EXPECT_EQ("#1", Points("(#8,#1,#9)"));
  EXPECT_TRUE(parser_.forwardReference);
  EXPECT_EQ(Texts{}, Reported());
}

TEST_F(EntityRefReader, AnAbsentListOfReferencesIsEmpty) {
  for (const std::string text : {"$", "*", ")", "()", "($,$)"}) EXPECT_EQ("", Points(text)) << text;
  EXPECT_EQ(Texts{}, Reported());
}

TEST_F(EntityRefReader, AListReplacesWhatWasThere) {
  EntityList list;
  ReadEntityRefList(On("(#1,#1)"), IFC4::isIfcCartesianPoint, list);
  EXPECT_EQ(2u, list.size());
  ReadEntityRefList(On("(#1)"), IFC4::isIfcCartesianPoint, list);
  EXPECT_EQ(1u, list.size());
  ReadEntityRefList(On("$"), IFC4::isIfcCartesianPoint, list);
  EXPECT_TRUE(list.empty());
}

TEST_F(EntityRefReader, EntitiesAndValuesStandSideBySide) {
  EntityList list;
  ReadEntityRefList(On("(#1,IFCPARAMETERVALUE(0.5)),7"), IFC4::isIfcTrimmingSelect, list);
  ASSERT_EQ(2u, list.size());
  EXPECT_EQ("#1", ReferenceTo(list[0]));
  EXPECT_EQ("IFCPARAMETERVALUE(5.E-01)", ReferenceTo(list[1]));
}

TEST_F(EntityRefReader, AListWithoutABracketStays) {
  AnswerNo(1);
  EXPECT_EQ("", Points("#1,7"));
  EXPECT_EQ((Texts{"0: Expected: OpenBracketToken. Got: IdentifierToken.\n"}), Reported());
  EXPECT_EQ((TokenList{"#1", "integer 7"}), Rest());
}

TEST_F(EntityRefReader, AListOfReferencesEndsWithTheRecordOrTheInput) {
  EXPECT_EQ("#1", Points("(#1;#2"));
  EXPECT_EQ((TokenList{";", "#2"}), Rest());
  EXPECT_EQ("#1", Points("(#1"));
  EXPECT_EQ("", Points("("));
  EXPECT_EQ(Texts{}, Reported());
}

TEST_F(EntityRefReader, ListsOfReferencesMayStandInLists) {
  List<EntityList> lists;
  ReadEntityRefLists(On("((#1,#1),$,(),(#9,#1)),7"), IFC4::isIfcCartesianPoint, lists);
  ASSERT_EQ(4u, lists.size());
  EXPECT_EQ(2u, lists[0].size());
  EXPECT_TRUE(lists[1].empty());
  EXPECT_TRUE(lists[2].empty());
  EXPECT_EQ(1u, lists[3].size());
  EXPECT_EQ(TokenList{"integer 7"}, Rest());
}

TEST_F(EntityRefReader, AListInsideAListOfTheSameKindKeepsBoth) {
  File(3, "IFCPROPERTYSET", "('h')");
  EntityList list;
  ReadEntityRefList(On("(#3,IFCPROPERTYSETDEFINITIONSET((#3,#3)),#3),7"),
                    IFC4::isIfcPropertySetDefinitionSelect, list);
  ASSERT_EQ(3u, list.size());
  EXPECT_EQ("IFCPROPERTYSETDEFINITIONSET((#3,#3))", ReferenceTo(list[1]));
  EXPECT_EQ(list[0], list[2]);
}

}  // namespace
}  // namespace corvel
