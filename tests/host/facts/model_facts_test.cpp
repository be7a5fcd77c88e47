#include "host/facts/model_facts.h"

#include <gtest/gtest.h>

#include <string>

#include "support/model.h"

namespace corvel::host {

namespace {

// Millimetres; a site, a building and two storeys, the upper one first.
const std::string kHouse =
    "#1=IFCPROJECT('p',$,'P',$,$,$,$,(#5),#2);#2=IFCUNITASSIGNMENT((#3,#4));"
    "#3=IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.);#4=IFCSIUNIT(*,.PLANEANGLEUNIT.,$,.RADIAN.);"
    "#5=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,$,#6,#8);"
    "#6=IFCAXIS2PLACEMENT3D(#7,$,$);#7=IFCCARTESIANPOINT((0.,0.,0.));#8=IFCDIRECTION((1.,1.));"
    "#10=IFCSITE('s',$,'Site',$,$,#20,$,$,.ELEMENT.,$,$,$,$,$);"
    "#11=IFCBUILDING('b',$,'House',$,$,#21,$,$,.ELEMENT.,$,$,$);"
    "#12=IFCBUILDINGSTOREY('u',$,'Upper',$,$,#22,$,$,.ELEMENT.,3000.);"
    "#13=IFCBUILDINGSTOREY('g',$,'Ground',$,$,#23,$,$,.ELEMENT.,0.);"
    "#14=IFCRELAGGREGATES('r1',$,$,$,#1,(#10));#15=IFCRELAGGREGATES('r2',$,$,$,#10,(#11));"
    "#16=IFCRELAGGREGATES('r3',$,$,$,#11,(#12,#13));"
    "#20=IFCLOCALPLACEMENT($,#6);#21=IFCLOCALPLACEMENT(#20,#6);"
    "#22=IFCLOCALPLACEMENT(#21,#30);#23=IFCLOCALPLACEMENT(#21,#6);"
    "#30=IFCAXIS2PLACEMENT3D(#31,$,$);#31=IFCCARTESIANPOINT((0.,0.,3100.));";

ModelFacts FactsOfRecords(const std::string& records) {
  test::Model model(records);
  return ModelFactsOf(*model);
}

}  // namespace

TEST(ModelFacts, StoreysAreToldFromTheLowestInMetres) {
  const ModelFacts facts = FactsOfRecords(kHouse);
  ASSERT_EQ(2u, facts.spatial.storeys.size());
  const SpatialFacts& ground = facts.spatial.storeys[0];
  const SpatialFacts& upper = facts.spatial.storeys[1];
  EXPECT_EQ(u"Ground", ground.name);
  EXPECT_EQ(13u, ground.number);
  EXPECT_EQ(0.0, ground.heightMetres);
  EXPECT_EQ("u", upper.guid);
  EXPECT_EQ("IfcBuildingStorey", upper.className);
  EXPECT_EQ(3.0, upper.elevationMetres);
  ASSERT_TRUE(upper.heightMetres);
  EXPECT_DOUBLE_EQ(3.1, *upper.heightMetres);
}

TEST(ModelFacts, SitesAndBuildingsHaveNoElevation) {
  const ModelFacts facts = FactsOfRecords(kHouse);
  EXPECT_EQ((std::vector<SpatialFacts>{{10, "IfcSite", "s", u"Site", {}, {}}}),
            facts.spatial.sites);
  EXPECT_EQ((std::vector<SpatialFacts>{{11, "IfcBuilding", "b", u"House", {}, {}}}),
            facts.spatial.buildings);
}

TEST(ModelFacts, AStoreyThatIsPartOfNothingIsToldWithItsElevation) {
  const ModelFacts facts =
      FactsOfRecords("#1=IFCBUILDINGSTOREY('g',$,'Lost',$,$,$,$,$,.ELEMENT.,2.5);");
  ASSERT_EQ(1u, facts.spatial.storeys.size());
  EXPECT_EQ(2.5, facts.spatial.storeys[0].elevationMetres);
  EXPECT_EQ(std::nullopt, facts.spatial.storeys[0].heightMetres);
}

TEST(ModelFacts, ProductsAreCountedByClass) {
  const ModelFacts facts = FactsOfRecords(
      kHouse + "#40=IFCWALL('w1',$,$,$,$,$,$,$,$);#41=IFCWALL('w2',$,$,$,$,$,$,$,$);");
  EXPECT_EQ((std::vector<std::pair<std::string, std::uint64_t>>{
                {"IfcBuildingStorey", 2}, {"IfcWall", 2}, {"IfcBuilding", 1}, {"IfcSite", 1}}),
            facts.products);
  EXPECT_EQ(6u, facts.ProductCount());
  EXPECT_EQ(std::vector<std::uint32_t>{1}, facts.projects);
  EXPECT_EQ("IFC4", facts.release);
  EXPECT_EQ(u"IFC4", facts.schemaIdentifier);
}

TEST(ModelFacts, TheExtentIsInMetresAndCountsWhatStandsNowhere) {
  const ModelFacts facts =
      FactsOfRecords(kHouse +
                     "#40=IFCWALL('w',$,$,$,$,#41,$,$,$);#41=IFCLOCALPLACEMENT(#22,#42);"
                     "#42=IFCAXIS2PLACEMENT3D(#43,$,$);#43=IFCCARTESIANPOINT((-2000.,500.,0.));"
                     "#50=IFCWALL('x',$,$,$,$,#51,$,$,$);#51=IFCLOCALPLACEMENT(#51,#6);");
  EXPECT_EQ(5u, facts.extent.placed);
  EXPECT_EQ(1u, facts.extent.nowhere);
  EXPECT_DOUBLE_EQ(-2.0, facts.extent.least[0]);
  EXPECT_DOUBLE_EQ(0.0, facts.extent.most[0]);
  EXPECT_DOUBLE_EQ(0.5, facts.extent.most[1]);
  EXPECT_DOUBLE_EQ(3.1, facts.extent.most[2]);
}

TEST(ModelFacts, DoubledGuidsNameAllTheirRecords) {
  const ModelFacts facts = FactsOfRecords(
      "#1=IFCWALL('a',$,$,$,$,$,$,$,$);#2=IFCWALL('b',$,$,$,$,$,$,$,$);"
      "#3=IFCDOOR('a',$,$,$,$,$,$,$,$,$,$,$,$);#4=IFCWALL('a',$,$,$,$,$,$,$,$);");
  EXPECT_EQ((std::vector<DoubledGuid>{{"a", {1, 3, 4}}}), facts.doubledGuids);
}

TEST(ModelFacts, AModelOfDifferentGuidsHasNoneDoubled) {
  EXPECT_TRUE(FactsOfRecords(kHouse).doubledGuids.empty());
}

TEST(ModelFacts, UnitsAreTold) {
  const ModelFacts facts = FactsOfRecords(
      "#1=IFCPROJECT('p',$,$,$,$,$,$,$,#2);#2=IFCUNITASSIGNMENT((#3,#4,#8,#12));"
      "#3=IFCSIUNIT(*,.LENGTHUNIT.,.CENTI.,.METRE.);"
      "#4=IFCDERIVEDUNIT((#5,#6),.MASSDENSITYUNIT.,$);#5=IFCDERIVEDUNITELEMENT(#7,1);"
      "#6=IFCDERIVEDUNITELEMENT(#3,-3);#7=IFCSIUNIT(*,.MASSUNIT.,.KILO.,.GRAM.);"
      "#8=IFCCONVERSIONBASEDUNIT(#9,.PLANEANGLEUNIT.,'DEGREE',#10);"
      "#9=IFCDIMENSIONALEXPONENTS(0,0,0,0,0,0,0);"
      "#10=IFCMEASUREWITHUNIT(IFCPLANEANGLEMEASURE(0.0174),#11);"
      "#11=IFCSIUNIT(*,.PLANEANGLEUNIT.,$,.RADIAN.);#12=IFCMONETARYUNIT('EUR');");
  EXPECT_EQ((std::vector<UnitFacts>{{"LENGTHUNIT", u"CENTIMETRE"},
                                    {"MASSDENSITYUNIT", u"KILOGRAM CENTIMETRE^-3"},
                                    {"PLANEANGLEUNIT", u"DEGREE"},
                                    {"MONETARYUNIT", u"EUR"}}),
            facts.units);
  EXPECT_EQ(u"CENTIMETRE", facts.lengthUnit.name);
  EXPECT_EQ(0.01, facts.metresPerLengthUnit);
}

TEST(ModelFacts, ThePrefixOfAnAreaIsThatOfItsMetre) {
  const ModelFacts facts = FactsOfRecords(
      "#1=IFCPROJECT('p',$,$,$,$,$,$,$,#2);#2=IFCUNITASSIGNMENT((#3,#4,#5));"
      "#3=IFCSIUNIT(*,.AREAUNIT.,.MILLI.,.SQUARE_METRE.);"
      "#4=IFCSIUNIT(*,.VOLUMEUNIT.,.CENTI.,.CUBIC_METRE.);#5=IFCSIUNIT(*,.AREAUNIT.,$,"
      ".SQUARE_METRE.);");
  EXPECT_EQ((std::vector<UnitFacts>{{"AREAUNIT", u"SQUARE_MILLIMETRE"},
                                    {"VOLUMEUNIT", u"CUBIC_CENTIMETRE"},
                                    {"AREAUNIT", u"SQUARE_METRE"}}),
            facts.units);
}

TEST(ModelFacts, TrueNorthIsTheAngleFromTheYAxisClockwise) {
  const ModelFacts facts = FactsOfRecords(kHouse);
  ASSERT_TRUE(facts.georeference.trueNorthDegrees);
  EXPECT_DOUBLE_EQ(45.0, *facts.georeference.trueNorthDegrees);
  EXPECT_EQ(std::nullopt, facts.georeference.conversion);
}

TEST(ModelFacts, MapConversionAndItsSystemAreTold) {
  const ModelFacts facts = FactsOfRecords(
      "#1=IFCMAPCONVERSION(#2,#3,155000.,463000.,1.5,1.,0.,1.);"
      "#2=IFCGEOMETRICREPRESENTATIONCONTEXT($,$,3,$,$,$);"
      "#3=IFCPROJECTEDCRS('EPSG:28992',$,$,$,$,$,$);");
  EXPECT_EQ((MapConversion{{155000.0, 463000.0, 1.5, 1.0, 0.0, 1.0}}),
            facts.georeference.conversion);
  EXPECT_EQ(u"EPSG:28992", facts.georeference.system);
  EXPECT_EQ(std::nullopt, facts.georeference.trueNorthDegrees);
}

TEST(ModelFacts, TheExporterIsTheApplicationElseTheHeader) {
  EXPECT_EQ(u"sys", (Exporter{{}, u"sys", u"pre", {}}.Name()));
  EXPECT_EQ(u"pre", (Exporter{{}, {}, u"pre", {}}.Name()));
  const ModelFacts facts = FactsOfRecords(
      "#1=IFCAPPLICATION(#2,'4.2','Drawer','D');#2=IFCORGANIZATION($,'o',$,$,$);"
      "#3=IFCAPPLICATION(#2,'1','Other','O');");
  EXPECT_EQ(u"Drawer 4.2", facts.exporter.Name());
}

TEST(ModelFacts, AVersionThatTheNameEndsWithIsNotRepeated) {
  EXPECT_EQ(u"Drawer 2024", FactsOfRecords("#1=IFCAPPLICATION(#2,'2024','Drawer 2024','D');"
                                           "#2=IFCORGANIZATION($,'o',$,$,$);")
                                .exporter.application);
}

}  // namespace corvel::host
