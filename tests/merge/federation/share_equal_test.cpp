// What says the same is written once, unless it would not say the same any more.
#include "merge/federation/share_equal.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "federated_documents.h"
#include "support/small_stack.h"

namespace corvel {
namespace {

using test::FederatedDocuments;
using test::NumbersIn;
using test::PlannedRecord;
using test::Records;
using test::operator+;
using StayingNumbers = std::set<int>;

constexpr FederationChoices kShare{.shareEqual = true};

std::string LineOf(int number, const std::string& lines) {
  const std::string begin = "#" + std::to_string(number) + "=";
  std::size_t at = lines.find(begin);
  while (at != std::string::npos && at != 0 && lines[at - 1] != '\n') {
    at = lines.find(begin, at + 1);
  }
  if (at == std::string::npos) return "";
  return lines.substr(at + begin.size(), lines.find('\n', at) - at - begin.size());
}

class SharedEqual : public testing::TestWithParam<SchemaNamespace> {
 protected:
  bool IsIfc4() const { return GetParam() == SchemaNamespace::IFC4; }

  // The first model; the second has a project alone.
  std::string TextOf(const Records& records, const FederationChoices& choices = kShare) {
    FederatedDocuments models(GetParam());
    models.Add(u"a.ifc", "", records);
    models.Add(u"b.ifc", "", {});
    return models.Run(choices);
  }
  // Without the project.
  StayingNumbers Of(const Records& records, const FederationChoices& choices = kShare) {
    StayingNumbers numbers = NumbersIn(TextOf(records, choices));
    numbers.erase(1);
    return numbers;
  }
};

INSTANTIATE_TEST_SUITE_P(Releases, SharedEqual,
                         testing::Values(SchemaNamespace::IFC2X3, SchemaNamespace::IFC4),
                         [](const auto& release) {
                           return release.param == SchemaNamespace::IFC4 ? "IFC4" : "IFC2X3";
                         });

PlannedRecord PointOf(std::uint32_t number, const std::string& coordinates) {
  return {number, "IFCCARTESIANPOINT", "(" + coordinates + ")"};
}

// --- What becomes one ----------------------------------------------------------------------------

TEST_P(SharedEqual, EqualPointsAreWrittenOnceAndReferencesLeadToTheOne) {
  const std::string text = TextOf({PointOf(2, "1.,2."),
                                   PointOf(3, "1.,2."),
                                   PointOf(4, "1.,3."),
                                   {5, "IFCPOLYLINE", "(#2,#4,#3)"}});
  EXPECT_EQ((StayingNumbers{1, 2, 4, 5}), NumbersIn(text));
  EXPECT_EQ("IFCPOLYLINE((#2,#4,#2));", LineOf(5, text));
}

TEST_P(SharedEqual, WithoutTheOptionEverythingStays) {
  EXPECT_EQ((StayingNumbers{2, 3}), Of({PointOf(2, "1.,2."), PointOf(3, "1.,2.")}, {}));
}

TEST_P(SharedEqual, WhatRefersToEqualObjectsIsEqual) {
  const Records records = {
      {10, "IFCAXIS2PLACEMENT3D", "#11,#12,#13"}, {11, "IFCCARTESIANPOINT", "(0.,0.,0.)"},
      {12, "IFCDIRECTION", "(0.,0.,1.)"},         {13, "IFCDIRECTION", "(1.,0.,0.)"},
      {20, "IFCAXIS2PLACEMENT3D", "#21,#22,#23"}, {21, "IFCCARTESIANPOINT", "(0.,0.,0.)"},
      {22, "IFCDIRECTION", "(0.,0.,1.)"},         {23, "IFCDIRECTION", "(1.,0.,0.)"}};
  EXPECT_EQ((StayingNumbers{10, 11, 12, 13}), Of(records));
}

TEST_P(SharedEqual, RecordsInFrontOfWhatTheyReferToAreNoDifferent) {
  EXPECT_EQ((StayingNumbers{2, 8, 9}), Of({{2, "IFCPOLYLINE", "(#8,#9)"},
                                           {3, "IFCPOLYLINE", "(#7,#6)"},
                                           PointOf(6, "1.,1."),
                                           PointOf(7, "0.,0."),
                                           PointOf(8, "0.,0."),
                                           PointOf(9, "1.,1.")}));
}

TEST_P(SharedEqual, ObjectsOfTwoModelsBecomeOne) {
  FederatedDocuments models(GetParam());
  models.Add(u"a.ifc", "", {PointOf(2, "1.,2.")});
  models.Add(u"b.ifc", "", {PointOf(5, "1.,2."), {6, "IFCPOLYLINE", "(#5,#5)"}});
  const std::string text = models.Run(kShare);
  EXPECT_NE(std::string::npos, text.find("IFCPOLYLINE((#2,#2))")) << text;
  EXPECT_EQ(1U, NumbersIn(text).count(2));
  EXPECT_EQ(3U, NumbersIn(text).size()) << text;
}

TEST_P(SharedEqual, UnitsPersonsAndOwnerHistoriesAreWrittenOnce) {
  const std::string person = IsIfc4() ? "'me',$,$,$,$,$,$,$" : "'me',$,$,$,$,$,$,$";
  Records records;
  for (const std::uint32_t first : {10u, 20u}) {
    const auto number = [first](int i) { return "#" + std::to_string(first + i); };
    records =
        records +
        Records{{first, "IFCOWNERHISTORY", number(1) + "," + number(2) + ",$,.ADDED.,$,$,$,0"},
                {first + 1, "IFCPERSONANDORGANIZATION", number(3) + "," + number(4) + ",$"},
                {first + 2, "IFCAPPLICATION", number(4) + ",'1','A','a'"},
                {first + 3, "IFCPERSON", person},
                {first + 4, "IFCORGANIZATION", "$,'o',$,$,$"},
                {first + 5, "IFCSIUNIT", "*,.LENGTHUNIT.,.MILLI.,.METRE."}};
  }
  EXPECT_EQ((StayingNumbers{10, 11, 12, 13, 14, 15}), Of(records));
}

TEST_P(SharedEqual, PropertiesOfSeveralSetsAreWrittenOnce) {
  const std::string text = TextOf({{2, "IFCPROPERTYSINGLEVALUE", "'p',$,IFCLABEL('x'),$"},
                                   {3, "IFCPROPERTYSINGLEVALUE", "'p',$,IFCLABEL('x'),$"},
                                   {4, "IFCPROPERTYSINGLEVALUE", "'p',$,IFCTEXT('x'),$"},
                                   {5, "IFCPROPERTYSET", "'g5',$,'s',$,(#2,#4)"},
                                   {6, "IFCPROPERTYSET", "'g6',$,'s',$,(#3,#4)"}});
  EXPECT_EQ((StayingNumbers{1, 2, 4, 5, 6}), NumbersIn(text));
  EXPECT_TRUE(LineOf(6, text).ends_with(",'s',$,(#2,#4));")) << text;
}

// --- What counts as equal ------------------------------------------------------------------------

TEST_P(SharedEqual, WhatIsAbsentIsNotWhatIsEmpty) {
  EXPECT_EQ((StayingNumbers{2, 3}), Of({{2, "IFCPROPERTYSINGLEVALUE", "'p',$,$,$"},
                                        {3, "IFCPROPERTYSINGLEVALUE", "'p','',$,$"}}));
}

TEST_P(SharedEqual, ValuesOfOtherClassesDiffer) {
  EXPECT_EQ((StayingNumbers{2, 3}),
            Of({{2, "IFCDIRECTION", "(1.,2.)"}, {3, "IFCCARTESIANPOINT", "(1.,2.)"}}));
}

TEST_P(SharedEqual, ExactNumbersAreComparedToTheLastBit) {
  const Records records = {PointOf(2, "0.1,0."), PointOf(3, "0.10000000000000001,0."),
                           PointOf(4, "0.10000000000000002,0."), PointOf(5, "0.1,-0.")};
  EXPECT_EQ((StayingNumbers{2, 4, 5}),
            Of(records, {.shareEqual = true, .numbers = NumberForm::kExact}));
}

TEST_P(SharedEqual, ToldNumbersAreEqualWhenTheyAreWrittenAlike) {
  EXPECT_EQ((StayingNumbers{2}), Of({PointOf(2, "0.1,0."), PointOf(3, "0.10000000000000002,-0.")}));
}

TEST_P(SharedEqual, AToldNumberNextToAWholeOneIsThatOne) {
  const std::string text = TextOf({PointOf(2, "5800.,0."), PointOf(3, "5800.0000000000009,0."),
                                   PointOf(4, "5800.00000000001,0.")});
  EXPECT_EQ((StayingNumbers{1, 2, 4}), NumbersIn(text));
  EXPECT_EQ("IFCCARTESIANPOINT((5.80000000000001E+03,0.));", LineOf(4, text));
}

// --- What keeps its identity ---------------------------------------------------------------------

TEST_P(SharedEqual, WhatHasAGuidStays) {
  EXPECT_EQ((StayingNumbers{2, 3}),
            Of({{2, "IFCPROPERTYSET", "'g',$,'s',$,()"}, {3, "IFCPROPERTYSET", "'g',$,'s',$,()"}}));
}

TEST_P(SharedEqual, PlacementsAndRepresentationsStayAndTheirPartsAreOne) {
  EXPECT_EQ((StayingNumbers{2, 3, 4, 5, 6, 8, 10, 11}),
            Of({{2, "IFCLOCALPLACEMENT", "$,#8"},
                {3, "IFCLOCALPLACEMENT", "$,#9"},
                {4, "IFCSHAPEREPRESENTATION", "#6,'Body','Brep',(#10)"},
                {5, "IFCSHAPEREPRESENTATION", "#6,'Body','Brep',(#10)"},
                {6, "IFCGEOMETRICREPRESENTATIONCONTEXT", "$,'Model',3,$,#8,$"},
                {8, "IFCAXIS2PLACEMENT3D", "#10,$,$"},
                {9, "IFCAXIS2PLACEMENT3D", "#10,$,$"},
                PointOf(10, "0.,0.,0."),
                {11, "IFCREPRESENTATIONMAP", "#9,#4"}}));
}

TEST_P(SharedEqual, WhatRefersToItselfOverAnotherStays) {
  // Each complex property holds the other.
  EXPECT_EQ((StayingNumbers{2, 3, 4, 5}), Of({{2, "IFCCOMPLEXPROPERTY", "'a',$,'u',(#3)"},
                                              {3, "IFCCOMPLEXPROPERTY", "'a',$,'u',(#2)"},
                                              {4, "IFCCOMPLEXPROPERTY", "'a',$,'u',(#5)"},
                                              {5, "IFCCOMPLEXPROPERTY", "'a',$,'u',(#4)"}}));
}

// --- Sets, and lists that hold nothing twice -----------------------------------------------------

TEST_P(SharedEqual, TwoMembersOfOneSetStayTwo) {
  const std::string text = TextOf({{2, "IFCPROPERTYSINGLEVALUE", "'p',$,$,$"},
                                   {3, "IFCPROPERTYSINGLEVALUE", "'p',$,$,$"},
                                   {4, "IFCPROPERTYSINGLEVALUE", "'p',$,$,$"},
                                   {5, "IFCPROPERTYSET", "'g5',$,'s',$,(#3,#4)"},
                                   {6, "IFCPROPERTYSET", "'g6',$,'s',$,(#2)"}});
  EXPECT_EQ((StayingNumbers{1, 2, 4, 5, 6}), NumbersIn(text));
  EXPECT_TRUE(LineOf(5, text).ends_with(",'s',$,(#2,#4));")) << text;
}

TEST_P(SharedEqual, AUnitThatIsDerivedFromTheSameTwiceIsEqualToNoOther) {
  const auto area = [](std::uint32_t first) {
    const std::string metre = "#" + std::to_string(first + 3);
    return Records{{first, "IFCDERIVEDUNIT",
                    "(#" + std::to_string(first + 1) + ",#" + std::to_string(first + 2) +
                        "),.ANGULARVELOCITYUNIT.,$"},
                   {first + 1, "IFCDERIVEDUNITELEMENT", metre + ",1"},
                   {first + 2, "IFCDERIVEDUNITELEMENT", metre + ",1"},
                   {first + 3, "IFCSIUNIT", "*,.LENGTHUNIT.,$,.METRE."}};
  };
  EXPECT_EQ((StayingNumbers{10, 11, 12, 13, 20, 22}), Of(area(10) + area(20)));
}

TEST_P(SharedEqual, ALoopNeverHoldsAPointTwice) {
  const std::string text = TextOf({PointOf(2, "0.,0."),
                                   PointOf(3, "1.,0."),
                                   PointOf(4, "0.,1."),
                                   PointOf(5, "0.,0."),
                                   {6, "IFCPOLYLOOP", "(#2,#3,#4,#5)"}});
  EXPECT_EQ("IFCPOLYLOOP((#2,#3,#4,#5));", LineOf(6, text));
}

TEST_P(SharedEqual, ALoopThatHoldsAnEqualPointTwiceIsEqualToNoOther) {
  EXPECT_EQ((StayingNumbers{2, 3, 4, 5, 8, 9}), Of({PointOf(2, "0.,0."),
                                                    PointOf(3, "1.,0."),
                                                    PointOf(4, "0.,0."),
                                                    {5, "IFCPOLYLOOP", "(#2,#3,#4)"},
                                                    PointOf(6, "0.,0."),
                                                    PointOf(7, "1.,0."),
                                                    PointOf(8, "0.,0."),
                                                    {9, "IFCPOLYLOOP", "(#6,#7,#8)"}}));
}

TEST_P(SharedEqual, AListMayHoldAPointTwice) {
  EXPECT_EQ((StayingNumbers{2, 3, 5}), Of({PointOf(2, "0.,0."),
                                           PointOf(3, "1.,0."),
                                           PointOf(4, "0.,0."),
                                           {5, "IFCPOLYLINE", "(#2,#3,#4)"}}));
}

// --- Members that have one owner -----------------------------------------------------------------

std::string Layer(const std::string& thickness, bool isIfc4) {
  return "$," + thickness + (isIfc4 ? ",$,$,$,$,$" : ",$");
}
std::string LayerSet(const std::string& layers, bool isIfc4) {
  return "(" + layers + "),'s'" + (isIfc4 ? ",$" : "");
}

TEST_P(SharedEqual, LayersGoWithTheSetThatTheyAreOf) {
  Records records;
  for (const std::uint32_t first : {10u, 20u}) {
    const auto number = [first](int i) { return "#" + std::to_string(first + i); };
    records = records + Records{{first, "IFCMATERIALLAYERSET",
                                 LayerSet(number(1) + "," + number(2), IsIfc4())},
                                {first + 1, "IFCMATERIALLAYER", Layer("1.", IsIfc4())},
                                {first + 2, "IFCMATERIALLAYER", Layer("1.", IsIfc4())}};
  }
  EXPECT_EQ((StayingNumbers{10, 11, 12}), Of(records));
}

TEST_P(SharedEqual, LayersOfSetsThatDifferStayTheirOwn) {
  EXPECT_EQ((StayingNumbers{10, 11, 12, 13}),
            Of({{10, "IFCMATERIALLAYERSET", LayerSet("#11", IsIfc4())},
                {11, "IFCMATERIALLAYER", Layer("1.", IsIfc4())},
                {12, "IFCMATERIALLAYERSET", LayerSet("#13,#13", IsIfc4())},
                {13, "IFCMATERIALLAYER", Layer("1.", IsIfc4())}}));
}

TEST_P(SharedEqual, ALayerOfTwoSetsKeepsBothAsTheyAre) {
  EXPECT_EQ((StayingNumbers{10, 11, 12, 13, 14}),
            Of({{10, "IFCMATERIALLAYERSET", LayerSet("#13", IsIfc4())},
                {11, "IFCMATERIALLAYERSET", LayerSet("#13", IsIfc4())},
                {12, "IFCMATERIALLAYERSET", LayerSet("#14", IsIfc4())},
                {13, "IFCMATERIALLAYER", Layer("1.", IsIfc4())},
                {14, "IFCMATERIALLAYER", Layer("1.", IsIfc4())}}));
}

TEST_P(SharedEqual, MembersOfMembersGoWithTheOutermost) {
  Records records;
  for (const std::uint32_t first : {10u, 20u}) {
    const auto number = [first](int i) { return "(#" + std::to_string(first + i) + ")"; };
    records = records +
              Records{{first, "IFCPHYSICALCOMPLEXQUANTITY", "'q',$," + number(1) + ",'d',$,$"},
                      {first + 1, "IFCPHYSICALCOMPLEXQUANTITY", "'q',$," + number(2) + ",'d',$,$"},
                      {first + 2, "IFCQUANTITYLENGTH", IsIfc4() ? "'l',$,$,1.,$" : "'l',$,$,1."}};
  }
  EXPECT_EQ((StayingNumbers{10, 11, 12}), Of(records));
}

TEST_P(SharedEqual, AMemberIsNotTheSameAsWhatIsFree) {
  EXPECT_EQ((StayingNumbers{2, 3, 4}), Of({{2, "IFCCOMPLEXPROPERTY", "'c',$,'u',(#3)"},
                                           {3, "IFCPROPERTYSINGLEVALUE", "'p',$,$,$"},
                                           {4, "IFCPROPERTYSINGLEVALUE", "'p',$,$,$"},
                                           {5, "IFCPROPERTYSINGLEVALUE", "'p',$,$,$"}}));
}

// --- Relations that only point at an object ------------------------------------------------------

std::string Styled(const std::string& item, const std::string& style) {
  return item + ",(" + style + "),$";
}
// #8 and #9 are styles.
Records TwoStyles(bool isIfc4) {
  const std::string name = isIfc4 ? "IFCSURFACESTYLE" : "IFCPRESENTATIONSTYLEASSIGNMENT";
  const std::string one = isIfc4 ? "'a',.BOTH.,(#6)" : "(#4)";
  const std::string two = isIfc4 ? "'b',.BOTH.,(#6)" : "(#5)";
  return {{4, "IFCSURFACESTYLE", "'a',.BOTH.,(#6)"},
          {5, "IFCSURFACESTYLE", "'b',.BOTH.,(#6)"},
          {6, "IFCSURFACESTYLESHADING", isIfc4 ? "#7,$" : "#7"},
          {7, "IFCCOLOURRGB", "$,1.,0.,0."},
          {8, name, one},
          {9, name, two}};
}

TEST_P(SharedEqual, ItemsOfOneStyleBecomeOneWithTheirStyledItems) {
  const Records records = TwoStyles(IsIfc4()) + Records{PointOf(20, "1.,1."),
                                                        PointOf(21, "1.,1."),
                                                        {22, "IFCSTYLEDITEM", Styled("#20", "#8")},
                                                        {23, "IFCSTYLEDITEM", Styled("#21", "#8")}};
  const StayingNumbers staying = Of(records);
  EXPECT_EQ(1U, staying.count(20) + staying.count(21));
  EXPECT_EQ(1U, staying.count(22) + staying.count(23));
}

TEST_P(SharedEqual, ItemsOfTwoStylesStayTwo) {
  const StayingNumbers staying =
      Of(TwoStyles(IsIfc4()) + Records{PointOf(20, "1.,1."),
                                       PointOf(21, "1.,1."),
                                       PointOf(22, "1.,1."),
                                       {23, "IFCSTYLEDITEM", Styled("#20", "#8")},
                                       {24, "IFCSTYLEDITEM", Styled("#21", "#9")}});
  for (const int number : {20, 21, 22, 23, 24}) EXPECT_TRUE(staying.contains(number)) << number;
}

TEST_P(SharedEqual, AnItemOfALayerStaysByItself) {
  const std::string text = TextOf({PointOf(2, "1.,1."),
                                   PointOf(3, "1.,1."),
                                   PointOf(4, "1.,1."),
                                   PointOf(5, "1.,1."),
                                   {6, "IFCPRESENTATIONLAYERASSIGNMENT", "'l',$,(#3,#5),$"}});
  EXPECT_EQ((StayingNumbers{1, 2, 3, 5, 6}), NumbersIn(text));
  EXPECT_EQ("IFCPRESENTATIONLAYERASSIGNMENT('l',$,(#3,#5),$);", LineOf(6, text));
}

TEST_P(SharedEqual, MaterialsWithEqualPropertiesBecomeOneWithThem) {
  const std::string name = IsIfc4() ? "IFCMATERIALPROPERTIES" : "IFCGENERALMATERIALPROPERTIES";
  const auto properties = [&](const std::string& material, const std::string& density) {
    return IsIfc4() ? "'m',$,(" + density + ")," + material : material + ",$,$," + density;
  };
  const std::string material = IsIfc4() ? "'wood',$,$" : "'wood'";
  Records records = {
      {2, "IFCMATERIAL", material}, {3, "IFCMATERIAL", material}, {4, "IFCMATERIAL", material}};
  const std::string one = IsIfc4() ? "#8" : "1.";
  const std::string two = IsIfc4() ? "#9" : "2.";
  if (IsIfc4()) {
    records = records + Records{{8, "IFCPROPERTYSINGLEVALUE", "'d',$,IFCREAL(1.),$"},
                                {9, "IFCPROPERTYSINGLEVALUE", "'d',$,IFCREAL(2.),$"}};
  }
  StayingNumbers staying = Of(records + Records{{5, name, properties("#2", one)},
                                                {6, name, properties("#3", one)},
                                                {7, name, properties("#4", two)}});
  staying.erase(8);
  staying.erase(9);
  EXPECT_EQ((StayingNumbers{2, 4, 5, 7}), staying);
}

TEST_P(SharedEqual, WhatIsRelatedToOthersStaysByItself) {
  EXPECT_EQ((StayingNumbers{2, 3, 4, 6}),
            Of({{2, "IFCORGANIZATION", "$,'o',$,$,$"},
                {3, "IFCORGANIZATION", "$,'o',$,$,$"},
                {4, "IFCORGANIZATION", "$,'o',$,$,$"},
                {5, "IFCORGANIZATION", "$,'o',$,$,$"},
                {6, "IFCORGANIZATIONRELATIONSHIP", "'r',$,#3,(#4)"}}));
}

// --- All of it together --------------------------------------------------------------------------

TEST_P(SharedEqual, ASecondTimeNothingGivesWay) {
  FederatedDocuments models(GetParam());
  models.Add(u"a.ifc", "", {PointOf(2, "1.,2."), PointOf(3, "1.,2."), PointOf(4, "1.,2.")});
  models.Add(u"b.ifc", "", {});
  models.RunStep([](FederatedModel& model) {
    Ticker ticker{Stage()};
    for (const std::size_t expected : {2u, 0u}) {
      std::size_t shared = 0;
      EXPECT_TRUE(ShareEqual(model, NumberForm::kTold, ticker, shared));
      EXPECT_EQ(expected, shared);
    }
  });
}

TEST_P(SharedEqual, EachTickMayBeTheLast) {
  const auto run = [this](std::size_t tick, std::size_t& ticks) {
    FederatedDocuments models(GetParam());
    models.Add(u"a.ifc", "",
               {PointOf(2, "1.,2."), {3, "IFCPOLYLOOP", "(#2,#4)"}, PointOf(4, "1.,2.")});
    models.Add(u"b.ifc", "", {});
    bool done = false;
    models.RunStep([&](FederatedModel& model) {
      models.Progress().Forget();
      if (tick != 0) models.Progress().CancelAt(tick - 1);
      Ticker ticker({.callback = test::RecordedProgress::Callback}, {.block = 1});
      std::size_t shared = 0;
      done = ShareEqual(model, NumberForm::kTold, ticker, shared);
    });
    ticks = models.Progress()->size();
    return done;
  };
  std::size_t all = 0;
  EXPECT_TRUE(run(0, all));
  EXPECT_LE(20U, all) << "five walks over four objects";
  for (std::size_t tick = 1; tick <= all; ++tick) {
    std::size_t ticks = 0;
    EXPECT_FALSE(run(tick, ticks)) << tick;
    EXPECT_EQ(tick, ticks);
  }
}

TEST_P(SharedEqual, WorksBehindJoinedContexts) {
  FederatedDocuments models(GetParam());
  const Records context = {{2, "IFCGEOMETRICREPRESENTATIONCONTEXT", "$,'Model',3,$,#3,$"},
                           {3, "IFCAXIS2PLACEMENT3D", "#4,$,$"},
                           PointOf(4, "0.,0.,0."),
                           {5, "IFCSHAPEREPRESENTATION", "#2,'Body','Brep',(#4)"}};
  models.Add(u"a.ifc", "#2", context);
  models.Add(u"b.ifc", "#2", context);
  const std::string text = models.Run({.joinContexts = true, .shareEqual = true});
  EXPECT_EQ(6U, NumbersIn(text).size()) << text;  // the project, one of each, two representations
}

TEST_P(SharedEqual, ADeepModelNeedsNoDeepStack) {
  // Each boolean result has the one in front of it as an operand.
  constexpr std::uint32_t kDepth = 20'000;
  Records records = {
      {2, "IFCSPHERE", "#3,1."}, {3, "IFCAXIS2PLACEMENT3D", "#4,$,$"}, PointOf(4, "0.,0.,0.")};
  for (std::uint32_t i = 0; i < kDepth; ++i) {
    const std::string below = "#" + std::to_string(i == 0 ? 2 : 99'999 - i);
    records.push_back({99'998 - i, "IFCBOOLEANRESULT", ".UNION.," + below + "," + below});
  }
  StayingNumbers staying;
  test::RunOnSmallStack([&] { staying = Of(records); });
  EXPECT_EQ(kDepth + 3, staying.size());
}

}  // namespace
}  // namespace corvel
