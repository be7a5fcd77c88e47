// Only what something with a GUID needs is written.
#include "merge/federation/prune.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "federated_documents.h"

namespace corvel {
namespace {

using test::FederatedDocuments;
using test::NumbersIn;
using test::PlannedRecord;
using test::Records;
using test::operator+;
using KeptLines = std::set<int>;

constexpr FederationChoices kPrune{.prune = true};

// What of the first model stays; the second has a project alone.
class Pruned : public testing::TestWithParam<SchemaNamespace> {
 protected:
  std::string TextOf(const Records& records, std::uint32_t deleted = 0) {
    FederatedDocuments models(GetParam());
    models.Add(u"a.ifc", "", records);
    models.Add(u"b.ifc", "", {});
    if (deleted != 0) models.At(0, deleted).marker = IFC::kDeleted;
    return models.Run(kPrune);
  }
  KeptLines Of(const Records& records, std::uint32_t deleted = 0) {
    return NumbersIn(TextOf(records, deleted));
  }
};

INSTANTIATE_TEST_SUITE_P(Releases, Pruned,
                         testing::Values(SchemaNamespace::IFC2X3, SchemaNamespace::IFC4),
                         [](const auto& release) {
                           return release.param == SchemaNamespace::IFC4 ? "IFC4" : "IFC2X3";
                         });

PlannedRecord Proxy(std::uint32_t number, const std::string& placement, const std::string& shape) {
  return {number, "IFCBUILDINGELEMENTPROXY",
          "'g" + std::to_string(number) + "',$,'p',$,$," + placement + "," + shape + ",$,$"};
}

// #10 has the shape #20 to #24.
Records Shaped() {
  return {Proxy(10, "$", "#20"),
          {20, "IFCPRODUCTDEFINITIONSHAPE", "$,$,(#21)"},
          {22, "IFCGEOMETRICREPRESENTATIONCONTEXT", "$,'Model',3,$,#24,$"},
          {21, "IFCSHAPEREPRESENTATION", "#22,'Body','Brep',(#23)"},
          {23, "IFCCARTESIANPOINT", "(1.,2.,3.)"},
          {24, "IFCAXIS2PLACEMENT3D", "#25,$,$"},
          {25, "IFCCARTESIANPOINT", "(0.,0.,0.)"}};
}

TEST_P(Pruned, WhatAProductLeadsToStays) {
  EXPECT_EQ((KeptLines{1, 10, 20, 21, 22, 23, 24, 25}), Of(Shaped()));
}

TEST_P(Pruned, TheShapeOfADroppedProductGoesWithItsContext) {
  EXPECT_EQ((KeptLines{1}), Of(Shaped(), 10));
}

TEST_P(Pruned, LoosePointsAndUnitsOfNobodyGo) {
  EXPECT_EQ((KeptLines{1}), Of({{30, "IFCCARTESIANPOINT", "(0.,0.)"},
                                {31, "IFCSIUNIT", "*,.LENGTHUNIT.,$,.METRE."},
                                {32, "IFCUNITASSIGNMENT", "(#31)"}}));
}

TEST_P(Pruned, AStyleStaysWithTheItemThatItIsFor) {
  const Records style = {
      {40, "IFCSTYLEDITEM", "#23,(#41),$"},
      {41, "IFCPRESENTATIONSTYLEASSIGNMENT", "(#42)"},
      {42, "IFCCURVESTYLE", GetParam() == SchemaNamespace::IFC4 ? "'s',$,$,$,$" : "'s',$,$,$"}};
  EXPECT_EQ((KeptLines{1, 10, 20, 21, 22, 23, 24, 25, 40, 41, 42}), Of(Shaped() + style));
  EXPECT_EQ((KeptLines{1}), Of(Shaped() + style, 10));
}

TEST_P(Pruned, ALayerLosesWhatIsGone) {
  const Records layer = {Proxy(50, "$", "#51"),
                         {51, "IFCPRODUCTDEFINITIONSHAPE", "$,$,(#52)"},
                         {52, "IFCSHAPEREPRESENTATION", "#22,'Body','Brep',(#53)"},
                         {53, "IFCCARTESIANPOINT", "(1.,2.,3.)"},
                         {60, "IFCPRESENTATIONLAYERASSIGNMENT", "'l',$,(#21,#52),$"}};
  const std::string text = TextOf(Shaped() + layer, 50);
  EXPECT_EQ((KeptLines{1, 10, 20, 21, 22, 23, 24, 25, 60}), NumbersIn(text));
  EXPECT_NE(std::string::npos, text.find("('l',$,(#21),$);")) << text;
}

TEST_P(Pruned, ALayerOfWhatIsGoneGoes) {
  EXPECT_EQ((KeptLines{1}),
            Of(Shaped() + Records{{60, "IFCPRESENTATIONLAYERASSIGNMENT", "'l',$,(#21),$"}}, 10));
}

TEST_P(Pruned, APointerOfAPointerStaysWithIt) {
  const Records records = {{40, "IFCSTYLEDITEM", "#23,(),$"},
                           {60, "IFCPRESENTATIONLAYERASSIGNMENT", "'l',$,(#40),$"}};
  EXPECT_EQ((KeptLines{1, 10, 20, 21, 22, 23, 24, 25, 40, 60}), Of(Shaped() + records));
  EXPECT_EQ((KeptLines{1}), Of(Shaped() + records, 10));
}

TEST_P(Pruned, ALongChainOfPointersTakesNoStack) {
  constexpr std::uint32_t kFirst = 100;
  constexpr std::uint32_t kCount = 100000;
  Records records = Shaped();
  for (std::uint32_t i = 0; i < kCount; ++i) {
    const std::uint32_t item = i == 0 ? 23 : kFirst + i - 1;
    records.push_back({kFirst + i, "IFCSTYLEDITEM", "#" + std::to_string(item) + ",(),$"});
  }
  EXPECT_EQ(8 + kCount, Of(records).size());
}

TEST_P(Pruned, AValueInARecordKeepsWhatItRefersTo) {
  const Records records = {
      {70, "IFCPROPERTYSET", "'ps',$,'s',$,(#71)"},
      {71, "IFCPROPERTYREFERENCEVALUE", "'r',$,$,#72"},
      {72, "IFCMATERIAL", GetParam() == SchemaNamespace::IFC4 ? "'m',$,$" : "'m'"}};
  EXPECT_EQ((KeptLines{1, 70, 71, 72}), Of(records));
}

TEST(PrunedContexts, OfALaterModelGoWhenNobodyKnowsThem) {
  FederatedDocuments models(SchemaNamespace::IFC4);
  const auto context = [](std::uint32_t number) {
    const std::string placement = "#" + std::to_string(number + 1);
    return Records{
        {number, "IFCGEOMETRICREPRESENTATIONCONTEXT", "$,'Model',3,$," + placement + ",$"},
        {number + 1, "IFCAXIS2PLACEMENT3D", "#" + std::to_string(number + 2) + ",$,$"},
        {number + 2, "IFCCARTESIANPOINT", "(0.,0.,0.)"}};
  };
  models.Add(u"a.ifc", "#10", context(10));
  models.Add(u"b.ifc", "#20", context(20));
  EXPECT_EQ((KeptLines{1, 10, 11, 12}), NumbersIn(models.Run(kPrune)));
}

TEST(PrunedContexts, AMapConversionStaysWithItsContext) {
  FederatedDocuments models(SchemaNamespace::IFC4);
  models.Add(u"a.ifc", "#10",
             {{10, "IFCGEOMETRICREPRESENTATIONCONTEXT", "$,'Model',3,$,#11,$"},
              {11, "IFCAXIS2PLACEMENT3D", "#12,$,$"},
              {12, "IFCCARTESIANPOINT", "(0.,0.,0.)"},
              {13, "IFCPROJECTEDCRS", "'c',$,$,$,$,$,$"},
              {14, "IFCMAPCONVERSION", "#10,#13,1.,2.,3.,$,$,$"},
              {15, "IFCPROJECTEDCRS", "'d',$,$,$,$,$,$"}});
  models.Add(u"b.ifc", "", {});
  EXPECT_EQ((KeptLines{1, 10, 11, 12, 13, 14}), NumbersIn(models.Run(kPrune)));
}

}  // namespace
}  // namespace corvel
