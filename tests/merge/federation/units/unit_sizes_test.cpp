// How large units are, by figures from tables of units and not from the code.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "merge/federation/units/converted_models.h"

namespace corvel::test {

namespace {

class UnitSizes : public ConvertedModels {
 protected:
  // Of #1.
  std::optional<UnitSize> SizeOf(const std::string& records, std::string_view schema = "IFC4") {
    return SizeOfUnit(*At(Add("units.ifc", records, schema), 1));
  }
  double FactorOf(const std::string& records) {
    const std::optional<UnitSize> size = SizeOf(records);
    return size ? size->factor : std::nan("");
  }
};

std::string Si(const std::string& type, const std::string& prefix, const std::string& name,
               int number = 1) {
  return "#" + std::to_string(number) + "=IFCSIUNIT(*,." + type + ".," + prefix + ",." + name +
         ".);\n";
}

std::string Made(const std::string& type, const std::string& name, const std::string& value,
                 const std::string& base) {
  return "#1=IFCCONVERSIONBASEDUNIT($,." + type + ".,'" + name + "',#2);\n#2=IFCMEASUREWITHUNIT(" +
         value + ",#3);\n" + base;
}

TEST_F(UnitSizes, OfSiPrefixes) {
  const std::pair<const char*, double> prefixes[] = {
      {".EXA.", 1e18},   {".PETA.", 1e15}, {".TERA.", 1e12},  {".GIGA.", 1e9},
      {".MEGA.", 1e6},   {".KILO.", 1e3},  {".HECTO.", 1e2},  {".DECA.", 10.0},
      {"$", 1.0},        {".DECI.", 0.1},  {".CENTI.", 0.01}, {".MILLI.", 0.001},
      {".MICRO.", 1e-6}, {".NANO.", 1e-9}, {".PICO.", 1e-12}, {".FEMTO.", 1e-15},
      {".ATTO.", 1e-18}};
  // One model for all: each unit has a number of its own.
  std::string records;
  int number = 0;
  for (const auto& [prefix, factor] : prefixes) {
    records += Si("LENGTHUNIT", prefix, "METRE", ++number);
  }
  IfcDocument& document = Add("units.ifc", records);
  number = 0;
  for (const auto& [prefix, factor] : prefixes) {
    EXPECT_DOUBLE_EQ(SizeOfUnit(*At(document, ++number))->factor, factor) << prefix;
  }
}

TEST_F(UnitSizes, APrefixOfASquareIsSquared) {
  EXPECT_DOUBLE_EQ(FactorOf(Si("AREAUNIT", ".MILLI.", "SQUARE_METRE")), 1e-6);
  EXPECT_DOUBLE_EQ(FactorOf(Si("VOLUMEUNIT", ".DECI.", "CUBIC_METRE")), 1e-3);
}

TEST_F(UnitSizes, AGramIsAThousandthOfTheUnit) {
  EXPECT_DOUBLE_EQ(FactorOf(Si("MASSUNIT", "$", "GRAM")), 1e-3);
  EXPECT_DOUBLE_EQ(FactorOf(Si("MASSUNIT", ".KILO.", "GRAM")), 1.0);
}

TEST_F(UnitSizes, OfFootInchPoundAndDegree) {
  EXPECT_DOUBLE_EQ(FactorOf(Made("LENGTHUNIT", "FOOT", "IFCLENGTHMEASURE(304.8)",
                                 Si("LENGTHUNIT", ".MILLI.", "METRE", 3))),
                   0.3048);
  EXPECT_DOUBLE_EQ(FactorOf(Made("LENGTHUNIT", "INCH", "IFCRATIOMEASURE(0.0254)",
                                 Si("LENGTHUNIT", "$", "METRE", 3))),
                   0.0254);
  EXPECT_DOUBLE_EQ(FactorOf(Made("MASSUNIT", "POUND", "IFCMASSMEASURE(453.59237)",
                                 Si("MASSUNIT", "$", "GRAM", 3))),
                   0.45359237);
  EXPECT_DOUBLE_EQ(
      FactorOf(Made("PLANEANGLEUNIT", "DEGREE", "IFCPLANEANGLEMEASURE(0.017453292519943295)",
                    Si("PLANEANGLEUNIT", "$", "RADIAN", 3))),
      std::acos(-1.0) / 180.0);
}

TEST_F(UnitSizes, AYardMadeFromAFootMadeFromAnInch) {
  EXPECT_DOUBLE_EQ(FactorOf(Made("LENGTHUNIT", "YARD", "IFCLENGTHMEASURE(3.)",
                                 "#3=IFCCONVERSIONBASEDUNIT($,.LENGTHUNIT.,'FOOT',#4);\n"
                                 "#4=IFCMEASUREWITHUNIT(IFCLENGTHMEASURE(12.),#5);\n"
                                 "#5=IFCCONVERSIONBASEDUNIT($,.LENGTHUNIT.,'INCH',#6);\n"
                                 "#6=IFCMEASUREWITHUNIT(IFCLENGTHMEASURE(2.54),#7);\n" +
                                     Si("LENGTHUNIT", ".CENTI.", "METRE", 7))),
                   0.9144);
}

// A force of a pound on a square inch.
TEST_F(UnitSizes, OfAProductOfPowers) {
  EXPECT_NEAR(FactorOf("#1=IFCDERIVEDUNIT((#2,#3),.MODULUSOFELASTICITYUNIT.,$);\n"
                       "#2=IFCDERIVEDUNITELEMENT(#4,1);\n#3=IFCDERIVEDUNITELEMENT(#6,-2);\n"
                       "#4=IFCCONVERSIONBASEDUNIT($,.FORCEUNIT.,'LBF',#5);\n"
                       "#5=IFCMEASUREWITHUNIT(IFCFORCEMEASURE(4.4482216152605),#8);\n"
                       "#6=IFCCONVERSIONBASEDUNIT($,.LENGTHUNIT.,'INCH',#7);\n"
                       "#7=IFCMEASUREWITHUNIT(IFCLENGTHMEASURE(0.0254),#9);\n" +
                       Si("FORCEUNIT", "$", "NEWTON", 8) + Si("LENGTHUNIT", "$", "METRE", 9)),
              6894.757293168, 1e-8);
}

// Four hundred factors each of which has four hundred: nobody has the time for all of them.
TEST_F(UnitSizes, OfProductsOfProductsEachIsWorkedOutOnce) {
  constexpr int kLevels = 4;
  constexpr int kFactors = 400;
  std::string records;
  for (int level = 0; level < kLevels; ++level) {
    const std::string base = std::to_string(level + 1);
    std::string elements;
    for (int factor = 0; factor < kFactors; ++factor) {
      const std::string number = std::to_string((level + 1) * 1000 + factor);
      elements += (factor == 0 ? "#" : ",#") + number;
      records += "#" + number + "=IFCDERIVEDUNITELEMENT(#10" + base + ",1);\n";
    }
    records += "#" + base + "=IFCDERIVEDUNIT((" + elements + "),.USERDEFINED.,'U');\n";
    records += "#10" + base + "=IFCCONVERSIONBASEDUNIT($,.LENGTHUNIT.,'U',#11" + base + ");\n";
    records += "#11" + base + "=IFCMEASUREWITHUNIT(IFCLENGTHMEASURE(1.),#" +
               std::to_string(level + 2) + ");\n";
  }
  records += Si("LENGTHUNIT", "$", "METRE", kLevels + 1);
  EXPECT_DOUBLE_EQ(FactorOf(records), 1.0);
}

// A degree is a kelvin where temperatures are differences.
TEST_F(UnitSizes, AnOffsetCountsForNothingInAProduct) {
  const auto size = SizeOf(
      "#1=IFCDERIVEDUNIT((#2,#3),.THERMALTRANSMITTANCEUNIT.,$);\n"
      "#2=IFCDERIVEDUNITELEMENT(#4,1);\n#3=IFCDERIVEDUNITELEMENT(#5,-1);\n" +
      Si("POWERUNIT", ".KILO.", "WATT", 4) +
      Si("THERMODYNAMICTEMPERATUREUNIT", "$", "DEGREE_CELSIUS", 5));
  EXPECT_DOUBLE_EQ(size->factor, 1000.0);
  EXPECT_EQ(size->offset, 0.0);
}

TEST_F(UnitSizes, OfDegreesCelsius) {
  const auto size = SizeOf(Si("THERMODYNAMICTEMPERATUREUNIT", "$", "DEGREE_CELSIUS"));
  EXPECT_EQ(size->factor, 1.0);
  EXPECT_EQ(size->offset, 273.15);
}

std::string WithOffset(const std::string& factor, const std::string& offset,
                       const std::string& base) {
  return "#1=IFCCONVERSIONBASEDUNITWITHOFFSET($,.THERMODYNAMICTEMPERATUREUNIT.,'F',#2," + offset +
         ");\n#2=IFCMEASUREWITHUNIT(IFCRATIOMEASURE(" + factor + "),#3);\n" +
         Si("THERMODYNAMICTEMPERATUREUNIT", "$", base, 3);
}

// Water boils at 212 degrees, which are 373.15 kelvin, and 0 of them are 255.372 kelvin.
TEST_F(UnitSizes, OfDegreesFahrenheitHoweverTheyAreTold) {
  const std::string ways[] = {
      WithOffset("0.555555555555556", "255.372222222222", "KELVIN"),
      WithOffset("0.555555555555556", "-17.7777777777778", "DEGREE_CELSIUS"),
      WithOffset("1.8", "-459.67", "KELVIN"), WithOffset("0.555555555555556", "459.67", "KELVIN"),
      WithOffset("0.555555555555556", "-459.67", "KELVIN")};
  for (const std::string& way : ways) {
    const auto size = SizeOf(way);
    ASSERT_TRUE(size) << way;
    EXPECT_NEAR(size->factor * 212.0 + size->offset, 373.15, 1e-9) << way;
    EXPECT_NEAR(size->offset, 255.372222222222, 1e-9) << way;
  }
}

TEST_F(UnitSizes, WhatCannotBeToldHasNone) {
  EXPECT_FALSE(SizeOf("#1=IFCCONTEXTDEPENDENTUNIT($,.LENGTHUNIT.,'ELL');\n"));
  EXPECT_FALSE(SizeOf("#1=IFCMONETARYUNIT('EUR');\n"));
  EXPECT_FALSE(SizeOf(Si("LENGTHUNIT", "$", "GRAM")));
  EXPECT_FALSE(SizeOf(
      Made("LENGTHUNIT", "ZERO", "IFCLENGTHMEASURE(0.)", Si("LENGTHUNIT", "$", "METRE", 3))));
  EXPECT_FALSE(
      SizeOf("#1=IFCCONVERSIONBASEDUNIT($,.LENGTHUNIT.,'CIRCLE',#2);\n"
             "#2=IFCMEASUREWITHUNIT(IFCLENGTHMEASURE(2.),#1);\n"));
  EXPECT_FALSE(
      SizeOf("#1=IFCDERIVEDUNIT((#2),.TORQUEUNIT.,$);\n"
             "#2=IFCDERIVEDUNITELEMENT(#3,1);\n"
             "#3=IFCCONTEXTDEPENDENTUNIT($,.FORCEUNIT.,'PUSH');\n"));
}

TEST_F(UnitSizes, OfTwoUnitsOfOneTypeTheLastCounts) {
  const IfcDocument& document =
      Add("units.ifc", Si("LENGTHUNIT", "$", "METRE", 1) + Si("LENGTHUNIT", ".MILLI.", "METRE", 2) +
                           "#3=IFCUNITASSIGNMENT((#1,#2));\n");
  const ModelUnits units(document.getIfcUnitAssignment());
  EXPECT_DOUBLE_EQ(units.Of(Measure::kLength).size->factor, 0.001);
}

TEST_F(UnitSizes, ABaseUnitThatIsMissingIsThatOfTheSi) {
  const IfcDocument& millimetres =
      Add("units.ifc", Si("LENGTHUNIT", ".MILLI.", "METRE", 2) + "#3=IFCUNITASSIGNMENT((#2));\n");
  const ModelUnits units(millimetres.getIfcUnitAssignment());
  const Conversions conversions = ConversionsBetween(units, ModelUnits(nullptr));
  for (std::size_t i = 0; i < kMeasureCount; ++i) {
    const bool isLength = i == static_cast<std::size_t>(Measure::kLength);
    EXPECT_EQ(conversions[i].kind == Conversion::Kind::kConvert, isLength) << AllMeasures()[i].unit;
  }
  EXPECT_DOUBLE_EQ(conversions[0].factor, 0.001);
}

TEST_F(UnitSizes, FactorsWithinABillionthAreEqual) {
  const auto kindOf = [this](const std::string& factor) {
    const IfcDocument& document =
        Add("units.ifc", Made("LENGTHUNIT", "ALMOST", "IFCLENGTHMEASURE(" + factor + ")",
                              Si("LENGTHUNIT", "$", "METRE", 3)) +
                             "#4=IFCUNITASSIGNMENT((#1));\n");
    return ConversionsBetween(ModelUnits(document.getIfcUnitAssignment()), ModelUnits(nullptr))[0]
        .kind;
  };
  EXPECT_EQ(kindOf("1.0000000009"), Conversion::Kind::kSame);
  EXPECT_EQ(kindOf("0.9999999991"), Conversion::Kind::kSame);
  EXPECT_EQ(kindOf("1.000000002"), Conversion::Kind::kConvert);
}

TEST_F(UnitSizes, WhatIsSoFarApartThatNoNumberTellsItIsNotConverted) {
  const auto unitsOf = [this](const std::string& factor) {
    const IfcDocument& document =
        Add("units.ifc", Made("LENGTHUNIT", "FAR", "IFCLENGTHMEASURE(" + factor + ")",
                              Si("LENGTHUNIT", "$", "METRE", 3)) +
                             "#4=IFCUNITASSIGNMENT((#1));\n");
    return ModelUnits(document.getIfcUnitAssignment());
  };
  const ModelUnits large = unitsOf("1.E200");
  const ModelUnits small = unitsOf("1.E-200");
  EXPECT_EQ(ConversionsBetween(large, small)[0].kind, Conversion::Kind::kImpossible);
  EXPECT_EQ(ConversionsBetween(small, large)[0].kind, Conversion::Kind::kImpossible);
  EXPECT_EQ(ConversionsBetween(large, ModelUnits(nullptr))[0].kind, Conversion::Kind::kConvert);
}

// --- The table of measures -----------------------------------------------------------------------

// Every number that a release declares of a type of its own is either in a unit or told to be in
// none, and every unit has its measure.
TEST(MeasuresOfUnits, EveryTypeOfEveryReleaseIsInOneOfTheTables) {
  for (const FactoryTable* const factories : BuiltFactories()) {
    for (const ClassFacts& facts : factories->classes->classes) {
      if (facts.AttributeCount() != 1) continue;
      const AttributeFacts& value = facts.Attribute(0);
      if (std::string_view(value.name) != "value") continue;
      if (value.kind != ValueKind::kReal && value.kind != ValueKind::kNumber) continue;
      bool isUnmeasured = false;
      for (const TypeFacts* type = value.type; type != nullptr; type = type->base) {
        for (const UnmeasuredType& row : AllUnmeasuredTypes()) {
          isUnmeasured = isUnmeasured || row.type == type->name;
        }
      }
      EXPECT_NE(MeasureOf(*value.type) != Measure::kNone, isUnmeasured) << facts.name;
    }
  }
}

TEST(MeasuresOfUnits, NamesThatMisleadLeadToTheirUnits) {
  const auto unitOf = [](std::string_view measure) -> std::string {
    for (const MeasureFacts& facts : AllMeasures()) {
      if (facts.type == measure) return std::string(facts.unit);
    }
    return {};
  };
  EXPECT_EQ(unitOf("IfcSectionalAreaIntegralMeasure"), "SECTIONAREAINTEGRALUNIT");
  EXPECT_EQ(unitOf("IfcThermalConductivityMeasure"), "THERMALCONDUCTANCEUNIT");
  EXPECT_EQ(unitOf("IfcMomentOfInertiaMeasure"), "MOMENTOFINERTIAUNIT");
  EXPECT_EQ(MeasureOfUnit("MOMENTORINERTIAUNIT"), MeasureOfUnit("MOMENTOFINERTIAUNIT"));
  EXPECT_EQ(FactsOf(Measure::kLength).type, "IfcLengthMeasure");
  EXPECT_EQ(FactsOf(Measure::kPlaneAngle).type, "IfcPlaneAngleMeasure");
  EXPECT_EQ(FactsOf(Measure::kTemperature).type, "IfcThermodynamicTemperatureMeasure");
}

}  // namespace

}  // namespace corvel::test
