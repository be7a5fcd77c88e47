// Which documents of a run take part.
#include "merge/units.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/cancellation.h"
#include "schema/record_model.h"
#include "step/log/ifc_log.h"
#include "support/written_text.h"
#include "unit_run.h"

namespace corvel {
namespace {

using test::kCentimetre;
using test::kMetre;
using test::kMillimetre;
using test::kSquareMetre;
using test::Units;

constexpr const char* kSquareMillimetre = "IFCSIUNIT(*,.AREAUNIT.,.MILLI.,.SQUARE_METRE.)";

class CheckUnitsTest : public test::UnitRun {
 protected:
  static std::vector<WideString> TypesOf(const std::vector<UnitComparison>& rows) {
    std::vector<WideString> types;
    for (const UnitComparison& row : rows) types.push_back(row.unitType);
    return types;
  }
  static void ExpectFlags(const RunModel& model, bool units, bool schema) {
    const std::string path = Narrow(model.document->getFilePath());
    EXPECT_EQ(units, model.unitsValid) << path;
    EXPECT_EQ(schema, model.schemaValid) << path;
    EXPECT_EQ(units && schema, model.mergeable) << path;
  }
};

TEST_F(CheckUnitsTest, NothingIsSetBeforeTheCheck) {
  const RunModel& model = AddModel("a.ifc", Units({kMetre}));
  ExpectFlags(model, false, false);
  EXPECT_TRUE(model.unitDifferences.empty());
}

TEST_F(CheckUnitsTest, EqualUnitsAndSchemaTakePart) {
  const RunModel& first = AddModel("a.ifc", Units({kMetre, kSquareMetre}));
  const RunModel& second = AddModel("b.ifc", Units({kSquareMetre, kMetre}, 30));
  EXPECT_EQ(2, Check());
  ExpectFlags(first, true, true);
  ExpectFlags(second, true, true);
  EXPECT_TRUE(world_.reports->empty());
}

TEST_F(CheckUnitsTest, AnotherPrefixTakesNoPart) {
  const RunModel& first = AddModel("a.ifc", Units({kMetre}));
  const RunModel& second = AddModel("b.ifc", Units({kMillimetre}, 12));
  EXPECT_EQ(1, Check());
  ExpectFlags(first, true, true);
  ExpectFlags(second, false, true);
  ASSERT_EQ(1u, second.unitDifferences.size());
  EXPECT_EQ(12u, second.unitDifferences[0].otherMarker);
  EXPECT_TRUE(first.unitDifferences.empty());
}

TEST_F(CheckUnitsTest, AnotherPrefixIsLetPassWhenUnitsAreIgnored) {
  shell_.options.ignoreUnits = true;
  Add("a.ifc", Units({kMetre}));
  const RunModel& second =
      AddModel("b.ifc", Units({kMillimetre}) + "#12=IFCCARTESIANPOINT((1500.,0.));\n");
  EXPECT_EQ(2, Check());
  ExpectFlags(second, true, true);
  EXPECT_EQ(1u, second.unitDifferences.size());
  EXPECT_TRUE(world_.reports->empty());
  // The numbers stay as they are, and so does the unit.
  EXPECT_EQ(Units({kMillimetre}) + "#12=IFCCARTESIANPOINT((1500.,0.));\n",
            test::LinesOf(*second.document->mainContainer));
}

TEST_F(CheckUnitsTest, AnotherUnitIsNeverLetPass) {
  shell_.options.ignoreUnits = true;
  Add("a.ifc", Units({"IFCSIUNIT(*,.MASSUNIT.,.KILO.,.GRAM.)"}));
  const RunModel& second = AddModel("b.ifc", Units({"IFCSIUNIT(*,.MASSUNIT.,.KILO.,.PASCAL.)"}));
  EXPECT_EQ(1, Check());
  ExpectFlags(second, false, true);
}

TEST_F(CheckUnitsTest, AnotherUnitAmongOtherPrefixesIsNotLetPassEither) {
  shell_.options.ignoreUnits = true;
  Add("a.ifc", Units({kMetre, "IFCSIUNIT(*,.MASSUNIT.,$,.GRAM.)", kSquareMetre}));
  const RunModel& second = AddModel(
      "b.ifc", Units({kMillimetre, "IFCSIUNIT(*,.MASSUNIT.,$,.PASCAL.)", kSquareMillimetre}));
  EXPECT_EQ(1, Check());
  ExpectFlags(second, false, true);
  EXPECT_EQ((std::vector<WideString>{u".LENGTHUNIT.", u".AREAUNIT.", u".MASSUNIT."}),
            TypesOf(second.unitDifferences));
}

// A second length in the first model is another unit than the one of the second model, but it is
// not the row that speaks for lengths; and times don't count at all.
TEST_F(CheckUnitsTest, AnotherUnitCountsOnlyAmongTheDifferences) {
  shell_.options.ignoreUnits = true;
  Add("a.ifc", Units({"IFCSIUNIT(*,.LENGTHUNIT.,$,.PASCAL.)", kMetre,
                      "IFCSIUNIT(*,.TIMEUNIT.,$,.SECOND.)"}));
  const RunModel& second =
      AddModel("b.ifc", Units({kMillimetre, "IFCSIUNIT(*,.TIMEUNIT.,$,.HERTZ.)"}));
  EXPECT_EQ(2, Check());
  ExpectFlags(second, true, true);
  EXPECT_EQ((std::vector<WideString>{u".LENGTHUNIT."}), TypesOf(second.unitDifferences));
}

TEST_F(CheckUnitsTest, OnlyFiveTypesOfUnitsCount) {
  Add("a.ifc", Units({"IFCSIUNIT(*,.TIMEUNIT.,$,.SECOND.)", "IFCSIUNIT(*,.FORCEUNIT.,$,.NEWTON.)",
                      "IFCSIUNIT(*,.USERDEFINED.,$,.METRE.)"}));
  const RunModel& second = AddModel("b.ifc", Units({"IFCSIUNIT(*,.TIMEUNIT.,.MILLI.,.SECOND.)",
                                                    "IFCSIUNIT(*,.FORCEUNIT.,.KILO.,.NEWTON.)",
                                                    "IFCSIUNIT(*,.USERDEFINED.,$,.GRAM.)"}));
  EXPECT_EQ(2, Check());
  EXPECT_TRUE(second.unitDifferences.empty());
}

TEST_F(CheckUnitsTest, DifferencesHaveTheOrderOfTheTypesAndNotOfTheFile) {
  const auto units = [](const char* prefix) {
    const auto unit = [prefix](const char* type, const char* name) {
      return std::string("IFCSIUNIT(*,.") + type + ".," + prefix + ",." + name + ".)";
    };
    return Units({unit("PLANEANGLEUNIT", "RADIAN"), unit("LENGTHUNIT", "METRE"),
                  unit("MASSUNIT", "GRAM"), unit("AREAUNIT", "SQUARE_METRE"),
                  unit("VOLUMEUNIT", "CUBIC_METRE")});
  };
  Add("a.ifc", units("$"));
  const RunModel& second = AddModel("b.ifc", units(".MILLI."));
  EXPECT_EQ(1, Check());
  EXPECT_EQ((std::vector<WideString>{u".LENGTHUNIT.", u".VOLUMEUNIT.", u".AREAUNIT.", u".MASSUNIT.",
                                     u".PLANEANGLEUNIT."}),
            TypesOf(second.unitDifferences));
}

// The last unit of a type gives the first row of the type.
TEST_F(CheckUnitsTest, OfTwoLengthUnitsOnlyTheFirstRowCounts) {
  Add("a.ifc", Units({kCentimetre, kMetre}));
  EXPECT_EQ(1, (Add("b.ifc", Units({kCentimetre})), Check()));
  models_.pop_back();
  EXPECT_EQ(2, (Add("c.ifc", Units({kMetre})), Check()));
}

TEST_F(CheckUnitsTest, AUnitTypeThatTheSecondLacksIsNoDifference) {
  Add("a.ifc", Units({kMetre, kSquareMetre}));
  const RunModel& second = AddModel("b.ifc", Units({kMetre}));
  EXPECT_EQ(2, Check());
  EXPECT_TRUE(second.unitDifferences.empty());
}

TEST_F(CheckUnitsTest, FeetAgainstMetresAreLetPass) {
  Add("a.ifc", Units({kMetre}));
  const RunModel& second =
      AddModel("b.ifc", Units({"IFCCONVERSIONBASEDUNIT($,.LENGTHUNIT.,'FOOT',$)"}));
  EXPECT_EQ(2, Check());
  ExpectFlags(second, true, true);
}

TEST_F(CheckUnitsTest, AModelWithoutAnAssignmentGoesWithAll) {
  Add("a.ifc", Units({kMetre}));
  const RunModel& second = AddModel("b.ifc", "#1=IFCCARTESIANPOINT((0.,0.));\n");
  EXPECT_EQ(2, Check());
  ExpectFlags(second, true, true);
}

TEST_F(CheckUnitsTest, AnotherSchemaTakesNoPart) {
  const RunModel& first = AddModel("a.ifc", Units({kMetre}), "IFC4");
  const RunModel& second = AddModel("b.ifc", Units({kMetre}), "IFC2X3");
  EXPECT_EQ(1, Check());
  ExpectFlags(first, true, true);
  ExpectFlags(second, true, false);
}

TEST_F(CheckUnitsTest, UnitsAndSchemaAreJudgedApart) {
  Add("a.ifc", Units({kMetre}), "IFC4");
  const RunModel& second = AddModel("b.ifc", Units({kMillimetre}), "IFC2X3");
  EXPECT_EQ(1, Check());
  ExpectFlags(second, false, false);
  EXPECT_EQ(1u, second.unitDifferences.size());
}

TEST_F(CheckUnitsTest, OfThreeTheMiddleOneMayBeLeftOut) {
  Add("a.ifc", Units({kMetre}));
  const RunModel& second = AddModel("b.ifc", Units({kMillimetre}));
  const RunModel& third = AddModel("c.ifc", Units({kMetre}));
  EXPECT_EQ(2, Check());
  ExpectFlags(second, false, true);
  ExpectFlags(third, true, true);
}

// The first is the measure, however odd its units are.
TEST_F(CheckUnitsTest, TheFirstIsNeverLeftOut) {
  const RunModel& first = AddModel("a.ifc", Units({"IFCSIUNIT(*,.LENGTHUNIT.,.EXA.,.GRAM.)"}));
  Add("b.ifc", Units({kMetre}));
  Add("c.ifc", Units({kMetre}));
  EXPECT_EQ(1, Check());
  ExpectFlags(first, true, true);
}

TEST_F(CheckUnitsTest, ADocumentThatCouldNotBeOpenedHasNoSchema) {
  Add("a.ifc", Units({kMetre}));
  const RunModel& model = Take(std::make_unique<IfcDocument>(false, test::RecordedReports::Reporter,
                                                             test::RecordedProgress::Callback));
  EXPECT_EQ(1, Check());
  ExpectFlags(model, true, false);
}

TEST_F(CheckUnitsTest, NoEntityIsChanged) {
  Add("a.ifc", Units({kMetre}));
  const RunModel& second = AddModel("b.ifc", Units({kMillimetre}));
  Check();
  EXPECT_EQ(Units({kMetre}), test::LinesOf(*models_[0].document->mainContainer));
  EXPECT_EQ(Units({kMillimetre}), test::LinesOf(*second.document->mainContainer));
}

TEST_F(CheckUnitsTest, FewerThanTwoAreNotCompared) {
  EXPECT_EQ(0, Check());
  const RunModel& only = AddModel("a.ifc", Units({kMetre}));
  EXPECT_EQ(0, Check());
  ExpectFlags(only, false, false);
  EXPECT_TRUE(world_.reports->empty());
}

// --- The log -------------------------------------------------------------------------------------
class CheckUnitsLog : public CheckUnitsTest {
 protected:
  // What the check adds to the log, which has a line of date and time at its head.
  std::string LogOf(const std::function<void()>& work) {
    IfcLog& log = IfcLog::Instance();
    log.SetFlushEveryLine(false);
    log.Open(folder_.Path("log.ifc"));
    work();
    log.Close();
    const std::string text = folder_.Read("log_IFC_LOG.txt");
    return text.substr(text.find('\n', text.find('\n') + 1) + 1);
  }
  std::string PathOf(const char* name) { return ToUtf8(folder_.Path(name)); }
  // The margin of blanks that a flush leaves becomes a bar.
  static std::string WithFlushes(std::string text) {
    const std::size_t blanks = text.find("   ");
    if (blanks == std::string::npos) return text;
    return text.replace(blanks, text.find_first_not_of(" \r\n", blanks) - blanks, "|");
  }
};

TEST_F(CheckUnitsLog, EveryDocumentIsNamed) {
  Add("a.ifc", Units({kMetre}));
  Add("b.ifc", Units({kMetre}));
  Add("c.ifc", Units({kMetre}), "IFC2X3");
  EXPECT_EQ("Comparing units in files...Check Units for: " + PathOf("a.ifc") + "Check Units for: " +
                PathOf("b.ifc") + "Check Units for: " + PathOf("c.ifc") + "|Done.",
            WithFlushes(LogOf([this] { Check(); })));
}

TEST_F(CheckUnitsLog, OneDocumentLeavesTwoTexts) {
  Add("a.ifc", Units({kMetre}));
  EXPECT_EQ("Comparing units in files...No files to compare.", LogOf([this] { Check(); }));
}

// --- The process-wide word that tells how errors are handled
// -------------------------------------- The second of two models is left out, so that there is a
// report.
class CheckUnitsCancelMode : public CheckUnitsTest {
 protected:
  CheckUnitsCancelMode() {
    Add("a.ifc", Units({kMetre}));
    Add("b.ifc", Units({kMillimetre}));
    shell_.reporter = [](const char*, const WideString&, int) {
      atReport = Cancellation::OfProcess().mode;
      if (setAtReport) Cancellation::OfProcess().mode = *setAtReport;
      return 0;
    };
    atReport = setAtReport = std::nullopt;
  }
  ~CheckUnitsCancelMode() override { Cancellation::OfProcess().mode = CancelMode::kAsk; }

  static inline std::optional<CancelMode> atReport;
  static inline std::optional<CancelMode> setAtReport;
};

TEST_F(CheckUnitsCancelMode, WhatHoldsErrorsBackIsTakenAwayForTheReport) {
  Cancellation::OfProcess().mode = CancelMode::kHoldBackBoxes;
  EXPECT_EQ(1, Check());
  EXPECT_EQ(CancelMode::kAsk, atReport);
  EXPECT_EQ(CancelMode::kHoldBackBoxes, Cancellation::OfProcess().mode);
}

TEST_F(CheckUnitsCancelMode, WhatWasSetMeanwhileStays) {
  Cancellation::OfProcess().mode = CancelMode::kHoldBackBoxes;
  setAtReport = CancelMode::kEndUnasked;
  Check();
  EXPECT_EQ(CancelMode::kEndUnasked, Cancellation::OfProcess().mode);
}

TEST_F(CheckUnitsCancelMode, OtherModesAreLeftAlone) {
  for (const CancelMode mode : {CancelMode::kAsk, CancelMode::kEndUnasked}) {
    Cancellation::OfProcess().mode = mode;
    Check();
    EXPECT_EQ(mode, atReport);
    EXPECT_EQ(mode, Cancellation::OfProcess().mode);
  }
}

TEST_F(CheckUnitsCancelMode, ItIsPutBackAlsoWhenThereIsNothingToCompare) {
  models_.clear();
  Cancellation::OfProcess().mode = CancelMode::kHoldBackBoxes;
  EXPECT_EQ(0, Check());
  EXPECT_EQ(CancelMode::kHoldBackBoxes, Cancellation::OfProcess().mode);
}

// --- AdjustUnit ----------------------------------------------------------------------------------
class AdjustUnitTest : public CheckUnitsTest {
 protected:
  // Measures the second by the first and adjusts it.
  bool Adjust(const std::string& first, const std::string& second) {
    models_.clear();
    shell_.options.ignoreUnits = true;
    Add("a.ifc", first);
    const RunModel& b = AddModel("b.ifc", second);
    Check();
    return AdjustUnit(b);
  }
  bool IsDeleted(std::uint32_t number) {
    return At(*models_[1].document, number)->marker == IFC::kDeleted;
  }
};

TEST_F(AdjustUnitTest, LengthsInFourSizesAreDeleted) {
  constexpr const char* kDecimetre = "IFCSIUNIT(*,.LENGTHUNIT.,.DECI.,.METRE.)";
  for (const char* const prefix : {".KILO.", "$", ".CENTI.", ".MILLI."}) {
    const std::string unit = std::string("IFCSIUNIT(*,.LENGTHUNIT.,") + prefix + ",.METRE.)";
    EXPECT_TRUE(Adjust(Units({kDecimetre}), Units({unit}))) << prefix;
    EXPECT_TRUE(IsDeleted(1)) << prefix;
  }
}

TEST_F(AdjustUnitTest, AnyOtherSizeStopsIt) {
  for (const char* const prefix : {"MEGA", "HECTO", "DECA", "DECI", "MICRO"}) {
    const std::string unit = std::string("IFCSIUNIT(*,.LENGTHUNIT.,.") + prefix + ".,.METRE.)";
    EXPECT_FALSE(Adjust(Units({kMetre}), Units({unit}))) << prefix;
    EXPECT_FALSE(IsDeleted(1)) << prefix;
  }
}

TEST_F(AdjustUnitTest, AnotherTypeThanLengthStopsItWhereItStands) {
  EXPECT_FALSE(Adjust(Units({kMetre, kSquareMetre}), Units({kMillimetre, kSquareMillimetre})));
  EXPECT_TRUE(IsDeleted(1));
  EXPECT_FALSE(IsDeleted(2));
  EXPECT_FALSE(Adjust(Units({kSquareMetre}), Units({kSquareMillimetre})));
  EXPECT_FALSE(IsDeleted(1));
}

TEST_F(AdjustUnitTest, WithoutDifferencesNothingIsDone) {
  EXPECT_TRUE(Adjust(Units({kMetre}), Units({kMetre})));
  EXPECT_FALSE(IsDeleted(1));
}

TEST_F(AdjustUnitTest, TheFirstModelIsLeftAlone) {
  EXPECT_TRUE(Adjust(Units({kMetre}), Units({kMillimetre})));
  EXPECT_EQ(1u, At(*models_[0].document, 1)->marker);
}

TEST_F(AdjustUnitTest, ANumberThatTheModelLacksStopsIt) {
  RunModel& model = AddModel("a.ifc", Units({kMetre}));
  model.unitDifferences.resize(1);
  model.unitDifferences[0].otherMarker = 77;
  EXPECT_FALSE(AdjustUnit(model));
}

// The mark is taken away before objects are marked, so that the unit is written.
TEST_F(AdjustUnitTest, NothingIsLeftOfItInTheOutput) {
  const std::string second = Units({kMillimetre}) + "#9=IFCPROJECT('g',$,'P',$,$,$,$,$,#2);\n";
  ASSERT_TRUE(Adjust(Units({kMetre}), second));
  IfcDocument& document = *models_[1].document;
  std::vector<MarkerPair> toDelete;
  std::vector<MarkerPair> toSave = {{9, 0}};
  ASSERT_TRUE(document.DeleteObjects(toDelete, toSave, false, false, 2));
  document.mainContainer->FillMarkers();
  EXPECT_EQ(second, test::LinesOf(*document.mainContainer));
}

// --- Every release -------------------------------------------------------------------------------
class CheckUnitsInRelease : public CheckUnitsTest,
                            public testing::WithParamInterface<test::Release> {};
RUN_FOR_EACH_RELEASE(CheckUnitsInRelease);

TEST_P(CheckUnitsInRelease, UnitsAreComparedAndTold) {
  Add("a.ifc", Units({kMetre, kSquareMetre}), GetParam().name);
  const RunModel& second =
      AddModel("b.ifc", Units({kMillimetre, kSquareMetre}, 12), GetParam().name);
  EXPECT_EQ(1, Check());
  ExpectFlags(second, false, true);
  ASSERT_EQ(1u, second.unitDifferences.size());
  EXPECT_EQ(u".MILLI.,.METRE.,", second.unitDifferences[0].otherLabel);
  EXPECT_EQ(12u, second.unitDifferences[0].otherMarker);
}

TEST_P(CheckUnitsInRelease, AModelOfAnotherReleaseTakesNoPart) {
  const auto all = test::ReleasesBuilt(SchemaNamespace::IFC2X_FINAL, SchemaNamespace::IFC4X4);
  Add("a.ifc", Units({kMetre}), GetParam().name);
  for (const test::Release& other : all) {
    Add(std::string(other.name) + ".ifc", Units({kMetre}), other.name);
  }
  EXPECT_EQ(2, Check());
  for (std::size_t i = 0; i < all.size(); ++i) {
    ExpectFlags(models_[i + 1], true, all[i].schema == GetParam().schema);
  }
}

// What is not the same text is not the same schema, although the classes may be.
TEST_F(CheckUnitsTest, SchemaIdentifiersAreComparedToTheLetter) {
  if (test::ReleasesBuilt(SchemaNamespace::IFC4X3_ADD2, SchemaNamespace::IFC4X3_ADD2).empty()) {
    GTEST_SKIP() << "the release is left out of this build";
  }
  Add("a.ifc", Units({kMetre}), "IFC4X3_ADD2");
  const RunModel& second = AddModel("b.ifc", Units({kMetre}), "IFC4X3");
  EXPECT_EQ(1, Check());
  ExpectFlags(second, true, false);
}

}  // namespace
}  // namespace corvel
