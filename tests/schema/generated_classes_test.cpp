// What generated classes do, shown on the small schema in generator/tiny.schema: it has one
// attribute of every kind, and its golden classes are built into this program.
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "TINY/class_tests.h"
#include "TINY/classes.h"
#include "TINY/enums.h"
#include "schema/record_model.h"
#include "step/factories.h"
#include "step/reader/parser.h"
#include "support/memory_streams.h"
#include "support/recorded_reports.h"

namespace TINY {
extern const corvel::FactoryTable kFactories;
}

namespace corvel::test {

namespace {

using Messages = std::vector<std::string>;

// A model of the small schema. Records are filed under 1, 2, 3 ...
class GeneratedClass : public testing::Test {
 protected:
  GeneratedClass() {
    parser_.factories = &TINY::kFactories;
    parser_.mainContainer =
        std::make_unique<IFC::MainContainer>(RecordedReports::Reporter, nullptr, 1 << 16);
  }

  // Reads `arguments`, such as "('g',$)", into an object.
  void Read(IFC::IfcEntity& object, std::string_view arguments) {
    parser_.scanner =
        std::make_unique<Scanner>(std::make_unique<MemoryInputStream>(std::string(arguments) + ";"),
                                  RecordedReports::Reporter);
    parser_.scanner->NextToken();
    parser_.ReadArguments(&object);
  }

  template <class Class>
  Class& Add(std::string_view arguments) {
    auto* const object = parser_.Pool().New<Class>();
    object->SetMarker(++count_);
    parser_.mainContainer->AddEntityByOrginalNumber(object, count_);
    Read(*object, arguments);
    return *object;
  }

  Messages Reported() const {
    Messages messages;
    for (const Report& report : *reports_) messages.push_back(Narrow(report.message));
    return messages;
  }

 private:
  RecordedReports reports_;
  Parser parser_{true, RecordedReports::Reporter, nullptr};
  std::uint32_t count_ = 0;
};

// The children as (object, can be lost).
using Children = std::vector<std::pair<const IFC::IfcEntity*, bool>>;
Children ChildrenOf(const IFC::IfcEntity& object) {
  IFC::ChildQueue queue;
  object.collectChildren(queue);
  Children children;
  for (std::size_t i = 0; i < queue.Size(); ++i) {
    children.emplace_back(queue[i].entity, queue[i].canLose);
  }
  return children;
}

// --- Mandatory attributes ------------------------------------------------------------------------

TEST_F(GeneratedClass, EveryMandatoryKindIsWrittenAsItWasRead) {
  Add<TINY::TinyPlainPart>("('p','part')");
  Add<TINY::TinyUnit>("(.LENGTH.)");
  Add<TINY::TinyStyle>("('s')");
  const auto& object = Add<TINY::TinyMandatory>(
      "('g','name',#1,TINYLABEL('x'),#2,1.5,2.,3,4,5,6,'seven','eight','nine',.T.,.F.,.U.,.T.,"
      ".AJAR.,.RIGHT.,.B.,(10,20,30),(0.5,1.,0.25),#3,.T.,.F.)");
  EXPECT_EQ(
      "TINYMANDATORY('g','name',#1,TINYLABEL('x'),#2,1.5E+00,2.,3,4,5,6,'seven','eight','nine',"
      ".T.,.F.,.U.,.T.,.AJAR.,.RIGHT.,.B.,(10,20,30),(5.E-01,1.,2.5E-01),#3,.T.,.F.)",
      Written(&object));
  EXPECT_EQ(Messages{}, Reported());
}

TEST_F(GeneratedClass, AbsentMandatoryValuesBecomeDefaultsAndReferencesStars) {
  const auto& object = Add<TINY::TinyMandatory>(
      "($,$,$,$,$,$,$,$,$,$,$,$,$,$,.T.,$,.T.,$,.OPEN.,.LEFT.,.A.,$,$,$,.T.,$)");
  EXPECT_EQ(
      "TINYMANDATORY('','',*,*,*,0.,0.,0,0,0,0,'','','',.T.,.F.,.T.,.U.,.OPEN.,.LEFT.,.A.,(),(),*,."
      "T.,.F.)",
      Written(&object));
  EXPECT_EQ(Messages{}, Reported());
}

TEST_F(GeneratedClass, PlainBooleansLogicalsAndEnumerationsHaveNoAbsentForm) {
  const auto& object =
      Add<TINY::TinyMandatory>("('g','n',$,$,$,$,$,$,$,$,$,$,$,$,$,$,$,$,$,$,$,$,$,$,$,$)");
  EXPECT_EQ(Messages(6, "Expected: enumeration value. Got: empty argument.\n"), Reported());
  EXPECT_EQ(
      "TINYMANDATORY('g','n',*,*,*,0.,0.,0,0,0,0,'','','',.F.,.F.,.U.,.U.,.NOTDEFINED.,"
      ".NOTDEFINED.,.B.,(),(),*,.F.,.F.)",
      Written(&object));
}

TEST_F(GeneratedClass, NewObjectHasTheDefaultsOfAbsentValues) {
  const TINY::TinyMandatory object;
  EXPECT_EQ(
      "TINYMANDATORY('','',*,*,*,0.,0.,0,0,0,0,'','','',.F.,.F.,.U.,.U.,.NOTDEFINED.,"
      ".NOTDEFINED.,.B.,(),(),*,.F.,.F.)",
      Written(&object));
}

TEST_F(GeneratedClass, ReferenceToAnotherClassIsDroppedWithoutAWord) {
  Add<TINY::TinyUnit>("(.AREA.)");
  const auto& object = Add<TINY::TinyOptional>("('g','n',#1,#1,#1)");
  EXPECT_EQ(nullptr, object.Part);
  EXPECT_EQ(nullptr, object.Value);
  EXPECT_NE(nullptr, object.Unit);
  EXPECT_EQ(Messages{}, Reported());
}

// --- Optional attributes -------------------------------------------------------------------------

TEST_F(GeneratedClass, EveryOptionalKindIsWrittenAsItWasRead) {
  Add<TINY::TinyPlainPart>("('p','part')");
  Add<TINY::TinyUnit>("(.LENGTH.)");
  const auto& object = Add<TINY::TinyOptional>(
      "('g','name',#1,TINYPOSITIVELENGTH(2.),#2,1.5,2.,3,4,5,'six',.T.,.F.,.T.,.U.,.F.,.SHUT.,"
      "(1,2,3),(1.,1.,1.))");
  EXPECT_EQ(
      "TINYOPTIONAL('g','name',#1,TINYPOSITIVELENGTH(2.),#2,1.5E+00,2.,3,4,5,'six',.T.,.F.,.T.,"
      ".U.,.F.,.SHUT.,(1,2,3),(1.,1.,1.))",
      Written(&object));
  EXPECT_EQ(Messages{}, Reported());
}

TEST_F(GeneratedClass, AbsentOptionalAttributesAreDollars) {
  const TINY::TinyOptional blank;
  const std::string wanted = "TINYOPTIONAL('g','n',$,$,$,$,$,$,$,$,$,$,$,$,$,$,$,$,$)";
  EXPECT_EQ(wanted,
            Written(&Add<TINY::TinyOptional>("('g','n',$,$,$,$,$,$,$,$,$,$,$,$,$,$,$,$,$)")));
  EXPECT_EQ(wanted,
            Written(&Add<TINY::TinyOptional>("('g','n',*,*,*,*,*,*,*,*,*,*,*,*,*,*,*,*,*)")));
  EXPECT_EQ(wanted, Written(&Add<TINY::TinyOptional>("('g','n')")));
  EXPECT_EQ("TINYOPTIONAL('','',$,$,$,$,$,$,$,$,$,$,$,$,$,$,$,$,$)", Written(&blank));
  EXPECT_EQ(Messages{}, Reported());
}

TEST_F(GeneratedClass, OptionalReferenceThatLeadsNowhereIsAbsent) {
  const auto& object = Add<TINY::TinyOptional>("('g','n',#77)");
  EXPECT_FALSE(object.PartPresent);
}

TEST_F(GeneratedClass, SecondReadReplacesEveryAttribute) {
  Add<TINY::TinyPlainPart>("('p','part')");
  auto& object = Add<TINY::TinyOptional>(
      "('g','name',#1,TINYLENGTH(2.),$,1.5,2.,3,4,5,'six',.T.,.T.,.T.,.T.,.T.,.OPEN.,(1,2,3),"
      "(1.,1.,1.))");
  Read(object, "('h','')");
  EXPECT_EQ("TINYOPTIONAL('h','',$,$,$,$,$,$,$,$,$,$,$,$,$,$,$,$,$)", Written(&object));
  EXPECT_EQ(nullptr, object.Part);
  EXPECT_EQ(0.0, object.Real);
  EXPECT_EQ(0, object.Integer);
  EXPECT_EQ(u"", object.Text.ToWide());
  EXPECT_EQ(1, object.Boolean);
  EXPECT_EQ(2, object.Logical);
  EXPECT_EQ(3, object.State);
  EXPECT_TRUE(object.Angle.empty());
}

// --- Lists ---------------------------------------------------------------------------------------

constexpr std::string_view kLists =
    "('g','n',(#1,#2),(#1,TINYINTEGER(3)),(),(#2),((#1,#2),()),((#2)),(1.,2.),(3.),((1.,2.),()),"
    "((3.)),(1,2),(3),((1,2),()),((3)),('a','b'),('c'),(1,2),(3),(.T.,.F.),(.T.),(.U.),(.T.,.F.),"
    "(.OPEN.,.SHUT.),(.AJAR.))";

TEST_F(GeneratedClass, EveryListIsWrittenAsItWasRead) {
  Add<TINY::TinyPlainPart>("('p','one')");
  Add<TINY::TinyPlainPart>("('q','two')");
  const auto& object = Add<TINY::TinyAggregates>(kLists);
  // #1 is no value, so it is dropped from the second list.
  std::string wanted = "TINYAGGREGATES" + std::string(kLists);
  wanted.replace(wanted.find("(#1,TINY"), 4, "(");
  EXPECT_EQ(wanted, Written(&object));
  EXPECT_EQ(Messages{}, Reported());
}

TEST_F(GeneratedClass, AbsentListsAreEmptyOrDollars) {
  EXPECT_EQ("TINYAGGREGATES('g','n',(),(),(),$,(),$,(),$,(),$,(),$,(),$,(),$,(),$,(),$,(),$,(),$)",
            Written(&Add<TINY::TinyAggregates>("('g','n')")));
  EXPECT_EQ(Messages{}, Reported());
}

// --- Children ------------------------------------------------------------------------------------

TEST_F(GeneratedClass, MandatoryReferencesCannotBeLostAndNullIsNoChild) {
  const auto& part = Add<TINY::TinyPlainPart>("('p','part')");
  const auto& style = Add<TINY::TinyStyle>("($)");
  const auto& object = Add<TINY::TinyMandatory>(
      "('g','n',#1,TINYLABEL('x'),$,$,$,$,$,$,$,$,$,$,.T.,$,.T.,$,.OPEN.,.LEFT.,.A.,$,$,#2,.F.,.F."
      ")");
  EXPECT_EQ((Children{{&part, false}, {object.Value, false}, {&style, false}}), ChildrenOf(object));
  EXPECT_TRUE(object.Value->inlineValue);
  EXPECT_FALSE(object.Value->isComplexType());
}

TEST_F(GeneratedClass, OptionalReferencesCanBeLostAndCountOnlyWhenPresent) {
  const auto& part = Add<TINY::TinyPlainPart>("('p','part')");
  auto& object = Add<TINY::TinyOptional>("('g','n',#1)");
  EXPECT_EQ((Children{{&part, true}}), ChildrenOf(object));
  object.UnitPresent = true;
  EXPECT_EQ((Children{{&part, true}, {nullptr, true}}), ChildrenOf(object));
  object.PartPresent = object.UnitPresent = false;
  EXPECT_EQ(Children{}, ChildrenOf(object));
}

TEST_F(GeneratedClass, MembersOfAllListsAreChildrenInOrder) {
  const auto& one = Add<TINY::TinyPlainPart>("('p','one')");
  const auto& two = Add<TINY::TinyPlainPart>("('q','two')");
  auto& object =
      Add<TINY::TinyAggregates>("('g','n',(#1,#2),(TINYINTEGER(3)),(#2),(#1),((#1),(#2)),((#2)))");
  const IFC::IfcEntity* const value = object.MoreParts[0];
  EXPECT_EQ((Children{{&one, true},
                      {&two, true},
                      {value, true},
                      {&two, true},
                      {&one, true},
                      {&one, true},
                      {&two, true},
                      {&two, true}}),
            ChildrenOf(object));
  object.OptionalPartsPresent = object.OptionalPartGridPresent = false;
  EXPECT_EQ(6u, ChildrenOf(object).size());
}

TEST_F(GeneratedClass, ValueWithMembersHasThemAsChildren) {
  const auto& one = Add<TINY::TinyPlainPart>("('p','one')");
  const auto& object = Add<TINY::TinyOptional>("('g','n',$,TINYPARTSET((#1)))");
  EXPECT_EQ((Children{{&one, true}}), ChildrenOf(*object.Value));
}

TEST_F(GeneratedClass, MembersOfAValueAreChildrenOfTheRecordThatItStandsIn) {
  const auto& one = Add<TINY::TinyPlainPart>("('p','one')");
  auto& optional = Add<TINY::TinyOptional>("('g','n',$,TINYPARTSET((#1)))");
  EXPECT_EQ((Children{{optional.Value, true}, {&one, true}}), ChildrenOf(optional));
  optional.ValuePresent = false;
  EXPECT_EQ(Children{}, ChildrenOf(optional));
  const auto& mandatory = Add<TINY::TinyMandatory>("('g','n',$,TINYPARTSET((#1)))");
  EXPECT_EQ((Children{{mandatory.Value, false}, {&one, true}}), ChildrenOf(mandatory));
  const auto& list = Add<TINY::TinyAggregates>("('g','n',$,(TINYPARTSET((#1)),TINYINTEGER(3)))");
  EXPECT_EQ((Children{{list.MoreParts[0], true}, {list.MoreParts[1], true}, {&one, true}}),
            ChildrenOf(list));
}

// --- Members that a class lives on ---------------------------------------------------------------

TEST_F(GeneratedClass, LivesOnItsFirstMandatoryListOnly) {
  auto& one = Add<TINY::TinyPlainPart>("('p','one')");
  auto& two = Add<TINY::TinyPlainPart>("('q','two')");
  const auto& object = Add<TINY::TinyAggregates>("('g','n',(#1,#2),(TINYINTEGER(3)),(#2),(#1))");
  EXPECT_FALSE(object.hasNoLiveMembers());
  one.marker = IFC::kDeleted;
  EXPECT_FALSE(object.hasNoLiveMembers());
  two.marker = IFC::kDeleted;
  EXPECT_TRUE(object.hasNoLiveMembers());
  EXPECT_TRUE(Add<TINY::TinyAggregates>("('g','n')").hasNoLiveMembers());
  // The second list says nothing.
  one.marker = 1;
  EXPECT_FALSE(Add<TINY::TinyAggregates>("('g','n',(#1),())").hasNoLiveMembers());
}

TEST_F(GeneratedClass, OthersNeverLackMembers) {
  EXPECT_FALSE(TINY::TinyOptional().hasNoLiveMembers());
  EXPECT_FALSE(TINY::TinyPartSet().hasNoLiveMembers());
}

// --- Values --------------------------------------------------------------------------------------

class TypedValue : public GeneratedClass, public testing::WithParamInterface<const char*> {};

TEST_P(TypedValue, IsWrittenInPlace) {
  Add<TINY::TinyPlainPart>("('p','one')");
  const auto& object = Add<TINY::TinyOptional>("('g','n',$," + std::string(GetParam()) + ")");
  EXPECT_EQ("TINYOPTIONAL('g','n',$," + std::string(GetParam()) + ",$,$,$,$,$,$,$,$,$,$,$,$,$,$,$)",
            Written(&object));
  EXPECT_EQ(Messages{}, Reported());
}

INSTANTIATE_TEST_SUITE_P(OfEveryGroup, TypedValue,
                         testing::Values("TINYLENGTH(1.5E+00)", "TINYPOSITIVELENGTH(2.)",
                                         "TINYNUMBER(3)", "TINYPAIR((1.,2.))", "TINYBINARY(7)",
                                         "TINYBOOLEAN(.T.)", "TINYINTEGER(-3)", "TINYLABEL('x')",
                                         "TINYLOGICAL(.U.)", "TINYANGLE((1,2,3))",
                                         "TINYINDEX((4,5))", "TINYPOSITIVEINTEGER(9)",
                                         "TINYPARTSET((#1))"));

TEST_F(GeneratedClass, AbsentBooleanInsideItsBracketIsAnError) {
  Add<TINY::TinyOptional>("('g','n',$,TINYBOOLEAN($))");
  EXPECT_EQ(Messages{"Expected: enumeration value. Got: empty argument.\n"}, Reported());
}

TEST_F(GeneratedClass, ValueWithoutContentReadsAndWritesNothing) {
  TINY::IfcNullStyle style;
  Read(style, "()");
  EXPECT_EQ("IFCNULLSTYLE)", Written(&style));  // the bracket is taken back in place of a comma
  EXPECT_TRUE(TINY::isTinyStyleSelect.Admits(&style));
}

// --- Enumerations --------------------------------------------------------------------------------

TEST_F(GeneratedClass, ValuesWithoutANumberOrOnlyForReadingAreWrittenAsDollars) {
  EXPECT_EQ(1, TINY::kTinyDoorEnum.FindByName("BOTH")->number);
  EXPECT_EQ("$,", TINY::kTinyDoorEnum.ToText(1));
  EXPECT_EQ(".RIGHT.,", TINY::kTinyDoorEnum.ToText(3));
  EXPECT_EQ("$,", TINY::kTinySkipEnum.ToText(1));
  EXPECT_EQ(".B.,", TINY::kTinySkipEnum.ToText(2));
  EXPECT_EQ(".AJAR.,", TINY::kTinyStateEnum.ToText(1));
  EXPECT_EQ(0, TINY::kTinyUnitEnum.Fallback());  // the last row, whatever its number
}

// --- Classes -------------------------------------------------------------------------------------

TEST_F(GeneratedClass, TellsItsNameAndItsSort) {
  EXPECT_EQ(std::u16string_view(u"TinyPart"), TINY::TinyPart().getClassName());
  EXPECT_EQ(std::u16string_view(u"TinyPlainPart"), TINY::TinyPlainPart().getClassName());
  EXPECT_EQ(std::u16string_view(u"TinyLabel"), TINY::TinyLabel().getClassName());
  EXPECT_TRUE(TINY::TinyPlainPart().isComplexType());
  EXPECT_FALSE(TINY::TinyLabel().isComplexType());
}

TEST_F(GeneratedClass, IsOfTheSelectsThatAdmitItAlsoThroughOthers) {
  const TINY::TinyLength length;
  const TINY::TinyLabel label;
  EXPECT_TRUE(IsOfClass<TINY::TinyMeasureValue>(&length));
  EXPECT_TRUE(IsOfClass<TINY::TinyValue>(&length));
  EXPECT_FALSE(IsOfClass<TINY::TinyMeasureValue>(&label));
  EXPECT_TRUE(IsOfClass<TINY::TinyValue>(&label));
}

TEST_F(GeneratedClass, ImplementsTheInterfacesBoundToIt) {
  TINY::TinyPlainPart part;
  const TINY::TinyUnit unit;
  auto* const project = EntityCast<IFC::IfcProjectVirtual>(&part);
  ASSERT_NE(nullptr, project);
  project->setProjectName(u"new");
  EXPECT_EQ("TINYPLAINPART('','new')", Written(&part));
  EXPECT_NE(nullptr, EntityCast<IFC::VIfcMonetaryUnit>(&part));
  EXPECT_TRUE(TINY::isIfcUnit.Admits(&unit));
  EXPECT_FALSE(TINY::isIfcUnit.Admits(&part));
}

TEST_F(GeneratedClass, RegistryKnowsClassesAndValuesButNoSelects) {
  EXPECT_EQ(22u, TINY::kFactories.count);
  MemoryPool pool(1 << 12);
  for (const char* const key : {"TINYROOT", "TINYPLAINPART", "TINYLABEL", "IFCNULLSTYLE"}) {
    ASSERT_NE(nullptr, TINY::kFactories.Find(key)) << key;
    EXPECT_EQ(0u, TINY::kFactories.Find(key)(pool)->marker);
  }
  for (const char* const key : {"TINYVALUE", "IFCUNIT", "TINYCOLOUR", "TinyPart", ""}) {
    EXPECT_EQ(nullptr, TINY::kFactories.Find(key)) << key;
  }
}

#ifndef _MSC_VER
TEST(GeneratedLayout, FlagsFillThePaddingAndValuesAreHeldPlain) {
  // A table pointer and the members; behind them the shared base.
  constexpr std::size_t kBase = sizeof(void*) + sizeof(IFC::IfcEntity);
  EXPECT_EQ(kBase + 8 + 8, sizeof(TINY::TinyStyle));                       // a text and its flag
  EXPECT_EQ(kBase + 16, sizeof(TINY::TinyPlainPart) - 2 * sizeof(void*));  // two texts
  EXPECT_EQ(kBase + 16 + 7 * 8 + 2 * 16 + 8 * 4 + 17 + 7, sizeof(TINY::TinyOptional));
  EXPECT_EQ(kBase + 8, sizeof(TINY::TinyLength));
}
#endif

}  // namespace

}  // namespace corvel::test
