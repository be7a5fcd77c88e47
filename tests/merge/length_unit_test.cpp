// The size of the length unit of a model.
#include "merge/length_unit.h"

#include <string>
#include <vector>

#include "schema/record_model.h"
#include "support/recorded_reports.h"
#include "unit_run.h"

namespace corvel {
namespace {

using test::kCentimetre;
using test::kMetre;
using test::kMillimetre;
using test::Report;
using test::Units;

// Both factors of a model.
struct Size {
  double unitsPerMetre = 0.0;
  double millimetresPerUnit = 0.0;
  bool operator==(const Size&) const = default;
};
std::ostream& operator<<(std::ostream& stream, const Size& size) {
  return stream << size.unitsPerMetre << " in a metre, " << size.millimetresPerUnit << " mm each";
}

constexpr Size kSizeOfMillimetre{1000.0, 1.0};
constexpr Size kSizeOfCentimetre{100.0, 10.0};
constexpr Size kSizeOfMetre{1.0, 1000.0};
constexpr Size kUnknown{1.0, 1.0};

// #90, made from `unit`, which is #92 with the measure #91 between.
std::string ConversionOf(const std::string& name, const std::string& unit) {
  return "#90=IFCCONVERSIONBASEDUNIT(#93,.LENGTHUNIT.,'" + name +
         "',#91);\n"
         "#91=IFCMEASUREWITHUNIT(IFCRATIOMEASURE(0.3048),#92);\n#92=" +
         unit + ";\n#93=IFCDIMENSIONALEXPONENTS(1,0,0,0,0,0,0);\n";
}
std::string Assignment(const std::string& members) {
  return "#99=IFCUNITASSIGNMENT((" + members + "));\n";
}

class LengthUnit : public test::UnitRun, public testing::WithParamInterface<test::Release> {
 protected:
  Size SizeOf(const std::string& records) {
    const IfcDocument& document = Add("model.ifc", records, GetParam().name);
    const IFC::IfcEntity* const units = document.getIfcUnitAssignment();
    const ErrorReporter reporter = test::RecordedReports::Reporter;
    return {LengthUnitsPerMetre(units, reporter), MillimetresPerLengthUnit(units, reporter)};
  }
  // The message of a missing unit, once for each factor.
  void ExpectToldAsMissing() {
    const Report missing{"", u"No lenght unit found while merging file", kReportShow};
    EXPECT_EQ((std::vector<Report>{missing, missing}), *world_.reports);
    world_.reports.Forget();
  }
  void ExpectUnknown(const std::string& records) {
    EXPECT_EQ(kUnknown, SizeOf(records)) << records;
    ExpectToldAsMissing();
  }
};
RUN_FOR_EACH_RELEASE(LengthUnit);

TEST_P(LengthUnit, ThreeSizesOfMetresAreKnown) {
  EXPECT_EQ(kSizeOfMillimetre, SizeOf(Units({kMillimetre})));
  EXPECT_EQ(kSizeOfCentimetre, SizeOf(Units({kCentimetre})));
  EXPECT_EQ(kSizeOfMetre, SizeOf(Units({kMetre})));
  EXPECT_TRUE(world_.reports->empty());
}

TEST_P(LengthUnit, AFootIsToldByWhatItIsMadeFrom) {
  const auto foot = [this](const char* unit) {
    return SizeOf(ConversionOf("FOOT", unit) + Assignment("#90"));
  };
  EXPECT_EQ((Size{3280.8398F, 0.3048F}), foot(kMillimetre));
  EXPECT_EQ((Size{328.08398F, 3.048F}), foot(kCentimetre));
  EXPECT_EQ((Size{3.28084F, 304.80002F}), foot(kMetre));
  EXPECT_TRUE(world_.reports->empty());
}

// Constants of 32 bits, widened.
TEST_P(LengthUnit, FactorsOfTheFootHaveThePrecisionOfAFloat) {
  const Size foot = SizeOf(ConversionOf("FOOT", kMetre) + Assignment("#90"));
  EXPECT_EQ(3.2808399200439453, foot.unitsPerMetre);
  EXPECT_EQ(304.8000183105469, foot.millimetresPerUnit);
}

TEST_P(LengthUnit, OtherSizesAreUnknown) {
  for (const char* const prefix : {"KILO", "DECI", "MICRO"}) {
    ExpectUnknown(Units({std::string("IFCSIUNIT(*,.LENGTHUNIT.,.") + prefix + ".,.METRE.)"}));
  }
}

TEST_P(LengthUnit, OtherNamesThanFootAreUnknown) {
  for (const char* const name : {"INCH", "foot", "FEET", "FOOT US"}) {
    ExpectUnknown(ConversionOf(name, kMetre) + Assignment("#90"));
  }
}

TEST_P(LengthUnit, DotsAndCommasInTheNameOfTheFootDontCount) {
  EXPECT_EQ((Size{3.28084F, 304.80002F}),
            SizeOf(ConversionOf(".FOOT.,", kMetre) + Assignment("#90")));
}

TEST_P(LengthUnit, AFootOfAnotherTypeIsNoLength) {
  ExpectUnknown(
      "#1=IFCCONVERSIONBASEDUNIT(#93,.AREAUNIT.,'FOOT',#91);\n"
      "#91=IFCMEASUREWITHUNIT(IFCRATIOMEASURE(1.),#92);\n#92=" +
      std::string(kMetre) + ";\n#93=IFCDIMENSIONALEXPONENTS(1,0,0,0,0,0,0);\n" + Assignment("#1"));
}

TEST_P(LengthUnit, AUnitWithAKnownWordMustBeALength) {
  ExpectUnknown(Units({"IFCSIUNIT(*,.MASSUNIT.,.MILLI.,.GRAM.)",
                       "IFCSIUNIT(*,.AREAUNIT.,.CENTI.,.SQUARE_METRE.)"}));
}

TEST_P(LengthUnit, TheLastKnownUnitCounts) {
  EXPECT_EQ(kSizeOfCentimetre, SizeOf(Units({kMetre, kMillimetre, kCentimetre})));
  EXPECT_EQ(kSizeOfMetre, SizeOf(Units({kMetre, "IFCSIUNIT(*,.LENGTHUNIT.,.KILO.,.METRE.)",
                                        "IFCSIUNIT(*,.MASSUNIT.,$,.GRAM.)"})));
  EXPECT_TRUE(world_.reports->empty());
}

TEST_P(LengthUnit, AFootOfAnUnknownSizeIsPassedOver) {
  const std::string foot =
      ConversionOf("FOOT", "IFCSIUNIT(*,.LENGTHUNIT.,.DECI.,.METRE.)") + "#1=" + kMetre + ";\n";
  EXPECT_EQ(kSizeOfMetre, SizeOf(foot + Assignment("#1,#90")));
  EXPECT_TRUE(world_.reports->empty());
  ExpectUnknown(foot + Assignment("#90"));
}

TEST_P(LengthUnit, AFootMayBeMadeFromAnotherConversion) {
  EXPECT_EQ((Size{3280.8398F, 0.3048F}),
            SizeOf(ConversionOf("FOOT", "IFCCONVERSIONBASEDUNIT(#93,.LENGTHUNIT.,'INCH',#94)") +
                   "#94=IFCMEASUREWITHUNIT(IFCRATIOMEASURE(25.4),#95);\n#95=" + kMillimetre +
                   ";\n" + Assignment("#90")));
}

TEST_P(LengthUnit, AFootMadeFromAMassIsPassedOver) {
  ExpectUnknown(ConversionOf("FOOT", "IFCSIUNIT(*,.MASSUNIT.,$,.GRAM.)") + Assignment("#90"));
}

TEST_P(LengthUnit, AFootMadeFromItselfIsPassedOver) {
  ExpectUnknown(
      "#90=IFCCONVERSIONBASEDUNIT(#93,.LENGTHUNIT.,'FOOT',#91);\n"
      "#91=IFCMEASUREWITHUNIT(IFCRATIOMEASURE(1.),#90);\n"
      "#93=IFCDIMENSIONALEXPONENTS(1,0,0,0,0,0,0);\n" +
      Assignment("#90"));
}

TEST_P(LengthUnit, AFootWithoutAConversionIsPassedOver) {
  ExpectUnknown("#90=IFCCONVERSIONBASEDUNIT($,.LENGTHUNIT.,'FOOT',$);\n" + Assignment("#90"));
}

TEST_P(LengthUnit, WithoutAnAssignmentNothingIsKnown) {
  ExpectUnknown(std::string("#1=") + kMetre + ";\n");
}

TEST_P(LengthUnit, AMemberThatIsNotThereIsPassedOver) {
  EXPECT_EQ(kSizeOfMetre, SizeOf(std::string("#1=") + kMetre + ";\n" + Assignment("#1,#77")));
}

class OffsetLengthUnit : public LengthUnit {};
RUN_FOR_RELEASES(OffsetLengthUnit, IFC4, IFC4X4);

TEST_P(OffsetLengthUnit, AFootWithAnOffsetIsAFoot) {
  EXPECT_EQ((Size{3.28084F, 304.80002F}),
            SizeOf("#90=IFCCONVERSIONBASEDUNITWITHOFFSET(#93,.LENGTHUNIT.,'FOOT',#91,0.);\n"
                   "#91=IFCMEASUREWITHUNIT(IFCRATIOMEASURE(0.3048),#92);\n#92=" +
                   std::string(kMetre) + ";\n#93=IFCDIMENSIONALEXPONENTS(1,0,0,0,0,0,0);\n" +
                   Assignment("#90")));
}

}  // namespace
}  // namespace corvel
