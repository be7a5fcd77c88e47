// Nothing moves when sites, buildings and storeys become one, and shapes of their own are kept.
#include <gtest/gtest.h>

#include <string>

#include "merge/federation/tree/tree_models.h"

namespace corvel {
namespace {

using test::FederatedDocuments;
using test::HasLine;
using test::NamesOf;
using test::TreeModel;
using test::Unfolded;

constexpr FederationChoices kSitesByGuid{.tree = TreeMatching::kGuid};

// Two models of one site, whose placements differ: a wall stands on that of the second site.
struct TwoSites {
  TwoSites(double firstX, double secondX) {
    first.Site({.guid = "2222222222222222222__s", .x = firstX});
    site = second.Site({.guid = "2222222222222222222__s", .x = secondX});
  }
  std::string Run(SchemaNamespace schema) const {
    FederatedDocuments models(schema);
    models.Add(u"a.ifc", "", first.All());
    models.Add(u"b.ifc", "", second.All());
    return models.Run(kSitesByGuid);
  }
  TreeModel first{100};
  TreeModel second{200};
  std::uint32_t site = 0;
};

TEST(PlacementsOfTrees, InIfc2x3APlacementWithoutProductIsFoldedIntoWhatStandsOnIt) {
  TwoSites models(1000.0, 300.0);
  models.second.Wall(models.site, "1111111111111111111111", 20.0);
  const std::string text = models.Run(SchemaNamespace::IFC2X3);
  EXPECT_EQ("IFCLOCALPLACEMENT($,IFCAXIS2PLACEMENT3D(IFCCARTESIANPOINT((320.,0.,0.)),$,$))",
            Unfolded(text, "#207"));
  EXPECT_EQ(std::string::npos, text.find("#202=")) << text;
}

TEST(PlacementsOfTrees, InIfc4APlacementLivesWithoutProduct) {
  TwoSites models(1000.0, 300.0);
  models.second.lastOfWall = ",$";
  models.second.Wall(models.site, "1111111111111111111111", 20.0);
  const std::string text = models.Run(SchemaNamespace::IFC4);
  EXPECT_TRUE(HasLine(text, "#202=IFCLOCALPLACEMENT($,#201);")) << text;
  EXPECT_TRUE(HasLine(text, "#207=IFCLOCALPLACEMENT(#202,#206);")) << text;
}

TEST(PlacementsOfTrees, AtTheSamePlaceTheOneStandsForTheOther) {
  TwoSites models(300.0, 300.0);
  models.second.Wall(models.site, "1111111111111111111111", 20.0);
  const std::string text = models.Run(SchemaNamespace::IFC2X3);
  EXPECT_TRUE(HasLine(text, "#207=IFCLOCALPLACEMENT(#102,#206);")) << text;
  EXPECT_EQ(std::string::npos, text.find("#202=")) << text;
}

TEST(PlacementsOfTrees, AChainThatGoesIsMultipliedAsAWhole) {
  TreeModel first(100);
  const auto site = first.Site({.guid = "2222222222222222222__s", .x = 1.0});
  first.Building({.guid = "2222222222222222222__b", .x = 1.0}, site);
  TreeModel second(200);
  const auto later = second.Site({.guid = "2222222222222222222__s", .x = 100.0});
  const auto building = second.Building({.guid = "2222222222222222222__b", .x = 10.0}, later);
  second.Wall(building, "1111111111111111111111", 5.0);
  FederatedDocuments models(SchemaNamespace::IFC2X3);
  models.Add(u"a.ifc", "", first.All());
  models.Add(u"b.ifc", "", second.All());
  const std::string text = models.Run(kSitesByGuid);
  EXPECT_NE(std::string::npos, text.find("=IFCCARTESIANPOINT((115.,0.,0.));")) << text;
}

TEST(PlacementsOfTrees, APlacementTurnsWhatStandsOnIt) {
  TreeModel first(100);
  first.Site({.guid = "2222222222222222222__s", .x = 1.0});
  TreeModel second(200);
  const auto site = second.Site({.guid = "2222222222222222222__s", .x = 100.0});
  second.Wall(site, "1111111111111111111111", 5.0);
  test::Records records = second.All();
  // The x axis of the site is the y axis of the world.
  records.push_back({300, "IFCDIRECTION", "(0.,0.,1.)"});
  records.push_back({301, "IFCDIRECTION", "(0.,1.,0.)"});
  for (auto& record : records) {
    if (record.number == 201) record.attributes = "#200,#300,#301";
  }
  FederatedDocuments models(SchemaNamespace::IFC2X3);
  models.Add(u"a.ifc", "", first.All());
  models.Add(u"b.ifc", "", records);
  const std::string text = models.Run(kSitesByGuid);
  EXPECT_EQ(
      "IFCLOCALPLACEMENT($,IFCAXIS2PLACEMENT3D(IFCCARTESIANPOINT((100.,5.,0.)),"
      "IFCDIRECTION((0.,0.,1.)),IFCDIRECTION((0.,1.,0.))))",
      Unfolded(text, "#207"));
}

TEST(PlacementsOfTrees, APlacementThatPlacesAnotherProductTooStays) {
  TwoSites models(1000.0, 300.0);
  models.second.Record("IFCWALL", "'1111111111111111111111',$,$,$,$,#202,$,$");
  const std::string text = models.Run(SchemaNamespace::IFC2X3);
  EXPECT_TRUE(HasLine(text, "#202=IFCLOCALPLACEMENT($,#201);")) << text;
}

TEST(PlacementsOfTrees, PlacementsThatGoInACircleStay) {
  TreeModel first(100);
  first.Site({.guid = "2222222222222222222__s", .x = 1.0});
  TreeModel second(200);
  const auto site = second.Site({.guid = "2222222222222222222__s", .x = 100.0});
  second.Wall(site, "1111111111111111111111", 5.0);
  test::Records records = second.All();
  for (auto& record : records) {
    if (record.number == 202) record.attributes = "#202,#201";
  }
  FederatedDocuments models(SchemaNamespace::IFC2X3);
  models.Add(u"a.ifc", "", first.All());
  models.Add(u"b.ifc", "", records);
  const std::string text = models.Run(kSitesByGuid);
  EXPECT_TRUE(HasLine(text, "#202=IFCLOCALPLACEMENT(#202,#201);")) << text;
  EXPECT_TRUE(HasLine(text, "#207=IFCLOCALPLACEMENT(#202,#206);")) << text;
}

// --- Shapes of their own -------------------------------------------------------------------------

// A site with a terrain of one point, at `x`.
TreeModel WithTerrain(std::uint32_t base, const std::string& terrain, double x) {
  TreeModel model(base);
  const auto point = model.Record("IFCCARTESIANPOINT", "(" + terrain + ")");
  const auto items = model.Record("IFCGEOMETRICSET", "(" + TreeModel::Ref(point) + ")");
  const auto origin = model.Record("IFCCARTESIANPOINT", "(0.,0.,0.)");
  const auto world = model.Record("IFCAXIS2PLACEMENT3D", TreeModel::Ref(origin) + ",$,$");
  const auto context = model.Record("IFCGEOMETRICREPRESENTATIONCONTEXT",
                                    "$,'Model',3,$," + TreeModel::Ref(world) + ",$");
  const auto shape =
      model.Record("IFCSHAPEREPRESENTATION", TreeModel::Ref(context) + ",'Body','GeometricSet',(" +
                                                 TreeModel::Ref(items) + ")");
  const auto all = model.Record("IFCPRODUCTDEFINITIONSHAPE", "$,$,(" + TreeModel::Ref(shape) + ")");
  model.Site({.name = "'Hill'", .shape = TreeModel::Ref(all), .x = x});
  return model;
}

std::string Terrains(SchemaNamespace schema, const TreeModel& first, const TreeModel& second) {
  FederatedDocuments models(schema);
  models.Add(u"a.ifc", "", first.All());
  models.Add(u"b.ifc", "", second.All());
  return models.Run({.tree = TreeMatching::kOne});
}

class TerrainsOf : public testing::TestWithParam<SchemaNamespace> {};

TEST_P(TerrainsOf, AnEqualShapeAtTheSamePlaceGivesWay) {
  const std::string text =
      Terrains(GetParam(), WithTerrain(100, "1.,2.,3.", 5.0), WithTerrain(200, "1.,2.,3.", 5.0));
  EXPECT_EQ(1u, NamesOf(text, "IFCSITE").size());
  EXPECT_EQ(std::string::npos, text.find("#206=IFCPRODUCTDEFINITIONSHAPE")) << text;
}

TEST_P(TerrainsOf, AnotherShapeBecomesAPartOfTheSurvivor) {
  const std::string text =
      Terrains(GetParam(), WithTerrain(100, "1.,2.,3.", 5.0), WithTerrain(200, "1.,2.,4.", 5.0));
  EXPECT_EQ(2u, NamesOf(text, "IFCSITE").size());
  EXPECT_NE(std::string::npos, text.find(",#110,(#210));")) << text;
  EXPECT_EQ(std::string::npos, text.find(",#1,(#210));")) << text;
  EXPECT_NE(std::string::npos, text.find(",#206,$,.PARTIAL.,")) << text;
}

TEST_P(TerrainsOf, AnEqualShapeElsewhereBecomesAPart) {
  const std::string text =
      Terrains(GetParam(), WithTerrain(100, "1.,2.,3.", 5.0), WithTerrain(200, "1.,2.,3.", 6.0));
  EXPECT_EQ(2u, NamesOf(text, "IFCSITE").size());
}

TEST_P(TerrainsOf, AShapeBecomesAPartOfASurvivorWithoutOne) {
  TreeModel first(100);
  const auto site = first.Site({.name = "'Hill'", .x = 5.0});
  first.Building({.name = "'House'"}, site);
  const std::string text = Terrains(GetParam(), first, WithTerrain(200, "1.,2.,3.", 5.0));
  EXPECT_EQ(2u, NamesOf(text, "IFCSITE").size());
  // Into the relation that is there.
  EXPECT_NE(std::string::npos, text.find(",#103,(#105,#210));")) << text;
}

TEST_P(TerrainsOf, WhatStandsBelowAPartIsComparedAllTheSame) {
  TreeModel first(100);
  first.Building({.name = "'House'"}, first.Site({.name = "'Hill'"}));
  TreeModel second = WithTerrain(200, "1.,2.,3.", 5.0);
  second.Building({.name = "'House'"}, 210);
  EXPECT_EQ(1u, NamesOf(Terrains(GetParam(), first, second), "IFCBUILDING").size());
}

INSTANTIATE_TEST_SUITE_P(Releases, TerrainsOf,
                         testing::ValuesIn(test::BuiltSince(SchemaNamespace::IFC2X_FINAL)),
                         test::NameOfRelease);

}  // namespace
}  // namespace corvel
