// The length unit of a model in metres, whatever it is made from.
#include "merge/federation/tree/length_in_metres.h"

#include <gtest/gtest.h>

#include <string>

#include "merge/record_document.h"

namespace corvel {
namespace {

using test::PlannedRecord;
using test::RecordDocument;

// The last record is the assignment.
double MetresOf(const std::vector<PlannedRecord>& records) {
  RecordDocument document(records, SchemaNamespace::IFC4);
  return MetresPerLengthUnit(
      (*document).mainContainer->GetEntityByOrginalNumber(records.back().number));
}

const PlannedRecord kMetreUnit = {1, "IFCSIUNIT", "*,.LENGTHUNIT.,$,.METRE."};
const PlannedRecord kExponents = {2, "IFCDIMENSIONALEXPONENTS", "1,0,0,0,0,0,0"};

PlannedRecord Assigned(const std::string& units) {
  return {99, "IFCUNITASSIGNMENT", "(" + units + ")"};
}

TEST(LengthInMetres, NoUnitIsAMetre) {
  EXPECT_EQ(1.0, MetresPerLengthUnit(nullptr));
  EXPECT_EQ(1.0,
            MetresOf({{1, "IFCSIUNIT", "*,.AREAUNIT.,.MILLI.,.SQUARE_METRE."}, Assigned("#1")}));
}

TEST(LengthInMetres, PrefixesCount) {
  const auto with = [](const char* prefix) {
    return MetresOf(
        {{1, "IFCSIUNIT", "*,.LENGTHUNIT.," + std::string(prefix) + ",.METRE."}, Assigned("#1")});
  };
  EXPECT_EQ(1.0, with("$"));
  EXPECT_EQ(1e-3, with(".MILLI."));
  EXPECT_EQ(1e-1, with(".DECI."));
  EXPECT_EQ(1e3, with(".KILO."));
}

TEST(LengthInMetres, AnInchIsMadeOfFeetThatAreMadeOfMetres) {
  EXPECT_DOUBLE_EQ(
      0.0254, MetresOf({kMetreUnit,
                        kExponents,
                        {3, "IFCMEASUREWITHUNIT", "IFCRATIOMEASURE(0.3048),#1"},
                        {4, "IFCCONVERSIONBASEDUNIT", "#2,.LENGTHUNIT.,'FOOT',#3"},
                        {5, "IFCMEASUREWITHUNIT", "IFCLENGTHMEASURE(0.0833333333333333333),#4"},
                        {6, "IFCCONVERSIONBASEDUNIT", "#2,.LENGTHUNIT.,'INCH',#5"},
                        Assigned("#6")}));
}

TEST(LengthInMetres, OfTwoThatCanBeToldTheLastCounts) {
  EXPECT_EQ(1e-3, MetresOf({kMetreUnit,
                            {2, "IFCSIUNIT", "*,.LENGTHUNIT.,.MILLI.,.METRE."},
                            {3, "IFCCONTEXTDEPENDENTUNIT", "#4,.LENGTHUNIT.,'STEP'"},
                            {4, "IFCDIMENSIONALEXPONENTS", "1,0,0,0,0,0,0"},
                            Assigned("#1,#2,#3")}));
}

TEST(LengthInMetres, UnitsThatAreMadeOfEachOtherAreNone) {
  EXPECT_EQ(1.0, MetresOf({{1, "IFCMEASUREWITHUNIT", "IFCLENGTHMEASURE(2.),#3"},
                           kExponents,
                           {3, "IFCCONVERSIONBASEDUNIT", "#2,.LENGTHUNIT.,'ELL',#1"},
                           Assigned("#3")}));
}

TEST(LengthInMetres, AFactorOfNothingIsNone) {
  EXPECT_EQ(1.0, MetresOf({kMetreUnit,
                           kExponents,
                           {3, "IFCMEASUREWITHUNIT", "IFCLENGTHMEASURE(0.),#1"},
                           {4, "IFCCONVERSIONBASEDUNIT", "#2,.LENGTHUNIT.,'POINT',#3"},
                           Assigned("#4")}));
}

}  // namespace
}  // namespace corvel
