// Units as the engine sees them, in every release.
#include <cstdint>
#include <optional>
#include <string>

#include "schema/interfaces/interfaces.h"
#include "schema/record_model.h"

namespace corvel::test {

using IFC::IfcEntity;

class UnitInterface : public EachRelease {
 protected:
  static constexpr const char* kMillimetre = "IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.)";
  static constexpr const char* kMetre = "IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.)";
};
RUN_FOR_EACH_RELEASE(UnitInterface);

// --- VIfcNamedUnit -------------------------------------------------------------------------------
TEST_P(UnitInterface, UnitTypeHasTheFormOfAFile) {
  EXPECT_EQ(u".LENGTHUNIT.,", AddAs<IFC::VIfcNamedUnit>(1, kMetre).getUnitTypeText());
  EXPECT_EQ(u".PLANEANGLEUNIT.,",
            AddAs<IFC::VIfcNamedUnit>(2, "IFCCONVERSIONBASEDUNIT($,.PLANEANGLEUNIT.,'degree',$)")
                .getUnitTypeText());
  EXPECT_EQ(u".USERDEFINED.,",
            AddAs<IFC::VIfcNamedUnit>(3, "IFCCONTEXTDEPENDENTUNIT($,.USERDEFINED.,'piece')")
                .getUnitTypeText());
}

TEST_P(UnitInterface, UnitTypesHaveOneNumberingInAllReleases) {
  auto& unit = AddAs<IFC::VIfcNamedUnit>(1, kMetre);
  const struct {
    std::int32_t number;
    const char16_t* text;
  } cases[] = {{0, u".ABSORBEDDOSEUNIT.,"}, {2, u".AREAUNIT.,"},    {15, u".LENGTHUNIT.,"},
               {20, u".MASSUNIT.,"},        {28, u".VOLUMEUNIT.,"}, {29, u".USERDEFINED.,"}};
  for (const auto& one : cases) {
    unit.setUnitType(one.number);
    EXPECT_EQ(one.text, unit.getUnitTypeText());
  }
  EXPECT_EQ("IFCSIUNIT(*,.USERDEFINED.,$,.METRE.)", Written(&unit));
}

TEST_P(UnitInterface, UnitTypeWithoutARowHasNoText) {
  auto& unit = AddAs<IFC::VIfcNamedUnit>(1, kMetre);
  unit.setUnitType(30);
  EXPECT_EQ(u"$,", unit.getUnitTypeText());
}

// --- VIfcSIUnit ----------------------------------------------------------------------------------
TEST_P(UnitInterface, UnitWithAPrefixGoesByItsPrefix) {
  auto& unit = AddAs<IFC::VIfcSIUnit>(1, kMillimetre);
  EXPECT_EQ(u".MILLI.,", unit.getPrefixOrName());
  EXPECT_EQ(u".MILLI.,", unit.getPrefixText());
  EXPECT_EQ(u".METRE.,", unit.getNameText());
}

TEST_P(UnitInterface, UnitWithoutAPrefixGoesByItsName) {
  auto& unit = AddAs<IFC::VIfcSIUnit>(1, kMetre);
  EXPECT_EQ(u".METRE.,", unit.getPrefixOrName());
  EXPECT_EQ(u"", unit.getPrefixText());
  EXPECT_EQ(u".METRE.,", unit.getNameText());
}

TEST_P(UnitInterface, PrefixIsSetAndTakenAway) {
  auto& unit = AddAs<IFC::VIfcSIUnit>(1, kMetre);
  unit.setPrefix(10);
  EXPECT_EQ("IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.)", Written(&unit));
  unit.setPrefix(0);
  EXPECT_EQ("IFCSIUNIT(*,.LENGTHUNIT.,.EXA.,.METRE.)", Written(&unit));
  unit.setPrefix(std::nullopt);
  EXPECT_EQ("IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.)", Written(&unit));
  EXPECT_EQ(u"", unit.getPrefixText());
}

TEST_P(UnitInterface, PrefixesAndNamesHaveOneNumberingInAllReleases) {
  const char16_t* const prefixes[] = {u".EXA.,",  u".PETA.,",  u".TERA.,",  u".GIGA.,",
                                      u".MEGA.,", u".KILO.,",  u".HECTO.,", u".DECA.,",
                                      u".DECI.,", u".CENTI.,", u".MILLI.,", u".MICRO.,",
                                      u".NANO.,", u".PICO.,",  u".FEMTO.,", u".ATTO.,"};
  auto& unit = AddAs<IFC::VIfcSIUnit>(1, kMetre);
  std::int32_t number = 0;
  for (const char16_t* const prefix : prefixes) {
    unit.setPrefix(number++);
    EXPECT_EQ(prefix, unit.getPrefixText());
  }
  unit.setName(0);
  EXPECT_EQ(u".AMPERE.,", unit.getNameText());
  unit.setName(24);
  EXPECT_EQ(u".SQUARE_METRE.,", unit.getNameText());
  unit.setName(29);
  EXPECT_EQ("IFCSIUNIT(*,.LENGTHUNIT.,.ATTO.,.WEBER.)", Written(&unit));
}

// --- VIfcConversionBasedUnit ---------------------------------------------------------------------
TEST_P(UnitInterface, ConversionBasedUnitGoesByItsName) {
  auto& foot =
      AddAs<IFC::VIfcConversionBasedUnit>(1, "IFCCONVERSIONBASEDUNIT($,.LENGTHUNIT.,'FOOT',$)");
  EXPECT_EQ(u"FOOT", foot.getUnitName());
}

TEST_P(UnitInterface, ConversionIsANewMeasure) {
  auto& metre = AddAs<IFC::VIfcNamedUnit>(1, kMetre);
  auto& unit =
      AddAs<IFC::VIfcConversionBasedUnit>(2, "IFCCONVERSIONBASEDUNIT($,.LENGTHUNIT.,'FOOT',$)");
  IfcEntity* const measure = unit.setConversion(u"FATHOM", 2.0, &metre, Pool());
  EXPECT_EQ(0u, measure->marker);
  measure->SetMarker(3);
  EXPECT_EQ(u"FATHOM", unit.getUnitName());
  EXPECT_EQ("IFCCONVERSIONBASEDUNIT(*,.LENGTHUNIT.,'FATHOM',#3)", Written(&unit));
  EXPECT_EQ("IFCMEASUREWITHUNIT(IFCREAL(2.),#1)", Written(measure));
}

TEST_P(UnitInterface, ConversionWithoutAUnitHasNone) {
  auto& unit =
      AddAs<IFC::VIfcConversionBasedUnit>(1, "IFCCONVERSIONBASEDUNIT($,.LENGTHUNIT.,'FOOT',$)");
  IfcEntity* const measure = unit.setConversion(u"FATHOM", 2.0, nullptr, Pool());
  EXPECT_EQ("IFCMEASUREWITHUNIT(IFCREAL(2.),*)", Written(measure));
}

class OffsetUnitInterface : public EachRelease {};
RUN_FOR_RELEASES(OffsetUnitInterface, IFC4, IFC4X4);

TEST_P(OffsetUnitInterface, UnitWithAnOffsetIsAConversionBasedUnit) {
  constexpr const char* kFahrenheit =
      "IFCCONVERSIONBASEDUNITWITHOFFSET($,.THERMODYNAMICTEMPERATUREUNIT.,'F',$,3.)";
  auto& unit = AddAs<IFC::VIfcConversionBasedUnit>(1, kFahrenheit);
  auto& kelvin = AddAs<IFC::VIfcNamedUnit>(2, "IFCSIUNIT(*,.LENGTHUNIT.,$,.KELVIN.)");
  unit.setConversion(u"new", 2.0, &kelvin, Pool())->SetMarker(3);
  EXPECT_EQ("IFCCONVERSIONBASEDUNITWITHOFFSET(*,.THERMODYNAMICTEMPERATUREUNIT.,'new',#3,3.)",
            Written(&unit));
}

// --- VIfcDerivedUnit -----------------------------------------------------------------------------
TEST_P(UnitInterface, ElementsOfADerivedUnitAreAppended) {
  IfcEntity* const metre = Add(1, kMetre);
  IfcEntity* const foot = Add(2, "IFCCONVERSIONBASEDUNIT($,.LENGTHUNIT.,'FOOT',$)");
  auto& unit = AddAs<IFC::VIfcDerivedUnit>(3, "IFCDERIVEDUNIT((),.USERDEFINED.,'slope')");
  IfcEntity* const first = unit.addElement(metre, 2, Pool());
  EXPECT_EQ(0u, first->marker);
  first->SetMarker(4);
  unit.addElement(foot, -2, Pool())->SetMarker(5);
  EXPECT_EQ("(#4,#5),.USERDEFINED.,'slope'", FirstWritten(3, &unit));
  EXPECT_EQ("IFCDERIVEDUNITELEMENT(#1,2)", Written(first));
  EXPECT_EQ("IFCDERIVEDUNITELEMENT(#2,-2)", Written(unit.addElement(foot, -2, Pool())));
}

TEST_P(UnitInterface, ElementOfWhatIsNoNamedUnitHasNoUnit) {
  IfcEntity* const money = Add(1, "IFCMONETARYUNIT");
  auto& unit = AddAs<IFC::VIfcDerivedUnit>(2, "IFCDERIVEDUNIT((),.USERDEFINED.,'slope')");
  EXPECT_EQ("IFCDERIVEDUNITELEMENT(*,1)", Written(unit.addElement(money, 1, Pool())));
  EXPECT_EQ("IFCDERIVEDUNITELEMENT(*,1)", Written(unit.addElement(nullptr, 1, Pool())));
}

TEST_P(UnitInterface, TypesOfDerivedUnitsHaveOneNumberingInAllReleases) {
  auto& unit = AddAs<IFC::VIfcDerivedUnit>(1, "IFCDERIVEDUNIT((),.USERDEFINED.,'slope')");
  unit.setUnitType(0);
  EXPECT_EQ("(),.ANGULARVELOCITYUNIT.", FirstWritten(2, &unit));
  unit.setUnitType(21);
  EXPECT_EQ("(),.TORQUEUNIT.", FirstWritten(2, &unit));
  unit.setUnitType(53);
  EXPECT_EQ("(),.USERDEFINED.", FirstWritten(2, &unit));
}

// --- VirtualIfcUnitAssignment --------------------------------------------------------------------
TEST_P(UnitInterface, UnitsAreAppendedToTheAssignment) {
  Add(1, kMetre);
  auto& assignment = AddAs<IFC::VirtualIfcUnitAssignment>(2, "IFCUNITASSIGNMENT((#1))");
  assignment.addUnit(&AddAs<IFC::IfcUnit>(3, "IFCMONETARYUNIT"), Pool());
  assignment.addUnit(&AddAs<IFC::IfcUnit>(4, "IFCDERIVEDUNIT"), Pool());
  EXPECT_EQ("IFCUNITASSIGNMENT((#1,#3,#4))", Written(&assignment));
}

TEST_P(UnitInterface, NullUnitIsAppendedAsNull) {
  Add(1, kMetre);
  auto& assignment = AddAs<IFC::VirtualIfcUnitAssignment>(2, "IFCUNITASSIGNMENT((#1))");
  assignment.addUnit(nullptr, Pool());
  EXPECT_EQ("IFCUNITASSIGNMENT((#1,*))", Written(&assignment));
}

TEST_P(UnitInterface, EveryUnitIsReadIntoAnAssignment) {
  Add(1, kMetre);
  Add(2, "IFCCONVERSIONBASEDUNIT");
  Add(3, "IFCCONTEXTDEPENDENTUNIT");
  Add(4, "IFCDERIVEDUNIT");
  Add(5, "IFCMONETARYUNIT");
  Add(6, "IFCPERSON");
  EXPECT_EQ("IFCUNITASSIGNMENT((#1,#2,#3,#4,#5))",
            Written(Add(7, "IFCUNITASSIGNMENT((#1,#2,#3,#4,#5,#6))")));
}

}  // namespace corvel::test
