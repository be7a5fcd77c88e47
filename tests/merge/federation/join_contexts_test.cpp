// Contexts that say the same become one.
#include "merge/federation/join_contexts.h"

#include <gtest/gtest.h>

#include <string>
#include <unordered_set>
#include <vector>

#include "federated_documents.h"

namespace corvel {
namespace {

using test::FederatedDocuments;
using test::PlannedRecord;
using test::Records;
using test::operator+;

constexpr FederationChoices kJoin{.joinContexts = true};

// A context at the origin with a point, its placement and itself, from `number` on.
Records ContextAt(std::uint32_t number, const std::string& point, const std::string& rest = "$",
                  const std::string& precision = "1.E-05") {
  const std::string placement = "#" + std::to_string(number + 1);
  return {{number, "IFCCARTESIANPOINT", "(" + point + ")"},
          {number + 1, "IFCAXIS2PLACEMENT3D", "#" + std::to_string(number) + ",$,$"},
          {number + 2, "IFCGEOMETRICREPRESENTATIONCONTEXT",
           "$,'Model',3," + precision + "," + placement + "," + rest}};
}

bool Has(const std::string& text, const std::string& line) {
  return text.find(line + "\n") != std::string::npos;
}

std::size_t CountOf(const std::string& text, const std::string& word) {
  std::size_t count = 0;
  for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) {
    ++count;
  }
  return count;
}

class JoinedContextsOf : public testing::TestWithParam<SchemaNamespace> {
 protected:
  FederatedDocuments models_{GetParam()};
};

TEST_P(JoinedContextsOf, EqualInputsAreOneAndTheLastIsNotWritten) {
  models_.Add(u"a.ifc", "#12", ContextAt(10, "0.,0.,0."));
  models_.Add(u"b.ifc", "#32", ContextAt(30, "0.,0.,0."));
  models_.Add(u"c.ifc", "#52", ContextAt(50, "0.,0.,0."));
  const std::string text = models_.Run(kJoin);
  EXPECT_EQ(1u, CountOf(text, "=IFCGEOMETRICREPRESENTATIONCONTEXT("));
  EXPECT_TRUE(Has(text, "#12=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,1.E-05,#11,$);"))
      << text;
}

TEST_P(JoinedContextsOf, WhoeverReferredToTheLaterOneRefersToTheEarlier) {
  models_.Add(u"a.ifc", "#12", ContextAt(10, "0.,0.,0."));
  models_.Add(u"b.ifc", "#32",
              ContextAt(30, "0.,0.,0.") +
                  Records{{40, "IFCSHAPEREPRESENTATION", "#32,'Body','Brep',(#30)"}});
  EXPECT_TRUE(Has(models_.Run(kJoin), "#40=IFCSHAPEREPRESENTATION(#12,'Body','Brep',(#30));"));
}

TEST_P(JoinedContextsOf, EqualOnesOfOneInputStayTwo) {
  models_.Add(u"a.ifc", "#12,#22", ContextAt(10, "0.,0.,0.") + ContextAt(20, "0.,0.,0."));
  models_.Add(u"b.ifc", "#32,#42", ContextAt(30, "0.,0.,0.") + ContextAt(40, "0.,0.,0."));
  const std::string text = models_.Run(kJoin);
  EXPECT_EQ(2u, CountOf(text, "=IFCGEOMETRICREPRESENTATIONCONTEXT("));
  EXPECT_TRUE(Has(text, "#12=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,1.E-05,#11,$);"));
  EXPECT_TRUE(Has(text, "#22=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,1.E-05,#21,$);"));
}

TEST_P(JoinedContextsOf, NoTrueNorthIsTheSameAsTheYAxis) {
  models_.Add(u"a.ifc", "#12", ContextAt(10, "0.,0.,0."));
  models_.Add(u"b.ifc", "#32",
              ContextAt(30, "0.,0.,0.", "#40") + Records{{40, "IFCDIRECTION", "(0.,2.)"}});
  EXPECT_EQ(1u, CountOf(models_.Run(kJoin), "=IFCGEOMETRICREPRESENTATIONCONTEXT("));
}

TEST_P(JoinedContextsOf, AnotherTrueNorthStaysApart) {
  models_.Add(u"a.ifc", "#12", ContextAt(10, "0.,0.,0."));
  models_.Add(u"b.ifc", "#32",
              ContextAt(30, "0.,0.,0.", "#40") + Records{{40, "IFCDIRECTION", "(0.1,1.)"}});
  EXPECT_EQ(2u, CountOf(models_.Run(kJoin), "=IFCGEOMETRICREPRESENTATIONCONTEXT("));
}

TEST_P(JoinedContextsOf, OneThatMatchesNoneIsEnteredInTheProject) {
  models_.Add(u"a.ifc", "#12", ContextAt(10, "0.,0.,0."));
  models_.Add(u"b.ifc", "#32", ContextAt(30, "0.,0.,5."));
  const std::string text = models_.Run(kJoin);
  EXPECT_NE(std::string::npos, text.find(",(#12,#32),")) << text;
}

TEST_P(JoinedContextsOf, AProjectWithoutContextsGetsAList) {
  models_.Add(u"a.ifc", "", {});
  models_.Add(u"b.ifc", "#32", ContextAt(30, "0.,0.,0."));
  EXPECT_NE(std::string::npos, models_.Run(kJoin).find(",(#32),"));
}

TEST_P(JoinedContextsOf, TheFinestPrecisionStays) {
  models_.Add(u"a.ifc", "#12", ContextAt(10, "0.,0.,0."));
  models_.Add(u"b.ifc", "#32", ContextAt(30, "0.,0.,0.", "$", "1.E-08"));
  models_.Add(u"c.ifc", "#52", ContextAt(50, "0.,0.,0.", "$", "1.E-03"));
  EXPECT_TRUE(
      Has(models_.Run(kJoin), "#12=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,1.E-08,#11,$);"));
}

TEST_P(JoinedContextsOf, OffByDefault) {
  models_.Add(u"a.ifc", "#12", ContextAt(10, "0.,0.,0."));
  models_.Add(u"b.ifc", "#32", ContextAt(30, "0.,0.,0."));
  EXPECT_EQ(2u, CountOf(models_.Run({}), "=IFCGEOMETRICREPRESENTATIONCONTEXT("));
}

INSTANTIATE_TEST_SUITE_P(Releases, JoinedContextsOf,
                         testing::Values(SchemaNamespace::IFC2X3, SchemaNamespace::IFC4),
                         [](const auto& release) {
                           return release.param == SchemaNamespace::IFC4 ? "IFC4" : "IFC2X3";
                         });

Records SubContext(std::uint32_t number, const std::string& parent, const std::string& view) {
  return {{number, "IFCGEOMETRICREPRESENTATIONSUBCONTEXT",
           "'Body','Model',*,*,*,*," + parent + ",$,." + view + ".,$"}};
}

TEST(JoinedSubContexts, OfOneParentWithEqualNamesAndViewAreOne) {
  FederatedDocuments models(SchemaNamespace::IFC4);
  models.Add(u"a.ifc", "#12", ContextAt(10, "0.,0.,0.") + SubContext(13, "#12", "MODEL_VIEW"));
  models.Add(u"b.ifc", "#32",
             ContextAt(30, "0.,0.,0.") + SubContext(33, "#32", "MODEL_VIEW") +
                 SubContext(34, "#32", "PLAN_VIEW") +
                 Records{{40, "IFCSHAPEREPRESENTATION", "#33,'Body','Brep',(#30)"}});
  const std::string text = models.Run(kJoin);
  EXPECT_EQ(2u, CountOf(text, "=IFCGEOMETRICREPRESENTATIONSUBCONTEXT(")) << text;
  EXPECT_TRUE(Has(text, "#40=IFCSHAPEREPRESENTATION(#13,'Body','Brep',(#30));"));
  EXPECT_TRUE(Has(text,
                  "#34=IFCGEOMETRICREPRESENTATIONSUBCONTEXT('Body','Model',0,$,*,$,#12,$,"
                  ".PLAN_VIEW.,$);"))
      << text;
}

TEST(JoinedSubContexts, OfParentsThatStayApartStayApart) {
  FederatedDocuments models(SchemaNamespace::IFC4);
  models.Add(u"a.ifc", "#12", ContextAt(10, "0.,0.,0.") + SubContext(13, "#12", "MODEL_VIEW"));
  models.Add(u"b.ifc", "#32", ContextAt(30, "1.,0.,0.") + SubContext(33, "#32", "MODEL_VIEW"));
  EXPECT_EQ(2u, CountOf(models.Run(kJoin), "=IFCGEOMETRICREPRESENTATIONSUBCONTEXT("));
}

Records Conversion(std::uint32_t number, const std::string& context, const std::string& eastings) {
  return {{number, "IFCPROJECTEDCRS", "'EPSG:28992',$,$,$,$,$,$"},
          {number + 1, "IFCMAPCONVERSION",
           context + ",#" + std::to_string(number) + "," + eastings + ",2.,3.,$,$,$"}};
}

TEST(ContextsWithConversions, EqualOnesJoinAndOneConversionIsLeft) {
  FederatedDocuments models(SchemaNamespace::IFC4);
  models.Add(u"a.ifc", "#12", ContextAt(10, "0.,0.,0.") + Conversion(20, "#12", "85000."));
  models.Add(u"b.ifc", "#32", ContextAt(30, "0.,0.,0.") + Conversion(40, "#32", "85000."));
  const std::string text = models.Run(kJoin);
  EXPECT_EQ(1u, CountOf(text, "=IFCGEOMETRICREPRESENTATIONCONTEXT(")) << text;
  EXPECT_EQ(1u, CountOf(text, "=IFCMAPCONVERSION("));
  EXPECT_TRUE(Has(text, "#21=IFCMAPCONVERSION(#12,#20,85000.,2.,3.,$,$,$);"));
}

TEST(ContextsWithConversions, OthersStayApartWithTheirOwn) {
  FederatedDocuments models(SchemaNamespace::IFC4);
  models.Add(u"a.ifc", "#12", ContextAt(10, "0.,0.,0.") + Conversion(20, "#12", "85000."));
  models.Add(u"b.ifc", "#32", ContextAt(30, "0.,0.,0.") + Conversion(40, "#32", "85001."));
  models.Add(u"c.ifc", "#52", ContextAt(50, "0.,0.,0."));
  const std::string text = models.Run(kJoin);
  EXPECT_EQ(3u, CountOf(text, "=IFCGEOMETRICREPRESENTATIONCONTEXT("));
  EXPECT_EQ(2u, CountOf(text, "=IFCMAPCONVERSION("));
}

Records MapSet(std::uint32_t number, const std::string& eastings) {
  const std::string property = "#" + std::to_string(number);
  return {{number, "IFCPROPERTYSINGLEVALUE", "'Eastings',$,IFCLENGTHMEASURE(" + eastings + "),$"},
          {number + 1, "IFCPROPERTYSET",
           "'" + std::to_string(number) + "',$,'ePSet_MapConversion',$,(" + property + ")"}};
}

TEST(ContextsWithMapProperties, JoinWhenTheSetsSayTheSame) {
  FederatedDocuments models(SchemaNamespace::IFC2X3);
  models.Add(u"a.ifc", "#12", ContextAt(10, "0.,0.,0.") + MapSet(20, "85000."));
  models.Add(u"b.ifc", "#32", ContextAt(30, "0.,0.,0.") + MapSet(40, "85000."));
  EXPECT_EQ(1u, CountOf(models.Run(kJoin), "=IFCGEOMETRICREPRESENTATIONCONTEXT("));
}

TEST(ContextsWithMapProperties, StayApartWhenTheyDoNot) {
  FederatedDocuments models(SchemaNamespace::IFC2X3);
  models.Add(u"a.ifc", "#12", ContextAt(10, "0.,0.,0.") + MapSet(20, "85000."));
  models.Add(u"b.ifc", "#32", ContextAt(30, "0.,0.,0.") + MapSet(40, "85001."));
  EXPECT_EQ(2u, CountOf(models.Run(kJoin), "=IFCGEOMETRICREPRESENTATIONCONTEXT("));
}

// The model of inputs of which those in `onOneMap` stand in the coordinates of the first.
std::string JoinedOnOneMap(FederatedDocuments& models, const std::vector<std::size_t>& onOneMap) {
  return models.RunStep([&](FederatedModel& model) {
    std::unordered_set<const IfcDocument*> documents;
    for (const std::size_t input : onOneMap) documents.insert(&model.Document(input));
    const WideString text = u"contexts";
    Ticker ticker({.callback = nullptr, .text = &text}, {.block = 1000});
    JoinedContexts counts;
    ASSERT_TRUE(JoinContexts(model, documents, ticker, counts));
  });
}

TEST(JoinedContextsOnOneMap, OfAModelThatLostItsConversionJoinThatOfTheFirst) {
  FederatedDocuments models(SchemaNamespace::IFC4);
  models.Add(u"a.ifc", "#12", ContextAt(10, "0.,0.,0.") + Conversion(20, "#12", "1."));
  models.Add(u"b.ifc", "#32", ContextAt(30, "0.,0.,0."));
  models.Add(u"c.ifc", "#52", ContextAt(50, "0.,0.,0."));
  const std::string text = JoinedOnOneMap(models, {0, 2});
  EXPECT_TRUE(Has(text, "#32=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,1.E-05,#31,$);"));
  EXPECT_EQ(2u, CountOf(text, "=IFCGEOMETRICREPRESENTATIONCONTEXT(")) << text;
}

TEST(JoinedContextsOnOneMap, DoNotJoinThoseOfAModelWithoutAMap) {
  FederatedDocuments models(SchemaNamespace::IFC4);
  models.Add(u"a.ifc", "", {});
  models.Add(u"b.ifc", "#32", ContextAt(30, "0.,0.,0."));
  models.Add(u"c.ifc", "#52", ContextAt(50, "0.,0.,0."));
  EXPECT_EQ(2u, CountOf(JoinedOnOneMap(models, {0, 2}), "=IFCGEOMETRICREPRESENTATIONCONTEXT("));
  FederatedDocuments placed(SchemaNamespace::IFC4);
  placed.Add(u"a.ifc", "", {});
  placed.Add(u"b.ifc", "#32", ContextAt(30, "0.,0.,0."));
  placed.Add(u"c.ifc", "#52", ContextAt(50, "0.,0.,0."));
  EXPECT_EQ(1u, CountOf(JoinedOnOneMap(placed, {0, 1, 2}), "=IFCGEOMETRICREPRESENTATIONCONTEXT("));
}

}  // namespace
}  // namespace corvel
