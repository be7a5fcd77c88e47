// Models that stand where the map of the first one says.
#include "merge/federation/place/map_places.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "../federated_documents.h"
#include "merge/federation/attribute_values.h"
#include "merge/offset_scene.h"
#include "step/reader/parser.h"

namespace corvel {
namespace {

using test::OffsetScene;
using test::RecordDocument;
using test::Records;
using test::operator+;

// A metre and a millimetre, #2 and #3, and their assignments, #4 and #5.
const Records kUnits = {{2, "IFCSIUNIT", "*,.LENGTHUNIT.,$,.METRE."},
                        {3, "IFCSIUNIT", "*,.LENGTHUNIT.,.MILLI.,.METRE."},
                        {4, "IFCUNITASSIGNMENT", "(#2)"},
                        {5, "IFCUNITASSIGNMENT", "(#3)"}};

// A wall, #24, on a placement, #23, at (1, 2, 3); a context, #12, at the origin.
const Records kWallAndContext = {{10, "IFCCARTESIANPOINT", "(0.,0.,0.)"},
                                 {11, "IFCAXIS2PLACEMENT3D", "#10,$,$"},
                                 {12, "IFCGEOMETRICREPRESENTATIONCONTEXT", "$,'Model',3,$,#11,$"},
                                 {21, "IFCCARTESIANPOINT", "(1.,2.,3.)"},
                                 {22, "IFCAXIS2PLACEMENT3D", "#21,$,$"},
                                 {23, "IFCLOCALPLACEMENT", "$,#22"},
                                 {24, "IFCWALL", "'g24',$,$,$,$,#23,$,$,$"}};

// `rest` is what stands behind the reference system, "10.,20.,0.,$,$,$".
Records MapOf(const std::string& rest, const std::string& system = "EPSG:1",
              const std::string& unit = "$") {
  return {{30, "IFCPROJECTEDCRS", "'" + system + "',$,$,$,$,$," + unit},
          {31, "IFCMAPCONVERSION", "#12,#30," + rest}};
}

class PlacedModels : public testing::Test {
 protected:
  void Add(const WideString& name, const Records& records, std::uint32_t assignment = 4,
           SchemaNamespace release = SchemaNamespace::IFC4) {
    documents_.push_back(std::make_unique<RecordDocument>(kUnits + records, release));
    IfcDocument& document = Document(documents_.size() - 1);
    document.GetParser().filePath = u"/models/" + name;
    document.GetParser().ifcUnitAssignment = &At(documents_.size() - 1, assignment);
  }
  IfcDocument& Document(std::size_t index) { return **documents_[index]; }
  IFC::IfcEntity& At(std::size_t index, std::uint32_t number) {
    return *Document(index).mainContainer->GetEntityByOrginalNumber(number);
  }

  // The project of a model is its position from 1 on.
  void Place(OffsetScene scene = {}) {
    std::vector<MapPlaces::Model> models;
    for (std::size_t i = 0; i < documents_.size(); ++i) models.push_back({&Document(i), i + 1});
    places_ = std::make_unique<MapPlaces>(models, scene);
    for (const MapPlaces::Model& model : models) ASSERT_TRUE(places_->Place(model, scene));
  }
  // "b.ifc: text", a line a warning.
  std::string Warnings() const {
    std::string lines;
    for (const auto& [path, text] : places_->Warnings()) {
      lines += ToUtf8(path.substr(path.rfind(u'/') + 1) + u": " + text) + "\n";
    }
    return lines;
  }
  std::string Lines(std::size_t index) { return test::WrittenOut(Document(index)); }
  bool Has(std::size_t index, const std::string& line) {
    return Lines(index).find(line + "\n") != std::string::npos;
  }
  std::size_t CountOf(std::size_t index, const std::string& className) {
    const std::string lines = Lines(index);
    std::size_t count = 0;
    for (std::size_t at = lines.find(className); at != std::string::npos;
         at = lines.find(className, at + 1)) {
      ++count;
    }
    return count;
  }

  test::MergeWorld world_;
  std::vector<std::unique_ptr<RecordDocument>> documents_;
  std::unique_ptr<MapPlaces> places_;
};

TEST_F(PlacedModels, ALaterModelGetsAnOutermostPlacementWithTurnAndShift) {
  Add(u"a.ifc", kWallAndContext + MapOf("10.,20.,1.,$,$,$"));
  Add(u"b.ifc", kWallAndContext + MapOf("13.,24.,6.,0.,1.,$"));
  const std::string first = Lines(0);
  Place();
  EXPECT_EQ(first, Lines(0));
  EXPECT_TRUE(Has(1, "=IFCCARTESIANPOINT((3.,4.,5.));")) << Lines(1);
  EXPECT_NE(std::string::npos, Lines(1).find("=IFCDIRECTION((0.,1.,0.));"));
  EXPECT_EQ(2u, CountOf(1, "=IFCLOCALPLACEMENT("));
  EXPECT_FALSE(Has(1, "#23=IFCLOCALPLACEMENT($,#22);"));
  EXPECT_EQ("", Warnings());
}

TEST_F(PlacedModels, ModelsOfOneConversionAreLeftAsTheyAre) {
  Add(u"a.ifc", kWallAndContext + MapOf("10.,20.,1.,$,$,$"));
  Add(u"b.ifc", kWallAndContext + MapOf("10.,20.,1.,2.,0.,1."));
  const std::string later = Lines(1);
  Place();
  EXPECT_EQ(later, Lines(1));
  EXPECT_EQ(2u, places_->BehindFold().documents.size());
  EXPECT_EQ(1u, places_->BehindFold().leftovers.size());
}

TEST_F(PlacedModels, TheShiftIsInTheUnitOfTheModelThatIsPlaced) {
  Add(u"a.ifc", kWallAndContext + MapOf("10.,20.,1.,$,$,$"));
  Add(u"b.ifc", kWallAndContext + MapOf("13.,24.,6.,$,$,0.001", "EPSG:1", "#2"), 5);
  Place();
  EXPECT_TRUE(Has(1, "=IFCCARTESIANPOINT((3000.,4000.,5000.));")) << Lines(1);
  EXPECT_EQ("", Warnings());
}

TEST_F(PlacedModels, EastingsAreInTheUnitOfTheReferenceSystem) {
  Add(u"a.ifc", kWallAndContext + MapOf("10.,20.,1.,$,$,$"));
  Add(u"b.ifc", kWallAndContext + MapOf("13000.,24000.,6000.,$,$,1000.", "EPSG:1", "#3"));
  Place();
  EXPECT_TRUE(Has(1, "=IFCCARTESIANPOINT((3.,4.,5.));")) << Lines(1);
  EXPECT_EQ("", Warnings());
}

TEST_F(PlacedModels, WhereTheSystemNamesNoUnitThatOfTheProjectCounts) {
  Add(u"a.ifc", kWallAndContext + MapOf("10.,20.,1.,$,$,$"));
  Add(u"b.ifc", kWallAndContext + MapOf("13000.,24000.,6000.,$,$,$"), 5);
  Place();
  EXPECT_TRUE(Has(1, "=IFCCARTESIANPOINT((3000.,4000.,5000.));")) << Lines(1);
}

TEST_F(PlacedModels, WhereTheSystemNamesNoUnitAScaleThatLeadsToAnotherTellsIt) {
  Add(u"a.ifc", kWallAndContext + MapOf("10.,20.,1.,$,$,$"));
  Add(u"b.ifc", kWallAndContext + MapOf("13.,24.,6.,$,$,0.001"), 5);
  Place();
  EXPECT_TRUE(Has(1, "=IFCCARTESIANPOINT((3000.,4000.,5000.));")) << Lines(1);
  EXPECT_EQ("", Warnings());
}

TEST_F(PlacedModels, ASharedOutermostPlacementIsHungOnce) {
  const Records another = {{25, "IFCLOCALPLACEMENT", "#23,#11"},
                           {26, "IFCWALL", "'g26',$,$,$,$,#25,$,$,$"}};
  Add(u"a.ifc", kWallAndContext + MapOf("10.,20.,1.,$,$,$"));
  Add(u"b.ifc", kWallAndContext + another + MapOf("13.,24.,6.,$,$,$"));
  Place();
  EXPECT_TRUE(Has(1, "#25=IFCLOCALPLACEMENT(#23,#11);")) << Lines(1);
  EXPECT_EQ(3u, CountOf(1, "=IFCLOCALPLACEMENT("));
}

TEST_F(PlacedModels, APlacementInThePlaneAndAProductWithoutOneAreMovedToo) {
  const Records more = {{25, "IFCCARTESIANPOINT", "(0.,0.)"},
                        {26, "IFCAXIS2PLACEMENT2D", "#25,$"},
                        {27, "IFCLOCALPLACEMENT", "$,#26"},
                        {28, "IFCWALL", "'g28',$,$,$,$,#27,$,$,$"},
                        {29, "IFCWALL", "'g29',$,$,$,$,$,$,$,$"}};
  Add(u"a.ifc", kWallAndContext + MapOf("10.,20.,1.,$,$,$"));
  Add(u"b.ifc", kWallAndContext + more + MapOf("13.,24.,6.,$,$,$"));
  Place();
  EXPECT_FALSE(Has(1, "#27=IFCLOCALPLACEMENT($,#26);"));
  EXPECT_EQ(4u, CountOf(1, "=IFCLOCALPLACEMENT("));
  EXPECT_EQ(1u, CountOf(1, "=IFCLOCALPLACEMENT($,"));
}

TEST_F(PlacedModels, WhatIsOnAGridMovesWithTheGrid) {
  const Records grid = {{25, "IFCVIRTUALGRIDINTERSECTION", "(),(0.,0.)"},
                        {26, "IFCGRIDPLACEMENT", "#25,$"},
                        {27, "IFCWALL", "'g27',$,$,$,$,#26,$,$,$"}};
  Add(u"a.ifc", kWallAndContext + MapOf("10.,20.,1.,$,$,$"));
  Add(u"b.ifc", kWallAndContext + grid + MapOf("13.,24.,6.,$,$,$"));
  Place();
  EXPECT_TRUE(Has(1, "#26=IFCGRIDPLACEMENT(#25,$);")) << Lines(1);
}

TEST_F(PlacedModels, AnotherWorldCoordinateSystemIsThoughtOfAndBecomesThatOfTheFirst) {
  const Records away = {{40, "IFCCARTESIANPOINT", "(100.,0.,0.)"},
                        {41, "IFCAXIS2PLACEMENT3D", "#40,$,$"}};
  Add(u"a.ifc", kWallAndContext + MapOf("10.,20.,0.,$,$,$"));
  Add(u"b.ifc", kWallAndContext + away + MapOf("13.,24.,0.,0.,1.,$"));
  ASSERT_TRUE(SetAttribute(At(1, 12), "WorldCoordinateSystem", &At(1, 41)));
  Place();
  // The x axis of the later model goes to the north of the map.
  EXPECT_TRUE(Has(1, "=IFCCARTESIANPOINT((3.,104.,0.));")) << Lines(1);
  EXPECT_FALSE(Has(1, "#12=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,$,#41,$);"));
  const IFC::IfcEntity& world = *ReferenceOf(At(1, 12), "WorldCoordinateSystem");
  EXPECT_EQ(0.0, (*RealsOf(*ReferenceOf(world, "Location"), "Coordinates"))[0]);
}

TEST_F(PlacedModels, LengthsOfTheMapBecomeThoseOfTheModel) {
  Add(u"a.ifc", kWallAndContext + Records{{30, "IFCPROJECTEDCRS", "'EPSG:1',$,$,$,$,$,$"},
                                          {31, "IFCMAPCONVERSION", "#12,#30,10.,20.,0.,$,$,0.5"}});
  Add(u"b.ifc", kWallAndContext + MapOf("13.,24.,0.,$,$,0.5"));
  Place();
  // Two metres of the model are one of the map.
  EXPECT_TRUE(Has(1, "=IFCCARTESIANPOINT((6.,8.,0.));")) << Lines(1);
  EXPECT_EQ(
      "a.ifc: by its map conversion a metre of it is 0.5 metres on the map; the scale may be "
      "wrong, "
      "or missing\n"
      "b.ifc: by its map conversion a metre of it is 0.5 metres on the map; the scale may be "
      "wrong, "
      "or missing\n",
      Warnings());
}

TEST_F(PlacedModels, AnotherScaleIsWarnedOfAndTheOriginIsRight) {
  Add(u"a.ifc", kWallAndContext + MapOf("10.,20.,1.,$,$,$"));
  Add(u"b.ifc", kWallAndContext + MapOf("13.,24.,6.,$,$,0.9996"));
  Place();
  EXPECT_TRUE(Has(1, "=IFCCARTESIANPOINT((3.,4.,5.));"));
  EXPECT_EQ(
      "b.ifc: its map conversion scales otherwise than that of a.ifc, which no placement can do; a "
      "point that is a metre from its origin is 0.0004 metres from where the map says\n",
      Warnings());
}

// --- Which models are placed ---------------------------------------------------------------------

TEST_F(PlacedModels, AnotherReferenceSystemIsWarnedOf) {
  Add(u"a.ifc", kWallAndContext + MapOf("10.,20.,1.,$,$,$"));
  Add(u"b.ifc", kWallAndContext + MapOf("13.,24.,6.,$,$,$", "EPSG:2"));
  const std::string later = Lines(1);
  Place();
  EXPECT_EQ(later, Lines(1));
  EXPECT_EQ(
      "b.ifc: its reference system is 'EPSG:2', and that of a.ifc is 'EPSG:1'; it is not placed by "
      "the map\n",
      Warnings());
  EXPECT_EQ(1u, places_->BehindFold().documents.size());
}

TEST_F(PlacedModels, AnotherDatumOfTheSameNameIsWarnedOf) {
  Add(u"a.ifc", kWallAndContext + MapOf("10.,20.,1.,$,$,$"));
  Add(u"b.ifc", kWallAndContext + MapOf("13.,24.,6.,$,$,$"));
  ASSERT_TRUE(SetAttribute(At(0, 30), "VerticalDatum", ModelText(u"NAP")));
  ASSERT_TRUE(SetAttribute(At(1, 30), "VerticalDatum", ModelText(u"TAW")));
  Place();
  EXPECT_EQ(
      "b.ifc: its reference system is 'EPSG:1', and that of a.ifc is 'EPSG:1' with another datum "
      "or "
      "zone; it is not placed by the map\n",
      Warnings());
}

TEST_F(PlacedModels, OneWithAndOneWithoutAConversionAreWarnedOf) {
  Add(u"a.ifc", kWallAndContext + MapOf("10.,20.,1.,$,$,$"));
  Add(u"b.ifc", kWallAndContext);
  Place();
  EXPECT_EQ("b.ifc: it has no map conversion, and a.ifc has one; it is not placed by the map\n",
            Warnings());
}

TEST_F(PlacedModels, ConversionsBehindAFirstModelWithoutOneAreWarnedOf) {
  Add(u"a.ifc", kWallAndContext);
  Add(u"b.ifc", kWallAndContext + MapOf("10.,20.,1.,$,$,$"));
  Add(u"c.ifc", kWallAndContext);
  const std::string later = Lines(1);
  Place();
  EXPECT_EQ(later, Lines(1));
  EXPECT_EQ("b.ifc: it has a map conversion, and a.ifc has none; it is not placed by the map\n",
            Warnings());
  EXPECT_TRUE(places_->BehindFold().documents.empty());
}

TEST_F(PlacedModels, AConversionThatSaysNoPlaceIsWarnedOf) {
  const std::string notPlaced = "; it is not placed by the map\n";
  const auto warningsFor = [&](const Records& records) {
    documents_.clear();
    Add(u"a.ifc", kWallAndContext + MapOf("10.,20.,1.,$,$,$"));
    Add(u"b.ifc", kWallAndContext + records);
    Place();
    return Warnings();
  };
  EXPECT_EQ("b.ifc: its map conversion names no reference system" + notPlaced,
            warningsFor(MapOf("10.,20.,1.,$,$,$", "")));
  EXPECT_EQ("b.ifc: its map conversion scales by nothing, or by less" + notPlaced,
            warningsFor(MapOf("10.,20.,1.,$,$,0.")));
  EXPECT_EQ("b.ifc: its map conversion holds what is no number" + notPlaced,
            warningsFor(MapOf("1.E400,20.,1.,$,$,$")));
  EXPECT_EQ("b.ifc: its map conversion is in a unit that cannot be told" + notPlaced,
            warningsFor(MapOf("10.,20.,1.,$,$,$", "EPSG:1", "#6") +
                        Records{{6, "IFCSIUNIT", "*,.MASSUNIT.,$,.GRAM."}}));
  EXPECT_EQ(
      "b.ifc: its map conversion is not the only one, and another says something else" + notPlaced,
      warningsFor(MapOf("10.,20.,1.,$,$,$") +
                  Records{{32, "IFCMAPCONVERSION", "#12,#30,11.,20.,1.,$,$,$"}}));
}

TEST_F(PlacedModels, PlacesFartherApartThanAnyNumberAreWarnedOf) {
  Add(u"a.ifc", kWallAndContext + MapOf("-1.5E308,20.,1.,$,$,$"));
  Add(u"b.ifc", kWallAndContext + MapOf("1.5E308,20.,1.,$,$,$"));
  const std::string later = Lines(1);
  Place();
  EXPECT_EQ("b.ifc: its map conversion holds what is no number; it is not placed by the map\n",
            Warnings());
  EXPECT_EQ(later, Lines(1));
}

TEST_F(PlacedModels, AFirstModelWhoseConversionSaysNoPlaceIsWarnedOf) {
  Add(u"a.ifc", kWallAndContext + MapOf("10.,20.,1.,$,$,$", ""));
  Add(u"b.ifc", kWallAndContext + MapOf("10.,20.,1.,$,$,$"));
  Place();
  EXPECT_EQ("a.ifc: its map conversion names no reference system; no model is placed by it\n",
            Warnings());
}

TEST_F(PlacedModels, AConversionBetweenTwoSystemsIsNoneOfTheModel) {
  Add(u"a.ifc", kWallAndContext + MapOf("10.,20.,1.,$,$,$"));
  Add(u"b.ifc", kWallAndContext + MapOf("13.,24.,6.,$,$,$") +
                    Records{{40, "IFCPROJECTEDCRS", "'EPSG:2',$,$,$,$,$,$"},
                            {41, "IFCMAPCONVERSION", "#30,#40,1.,1.,1.,$,$,$"}});
  Place();
  EXPECT_TRUE(Has(1, "=IFCCARTESIANPOINT((3.,4.,5.));")) << Lines(1);
  EXPECT_EQ(1u, places_->BehindFold().leftovers.size());
}

// --- Models that are moved -----------------------------------------------------------------------

OffsetScene Showing(HostObject project, double x, double y, double z) {
  OffsetScene scene;
  scene.offsets = {{project, x, y, z}};
  return scene;
}

TEST_F(PlacedModels, AModelWithAnOffsetOfItsOwnStandsWhereItIsShown) {
  Add(u"a.ifc", kWallAndContext + MapOf("10.,20.,1.,$,$,$"));
  Add(u"b.ifc", kWallAndContext + MapOf("13.,24.,6.,$,$,$"));
  Place(Showing(2, 7000.0, 0.0, 0.0));
  EXPECT_TRUE(Has(1, "=IFCCARTESIANPOINT((7.,0.,0.));")) << Lines(1);
  EXPECT_FALSE(Has(1, "=IFCCARTESIANPOINT((3.,4.,5.));"));
  // It is in the coordinates of the first all the same.
  EXPECT_EQ(2u, places_->BehindFold().documents.size());
  EXPECT_EQ("", Warnings());
}

TEST_F(PlacedModels, AFirstModelThatIsMovedStaysOnTheMap) {
  Add(u"a.ifc", kWallAndContext + MapOf("10.,20.,1.,0.,1.,$"));
  Add(u"b.ifc", kWallAndContext + MapOf("13.,24.,6.,0.,1.,$"));
  Place(Showing(1, 7000.0, 0.0, 1000.0));
  // Its x axis goes to the north.
  EXPECT_TRUE(Has(0, "#31=IFCMAPCONVERSION(#12,#30,10.,13.,0.,0.,1.,$);")) << Lines(0);
  EXPECT_TRUE(Has(0, "=IFCCARTESIANPOINT((7.,0.,1.));"));
  EXPECT_TRUE(Has(1, "=IFCCARTESIANPOINT((11.,-3.,6.));")) << Lines(1);
}

TEST_F(PlacedModels, TheCentreMovesTheFirstAndWithItWhatIsPlaced) {
  Add(u"a.ifc", kWallAndContext + MapOf("10.,20.,1.,$,$,$"));
  Add(u"b.ifc", kWallAndContext + MapOf("13.,24.,6.,$,$,$"));
  OffsetScene scene;
  scene.centers.first = {1.0, 2.0, 3.0};
  Place(scene);
  EXPECT_TRUE(Has(0, "#31=IFCMAPCONVERSION(#12,#30,11.,22.,4.,$,$,$);")) << Lines(0);
  EXPECT_TRUE(Has(1, "=IFCCARTESIANPOINT((2.,2.,2.));")) << Lines(1);
  EXPECT_EQ(2u, CountOf(1, "=IFCLOCALPLACEMENT("));
}

TEST_F(PlacedModels, ACompensatedConversionIsInTheUnitOfItsMap) {
  Add(u"a.ifc", kWallAndContext + MapOf("10.,20.,1.,$,$,1000.", "EPSG:1", "#3"));
  Place(Showing(1, 7000.0, 0.0, 0.0));
  EXPECT_TRUE(Has(0, "#31=IFCMAPCONVERSION(#12,#30,-6990.,20.,1.,$,$,1000.);")) << Lines(0);
}

// --- True north ----------------------------------------------------------------------------------

Records NorthTo(const std::string& ratios) { return {{40, "IFCDIRECTION", "(" + ratios + ")"}}; }

class TrueNorths : public PlacedModels {
 protected:
  // Of a first model, and of a later one that the map turns by a right angle; empty: none is told.
  void Give(const std::string& first, const std::string& later) {
    for (const auto& [ratios, map] :
         {std::pair(first, "10.,20.,1.,$,$,$"), std::pair(later, "13.,24.,6.,0.,1.,$")}) {
      Add(documents_.empty() ? u"a.ifc" : u"b.ifc",
          kWallAndContext + MapOf(map) + NorthTo(ratios.empty() ? "1.,0." : ratios));
      const std::size_t last = documents_.size() - 1;
      if (ratios.empty()) continue;
      ASSERT_TRUE(SetAttribute(At(last, 12), "TrueNorth", &At(last, 40)));
    }
    Place();
  }
  std::string NorthOfLater() {
    const IFC::IfcEntity* const north = ReferenceOf(At(1, 12), "TrueNorth");
    if (north == nullptr) return "none";
    const List<double>& ratios = *RealsOf(*north, "DirectionRatios");
    return std::to_string(ratios[0]) + " " + std::to_string(ratios[1]);
  }
};

TEST_F(TrueNorths, OfAPlacedModelTurnsWithIt) {
  Give("0.,1.", "1.,0.");
  EXPECT_EQ("0.000000 1.000000", NorthOfLater());
  EXPECT_EQ("", Warnings());
}

TEST_F(TrueNorths, ThatNobodyStatesIsNotTaken) {
  Give("", "");
  EXPECT_EQ("none", NorthOfLater());
  EXPECT_EQ("", Warnings());
}

TEST_F(TrueNorths, ThatOnlyTheFirstStatesIsThatOfTheLaterToo) {
  Give("0.6,0.8", "");
  EXPECT_EQ("0.600000 0.800000", NorthOfLater());
  EXPECT_EQ("", Warnings());
}

TEST_F(TrueNorths, ThatDiffersIsKeptAndWarnedOf) {
  Give("0.,1.", "0.,1.");
  EXPECT_EQ("-1.000000 0.000000", NorthOfLater());
  EXPECT_EQ("b.ifc: its true north is 90 degrees from that of a.ifc where the map places it\n",
            Warnings());
}

TEST_F(TrueNorths, ThatIsAlmostTheSameBecomesThatOfTheFirst) {
  Give("0.,1.", "1.,0.0001");
  EXPECT_EQ("0.000000 1.000000", NorthOfLater());
  EXPECT_EQ("", Warnings());
}

// --- IFC2X3 --------------------------------------------------------------------------------------

const Records kOlderWall = {{10, "IFCCARTESIANPOINT", "(0.,0.,0.)"},
                            {11, "IFCAXIS2PLACEMENT3D", "#10,$,$"},
                            {12, "IFCGEOMETRICREPRESENTATIONCONTEXT", "$,'Model',3,$,#11,$"},
                            {21, "IFCCARTESIANPOINT", "(1.,2.,3.)"},
                            {22, "IFCAXIS2PLACEMENT3D", "#21,$,$"},
                            {23, "IFCLOCALPLACEMENT", "$,#22"},
                            {24, "IFCWALL", "'g24',$,$,$,$,#23,$,$"}};

Records OlderMap(const std::string& eastings, const std::string& more = {},
                 const Records& properties = {}, const std::string& unit = "METRE") {
  return Records{{30, "IFCPROPERTYSINGLEVALUE", "'Eastings',$," + eastings + ",$"},
                 {31, "IFCPROPERTYSINGLEVALUE", "'TargetCRS',$,IFCLABEL(' epsg:1'),$"},
                 {32, "IFCPROPERTYSINGLEVALUE", "'MapUnit',$,IFCLABEL('" + unit + "'),$"}} +
         properties +
         Records{{33, "IFCPROPERTYSET", "'g33',$,'ePSet_MapConversion',$,(#30,#31" + more + ")"},
                 {34, "IFCPROPERTYSET", "'g34',$,'ePSet_ProjectedCRS',$,(#32)"}};
}

class OlderPlacedModels : public PlacedModels {
 protected:
  void AddOlder(const WideString& name, const Records& records) {
    Add(name, records, 4, SchemaNamespace::IFC2X3);
  }
};

TEST_F(OlderPlacedModels, ThePlaceIsMultipliedIntoOutermostPlacements) {
  AddOlder(u"a.ifc", kOlderWall + OlderMap("IFCLENGTHMEASURE(10.)"));
  AddOlder(
      u"b.ifc",
      kOlderWall + OlderMap("IFCREAL(13.)", ",#35,#36",
                            {{35, "IFCPROPERTYSINGLEVALUE", "'XAXISABSCISSA',$,IFCREAL(0.),$"},
                             {36, "IFCPROPERTYSINGLEVALUE", "'xAxisOrdinate',$,IFCREAL(2.),$"}}));
  Place();
  // (1, 2) is turned to (-2, 1).
  EXPECT_TRUE(Has(1, "=IFCCARTESIANPOINT((1.,1.,3.));")) << Lines(1);
  EXPECT_EQ(1u, CountOf(1, "=IFCLOCALPLACEMENT("));
  EXPECT_EQ(1u, CountOf(1, "#23=IFCLOCALPLACEMENT($,"));
  EXPECT_EQ(2u, places_->BehindFold().leftovers.size());
  EXPECT_EQ("", Warnings());
}

TEST_F(OlderPlacedModels, AProductWithoutAPlacementGetsOneAtThePlace) {
  AddOlder(u"a.ifc", kOlderWall + OlderMap("IFCREAL(10.)"));
  AddOlder(u"b.ifc",
           kOlderWall + OlderMap("IFCREAL(13.)") + Records{{25, "IFCWALL", "'g25',$,$,$,$,$,$,$"}});
  Place();
  EXPECT_EQ(2u, CountOf(1, "=IFCLOCALPLACEMENT($,"));
  EXPECT_TRUE(Has(1, "=IFCCARTESIANPOINT((3.,0.,0.));")) << Lines(1);
}

TEST_F(OlderPlacedModels, AxesThatPlacementsShareTheyShareBehindIt) {
  AddOlder(u"a.ifc", kOlderWall + OlderMap("IFCREAL(10.)"));
  AddOlder(u"b.ifc", kOlderWall + OlderMap("IFCREAL(13.)") +
                         Records{{25, "IFCLOCALPLACEMENT", "$,#22"},
                                 {26, "IFCWALL", "'g26',$,$,$,$,#25,$,$"}});
  Place();
  EXPECT_EQ(3u, CountOf(1, "=IFCAXIS2PLACEMENT3D(")) << Lines(1);
}

TEST_F(OlderPlacedModels, TheUnitOfTheMapIsAWord) {
  AddOlder(u"a.ifc", kOlderWall + OlderMap("IFCREAL(0.)"));
  AddOlder(u"b.ifc", kOlderWall + OlderMap("IFCREAL(10.)", ",#35",
                                           {{35, "IFCPROPERTYSINGLEVALUE",
                                             "'Scale',$,IFCREAL(3.280839895013123),$"}},
                                           "Foot"));
  Place();
  EXPECT_TRUE(Has(1, "=IFCCARTESIANPOINT((4.048E+00,2.,3.));")) << Lines(1);
}

TEST_F(OlderPlacedModels, AUnitThatNobodyKnowsIsWarnedOf) {
  AddOlder(u"a.ifc", kOlderWall + OlderMap("IFCREAL(10.)"));
  AddOlder(u"b.ifc", kOlderWall + OlderMap("IFCREAL(13.)", "", {}, "rod"));
  Place();
  EXPECT_EQ(
      "b.ifc: its map conversion is in a unit that cannot be told ('rod'); it is not placed by the "
      "map\n",
      Warnings());
}

TEST_F(OlderPlacedModels, AFirstModelThatIsMovedStaysOnTheMap) {
  AddOlder(u"a.ifc", kOlderWall + OlderMap("IFCINTEGER(10)"));
  Place(Showing(1, 7000.0, 500.0, 0.0));
  EXPECT_TRUE(Has(0, "#30=IFCPROPERTYSINGLEVALUE('Eastings',$,IFCLENGTHMEASURE(3.),$);"))
      << Lines(0);
  EXPECT_NE(std::string::npos,
            Lines(0).find("=IFCPROPERTYSINGLEVALUE('Northings',$,IFCLENGTHMEASURE(-5.E-01),$);"));
}

}  // namespace
}  // namespace corvel
