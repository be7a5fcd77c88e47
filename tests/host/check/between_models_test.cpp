#include "host/check/between_models.h"

#include <gtest/gtest.h>

#include "host/check/against.h"
#include "host/check/checked_text.h"

namespace corvel::host {

namespace {

std::string WallOf(const std::string& number, const std::string& guid,
                   const std::string& className = "IFCWALL") {
  const std::string more = className == "IFCDOOR" ? ",$,$,$,$" : "";
  return "#" + number + "=" + className + "('00000000000000000000" + guid + "',$,$,$,$,$,$,$,$" +
         more + ");\n";
}

// The good model with GUIDs and records of its own in place of its first ones.
std::string Other(std::string text) {
  for (std::size_t at = text.find("'000000000"); at != std::string::npos;
       at = text.find("'000000000", at + 1)) {
    text[at + 1] = '1';
  }
  return text;
}

std::vector<RuleId> RulesBetween(const std::string& one, const std::string& other,
                                 std::string_view schemaOfOther = "IFC4") {
  std::vector<CheckedModel> models;
  models.push_back(CheckRecords(one));
  models.push_back(CheckRecords(other, schemaOfOther));
  std::vector<RuleId> rules;
  for (const BetweenFinding& between : CheckBetween(models)) {
    EXPECT_EQ(1u, between.file);
    EXPECT_EQ(0u, between.other);
    rules.push_back(between.finding.rule);
  }
  return rules;
}

const std::string kConversion =
    "#30=IFCMAPCONVERSION(#5,#31,155000.,463000.,0.,$,$,$);\n"
    "#31=IFCPROJECTEDCRS('EPSG:28992',$,$,$,$,$,$);\n";

}  // namespace

TEST(CheckBetween, ModelsThatFitSayNothing) {
  EXPECT_EQ(std::vector<RuleId>{}, RulesBetween(kGoodRecords, Other(kGoodRecords)));
}

TEST(CheckBetween, EachRuleIsBrokenByAPairOfModels) {
  EXPECT_EQ(std::vector<RuleId>{RuleId::kOtherRelease},
            RulesBetween(kGoodRecords,
                         Other("#1=IFCPROJECT('0000000000000000000001',$,'P',$,$,$,$,"
                               "$,#2);\n#2=IFCUNITASSIGNMENT((#3));\n"
                               "#3=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);\n"),
                         "IFC2X3"));
  std::string feet = Other(kGoodRecords);
  feet.replace(feet.find(".LENGTHUNIT.,$"), 14, ".LENGTHUNIT.,.MILLI.");
  EXPECT_EQ(std::vector<RuleId>{RuleId::kOtherUnit}, RulesBetween(kGoodRecords, feet));
  EXPECT_EQ(std::vector<RuleId>{RuleId::kOtherPlace},
            RulesBetween(kGoodRecords, Other(kGoodRecords) + kConversion));
  std::string far = Other(kGoodRecords);
  far.replace(far.find("((0.,0.,0.))"), 12, "((0.,1001.,0.))");
  EXPECT_EQ(std::vector<RuleId>{RuleId::kFarApart}, RulesBetween(kGoodRecords, far));
  EXPECT_EQ(
      std::vector<RuleId>{RuleId::kSharedGuid},
      RulesBetween(kGoodRecords + WallOf("20", "20"), Other(kGoodRecords) + WallOf("21", "20")));
  EXPECT_EQ(std::vector<RuleId>{RuleId::kGuidOfOtherClass},
            RulesBetween(kGoodRecords + WallOf("20", "20"),
                         Other(kGoodRecords) + WallOf("21", "20", "IFCDOOR")));
}

TEST(CheckBetween, OtherSiUnitsAreComparedAsAMergeDoes) {
  const auto withUnits = [](const std::string& records, const std::string& list) {
    std::string text = kGoodRecords + records;
    text.replace(text.find("((#3))"), 6, "(" + list + ")");
    return text;
  };
  const std::string area = "IFCSIUNIT(*,.AREAUNIT.,$,.SQUARE_METRE.);\n";
  const std::string one =
      withUnits("#20=IFCSIUNIT(*,.MASSUNIT.,$,.GRAM.);\n#21=" + area, "(#3,#20,#21)");
  const std::string other = withUnits("#20=IFCSIUNIT(*,.MASSUNIT.,.KILO.,.GRAM.);\n#21=" + area +
                                          "#22=IFCSIUNIT(*,.TIMEUNIT.,.MILLI.,.SECOND.);\n",
                                      "(#3,#20,#21,#22)");
  std::vector<CheckedModel> models;
  models.push_back(CheckRecords(one));
  models.push_back(CheckRecords(Other(other)));
  const auto between = CheckBetween(models);
  ASSERT_EQ(1u, between.size());
  EXPECT_EQ(RuleId::kOtherUnit, between[0].finding.rule);
  EXPECT_EQ("MASSUNIT", between[0].finding.subject);
  EXPECT_EQ(u"KILOGRAM for GRAM", between[0].finding.places.at(0).what);
  // What is made by conversion is not compared, and no unit is no difference.
  const std::string degrees = withUnits(
      "#20=IFCCONVERSIONBASEDUNIT(#22,.PLANEANGLEUNIT.,'DEGREE',#23);\n"
      "#22=IFCDIMENSIONALEXPONENTS(0,0,0,0,0,0,0);\n"
      "#23=IFCMEASUREWITHUNIT(IFCPLANEANGLEMEASURE(0.0174),#24);\n"
      "#24=IFCSIUNIT(*,.PLANEANGLEUNIT.,$,.RADIAN.);\n",
      "(#3,#20)");
  const std::string radians =
      withUnits("#20=IFCSIUNIT(*,.PLANEANGLEUNIT.,$,.RADIAN.);\n", "(#3,#20)");
  EXPECT_EQ(std::vector<RuleId>{}, RulesBetween(degrees, Other(radians)));
}

TEST(CheckBetween, GuidsAreLookedForInAllEarlierModels) {
  std::vector<CheckedModel> models;
  models.push_back(CheckRecords(kGoodRecords));
  models.push_back(CheckRecords(Other(kGoodRecords) + WallOf("20", "20")));
  models.push_back(
      CheckRecords("#1=IFCPROJECT('2000000000000000000001',$,'P',$,$,$,$,$,#2);\n"
                   "#2=IFCUNITASSIGNMENT((#3));\n"
                   "#3=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);\n" +
                   WallOf("40", "20")));
  const auto between = CheckBetween(models);
  ASSERT_EQ(1u, between.size());
  EXPECT_EQ(2u, between[0].file);
  EXPECT_EQ(1u, between[0].other);
  EXPECT_EQ("IfcWall", between[0].finding.subject);
  EXPECT_EQ(u"0000000000000000000020 #20", between[0].finding.places.at(0).what);
  EXPECT_EQ(40u, between[0].finding.places.at(0).number);
}

TEST(CheckBetween, ModelsThatCouldNotBeReadAreLeftOut) {
  std::vector<CheckedModel> models;
  models.push_back(CheckFile("hello"));
  models.push_back(CheckRecords(kGoodRecords));
  EXPECT_TRUE(CheckBetween(models).empty());
}

// --- One model against those that it was made from -----------------------------------------------

namespace {

const std::string kTwoMaterials = "#50=IFCMATERIAL('a',$,$);\n#51=IFCMATERIAL('b',$,$);\n";

std::string TwoMaterialsOf(const std::string& wall, const std::string& first,
                           const std::string& second) {
  const auto relation = [&](const std::string& number, const std::string& material) {
    return "#" + number + "=IFCRELASSOCIATESMATERIAL('00000000000000000000" + number +
           "',$,$,$,(#" + wall + ")," + material + ");\n";
  };
  return relation(first, "#50") + relation(second, "#51");
}

CheckedModel KeepingObjects(const std::string& records) {
  return CheckFile(test::ModelFile(records), true);
}

}  // namespace

TEST(CompareWith, ObjectsAreRecognisedByTheirGuids) {
  const std::string records = kGoodRecords + kTwoMaterials;
  const CheckedModel before = KeepingObjects(records + WallOf("20", "20") + WallOf("21", "21") +
                                             TwoMaterialsOf("20", "60", "61"));
  const CheckedModel after = KeepingObjects(records + WallOf("30", "20") + WallOf("31", "21") +
                                            TwoMaterialsOf("31", "60", "61"));
  const auto same = CompareWith(before, {before});
  EXPECT_EQ(std::vector<std::uint64_t>{0}, same.newPlaces);
  EXPECT_TRUE(same.gone.empty());
  const auto other = CompareWith(after, {before});
  EXPECT_EQ(std::vector<std::uint64_t>{1}, other.newPlaces);
  ASSERT_EQ(1u, other.gone.size());
  EXPECT_EQ(RuleId::kSeveralAnswers, other.gone[0].rule);
  EXPECT_EQ(1u, other.gone[0].count);
}

TEST(CompareWith, EqualObjectsWithoutAGuidAreCounted) {
  const CheckedModel one = KeepingObjects(kGoodRecords + "#20=IFCCARTESIANPOINT(());\n");
  const CheckedModel two =
      KeepingObjects(kGoodRecords + "#30=IFCCARTESIANPOINT(());\n#31=IFCCARTESIANPOINT(());\n");
  EXPECT_EQ(std::vector<std::uint64_t>{1}, CompareWith(two, {one}).newPlaces);
  EXPECT_EQ(std::vector<std::uint64_t>{0}, CompareWith(two, {one, one}).newPlaces);
  EXPECT_EQ(std::vector<std::uint64_t>{0}, CompareWith(one, {two}).newPlaces);
  ASSERT_EQ(1u, CompareWith(one, {two}).gone.size());
  EXPECT_EQ(1u, CompareWith(one, {two}).gone[0].count);
}

TEST(CompareWith, ObjectsWithoutAGuidAreRecognisedByWhatTheySay) {
  const auto model = [](const std::string& number, const std::string& x) {
    return KeepingObjects(kGoodRecords + "#" + number + "=IFCCARTESIANPOINT((" + x +
                          ",0.,0.,0.));");
  };
  const CheckedModel before = model("20", "1.");
  EXPECT_EQ(std::vector<std::uint64_t>{0}, CompareWith(model("30", "1."), {before}).newPlaces);
  const Comparison other = CompareWith(model("20", "2."), {before});
  EXPECT_EQ(std::vector<std::uint64_t>{1}, other.newPlaces);
  ASSERT_EQ(1u, other.gone.size());
  ASSERT_EQ(1u, other.gone[0].places.size());
  EXPECT_EQ(20u, other.gone[0].places[0].number);
  EXPECT_EQ(u"", other.gone[0].places[0].what);
  const Comparison several = CompareWith(model("20", "2."), {before, before});
  EXPECT_EQ(u"in m.ifc", several.gone.at(0).places.at(0).what);
}

TEST(CompareWith, WhatObjectsReferToMayHaveOtherNumbers) {
  const auto model = [](const std::string& point) {
    return KeepingObjects(kGoodRecords + "#20=IFCAXIS2PLACEMENT3D($,#" + point + ",$);#" + point +
                          "=IFCDIRECTION((0.,0.,1.));");
  };
  EXPECT_EQ(std::vector<std::uint64_t>{0}, CompareWith(model("31"), {model("30")}).newPlaces);
}

TEST(CompareWith, WhatTheReadingNotedIsRecognisedByItsObject) {
  const auto model = [](const std::string& number, const std::string& guid,
                        const std::string& value) {
    return KeepingObjects(kGoodRecords + "#" + number + "=IFCSLAB('00000000000000000000" + guid +
                          "',$,$,$,$,$,$,$,." + value + ".);#40=IFCSPACESHIP('a',#" + number +
                          ");");
  };
  const CheckedModel before = model("20", "20", "FLYING");
  const auto same = CompareWith(model("21", "20", "HOVERING"), {before});
  EXPECT_EQ((std::vector<std::uint64_t>{0, 0}), same.newPlaces);
  EXPECT_TRUE(same.gone.empty());
  const auto other = CompareWith(model("20", "21", "FLYING"), {before});
  EXPECT_EQ((std::vector<std::uint64_t>{0, 1}), other.newPlaces);
  ASSERT_EQ(1u, other.gone.size());
  EXPECT_EQ(RuleId::kUnknownValue, other.gone[0].rule);
}

TEST(CompareWith, PlacesOfNoObjectAreCounted) {
  const auto model = [](const std::string& more) { return KeepingObjects(kGoodRecords + more); };
  const CheckedModel before = model("hello\n#20=IFCMATERIAL('a',$,$);");
  EXPECT_EQ(std::vector<std::uint64_t>{0},
            CompareWith(model("you\n#20=IFCMATERIAL('a',$,$);"), {before}).newPlaces);
  EXPECT_EQ(std::vector<std::uint64_t>{1},
            CompareWith(model("a\n#20=IFCMATERIAL('a',$,$);b\n#21=IFCMATERIAL('a',$,$);"), {before})
                .newPlaces);
}

TEST(CheckModel, NewPlacesComeBeforeOldOnes) {
  const auto point = [](const std::string& number, const std::string& x) {
    return "#" + number + "=IFCCARTESIANPOINT((" + x + ",0.,0.,0.));\n";
  };
  const std::string old = point("20", "1.") + point("21", "2.") + point("22", "3.");
  const std::vector<CheckedModel> before{KeepingObjects(kGoodRecords + old)};
  const test::QuietReading quiet;
  const test::TemporaryFolder folder;
  const CheckedModel model = CheckModel(
      folder.Write("m.ifc",
                   test::ModelFile(kGoodRecords + old + point("23", "4.") + point("24", "5."))),
      {.workFolder = folder.Path(), .keepsObjects = true, .before = &before});
  const Finding many = FindingIn(model, RuleId::kManyMembers);
  EXPECT_EQ(5u, many.count);
  ASSERT_EQ(3u, many.places.size());
  EXPECT_EQ(23u, many.places[0].number);
  EXPECT_TRUE(many.places[0].isNew);
  EXPECT_EQ(21u, many.places[0].line);
  EXPECT_EQ(24u, many.places[1].number);
  EXPECT_EQ(20u, many.places[2].number);
  EXPECT_FALSE(many.places[2].isNew);
  EXPECT_EQ(std::vector<std::uint64_t>{2}, CompareWith(model, before).newPlaces);
}

}  // namespace corvel::host
