#include "host/model_frame.h"

#include <gtest/gtest.h>

#include <string>

#include "support/model.h"

namespace corvel::host {

namespace {

// A project whose unit of length is #9.
LengthUnit UnitOf(const std::string& unit) {
  test::Model model("#1=IFCPROJECT('p',$,$,$,$,$,$,$,#2);#2=IFCUNITASSIGNMENT((#9));" + unit);
  return LengthUnitOf(*model);
}

std::optional<MapConversion> ConversionIn(const std::string& records) {
  test::Model model(records);
  return MapConversionOf(*model);
}

const std::string kFoot =
    "#3=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);#4=IFCMEASUREWITHUNIT(IFCLENGTHMEASURE(0.3048),#3);"
    "#9=IFCCONVERSIONBASEDUNIT(#5,.LENGTHUNIT.,'FOOT',#4);#5=IFCDIMENSIONALEXPONENTS(1,0,0,0,0,0,0"
    ");";

std::string MapConversionWith(const std::string& values) {
  return "#1=IFCMAPCONVERSION(#2,#3," + values +
         ");#2=IFCGEOMETRICREPRESENTATIONCONTEXT($,$,3,$,$,$);#3=IFCPROJECTEDCRS('a',$,$,$,$,$,$);";
}

std::string SetWith(const std::string& name, const std::string& properties) {
  return "#1=IFCPROPERTYSET('g',$,'" + name + "',$,(#2,#3));#2=IFCPROPERTYSINGLEVALUE(" +
         properties + ",$);#3=IFCPROPERTYSINGLEVALUE('Scale',$,IFCLABEL('2'),$);";
}

}  // namespace

TEST(LengthUnitOf, AnSIUnitHasItsPrefix) {
  const LengthUnit unit = UnitOf("#9=IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.);");
  EXPECT_EQ(u"MILLIMETRE", unit.name);
  EXPECT_EQ(1e-3, unit.metres);
}

TEST(LengthUnitOf, AUnitMadeFromAnotherTellsItsSize) {
  const LengthUnit unit = UnitOf(kFoot);
  EXPECT_EQ(u"FOOT (0.3048 m)", unit.name);
  EXPECT_EQ(0.3048, unit.metres);
}

TEST(LengthUnitOf, AUnitMadeFromItselfHasNoSize) {
  const LengthUnit unit = UnitOf(
      "#4=IFCMEASUREWITHUNIT(IFCLENGTHMEASURE(2.),#9);"
      "#9=IFCCONVERSIONBASEDUNIT($,.LENGTHUNIT.,'ELL',#4);");
  EXPECT_EQ(u"ELL", unit.name);
  EXPECT_EQ(std::nullopt, unit.metres);
}

TEST(LengthUnitOf, WithoutAUnitOfLengthThereIsNoName) {
  EXPECT_EQ(u"", UnitOf("#9=IFCSIUNIT(*,.AREAUNIT.,$,.SQUARE_METRE.);").name);
}

TEST(LengthUnitsDiffer, BySizeAndWithoutOneByName) {
  EXPECT_FALSE(Differ({u"FOOT", 0.3048}, {u"foot", 0.3048000000001}));
  EXPECT_TRUE(Differ({u"FOOT", 0.3048}, {u"FOOT", 0.3048006096}));
  EXPECT_TRUE(Differ({u"ELL", {}}, {u"FOOT", 0.3048}));
  EXPECT_FALSE(Differ({u"ELL", {}}, {u"ELL", {}}));
}

TEST(MapConversionOf, AttributesThatAreAbsentStayAsTheyAre) {
  const auto conversion = ConversionIn(MapConversionWith("10.,20.5,-3.,$,$,$"));
  ASSERT_TRUE(conversion);
  EXPECT_EQ((MapConversion{{10.0, 20.5, -3.0, 1.0, 0.0, 1.0}}), *conversion);
}

TEST(MapConversionOf, APropertySetStandsForItInAnyCaseOfItsLetters) {
  const auto conversion = ConversionIn(SetWith("EPset_MapConversion", "'EASTINGS',$,IFCREAL(7.)"));
  ASSERT_TRUE(conversion);
  EXPECT_EQ((MapConversion{{7.0, 0.0, 0.0, 1.0, 0.0, 2.0}}), *conversion);
}

TEST(MapConversionOf, TheLastDigitsOfANumberDoNotMatter) {
  EXPECT_EQ(ConversionIn(MapConversionWith("10.1,20.,3.,$,$,1.")),
            ConversionIn(MapConversionWith("10.100000000000001,20.,3.,$,$,0.99999999999999999")));
}

TEST(MapConversionOf, NumbersInPropertiesMayBeTypedQuotedOrInAList) {
  const auto eastingsOf = [](const std::string& value) {
    return ConversionIn(SetWith("ePset_MapConversion", "'Eastings',$," + value))->values[0];
  };
  EXPECT_EQ(1.5, eastingsOf("IFCREAL(1.5)"));
  EXPECT_EQ(7.0, eastingsOf("IFCINTEGER(7)"));
  EXPECT_EQ(-2.5, eastingsOf("IFCLABEL('-2.5')"));
  EXPECT_EQ(12.0, eastingsOf("IFCTEXT('12 m')"));
  const auto list = ConversionIn(
      "#1=IFCPROPERTYSET('g',$,'ePset_MapConversion',$,(#2));"
      "#2=IFCPROPERTYLISTVALUE('Eastings',$,(IFCREAL(3.5),IFCREAL(4.)),$);");
  EXPECT_EQ(3.5, list->values[0]);
}

TEST(MapConversionOf, ValuesThatAreNoNumbersAreAbsent) {
  for (const char* const value :
       {"IFCLABEL('x')", "IFCLABEL('Infinity')", "IFCLABEL('')", "$", "IFCBOOLEAN(.T.)"}) {
    const auto conversion =
        ConversionIn(SetWith("ePset_MapConversion", "'Eastings',$," + std::string(value)));
    ASSERT_TRUE(conversion);
    EXPECT_EQ(0.0, conversion->values[0]) << value;
  }
}

TEST(MapConversionOf, OtherSetsAreNone) {
  EXPECT_EQ(std::nullopt, ConversionIn(SetWith("Pset_WallCommon", "'Eastings',$,IFCREAL(7.)")));
}

TEST(MapConversionsDiffer, OnlyTheValuesThatDifferAreTold) {
  const MapConversion first;
  EXPECT_EQ(u"", DifferenceBetween(first, first));
  EXPECT_EQ(u"Eastings 10.5 for 0, Scale 2 for 1",
            DifferenceBetween(first, {{10.5, 0.0, 0.0, 1.0, 0.0, 2.0}}));
}

}  // namespace corvel::host
