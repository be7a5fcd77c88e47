#include "host/check/check_report.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "host/check/checked_text.h"
#include "host/display_text.h"
#include "host/wrapped_text.h"
#include "support/json_schema.h"

namespace corvel::host {

namespace {

const std::string kSpoilt =
    kGoodRecords +
    "#20=IFCCARTESIANPOINT(());\n#21=IFCWALL('wall',$,'\\X\\FC',$,$,$,$,$,$);\n"
    "#22=IFCLOCALPLACEMENT($,$);\n#23=IFCSPACESHIP();\n#24=IFCDIRECTION((0.1234567890123456,1.));\n"
    "#30=IFCMAPCONVERSION(#5,#31,155000.,463000.,0.,$,$,$);\n"
    "#31=IFCPROJECTEDCRS('EPSG:28992',$,$,$,$,$,$);\n"
    "#32=IFCBUILDINGSTOREY('0000000000000000000032',$,'G',$,$,#10,$,$,.ELEMENT.,2.);\n";

std::vector<std::string> MistakesIn(const CheckReport& report) {
  const auto json = nlohmann::json::parse(CheckReportAsJson(report));
  return test::JsonSchema::OfFile(CORVEL_DOCS_DIR "/check.schema.json").Mistakes(json);
}

CheckReport ReportOf(const std::vector<std::string>& files) {
  CheckReport report;
  for (const std::string& file : files) report.models.push_back(CheckFile(file, true));
  if (files.size() > 1) report.between = CheckBetween(report.models);
  return report;
}

std::size_t WidestLine(WideView text) {
  std::size_t widest = 0;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(u'\n'), text.size() - 1);
    widest = std::max(widest, ColumnsOf(text.substr(0, end)));
    text.remove_prefix(end + 1);
  }
  return widest;
}

// Behind the facts.
WideString FindingsOf(const CheckedModel& model, const Comparison* comparison = nullptr,
                      bool inColours = false) {
  const WideString text = CheckedModelAsText(model, comparison, inColours);
  return text.substr(text.find(u"\n\n") + 2);
}

}  // namespace

TEST(CheckReport, JsonIsAsItsSchemaSays) {
  const std::vector<std::string> none;
  EXPECT_EQ(none, MistakesIn(ReportOf({test::ModelFile(kGoodRecords)})));
  EXPECT_EQ(none, MistakesIn(ReportOf({test::ModelFile(kSpoilt), "hello",
                                       test::ModelFile(kSpoilt + "#40=IFCWALL('a',$,$,$,$,$,$,$,$);"
                                                                 "#41=IFCWALL('a',$,$,$,$,$,$,$,$)"
                                                                 ";")})));
  CheckReport compared = ReportOf({test::ModelFile(kSpoilt)});
  compared.against = {u"a.ifc"};
  compared.comparison =
      CompareWith(compared.models[0], {CheckFile(test::ModelFile(kGoodRecords + "#20=IFCX();"))});
  EXPECT_FALSE(compared.comparison->gone.empty());
  EXPECT_EQ(none, MistakesIn(compared));
}

TEST(CheckReport, JsonOfEachRuleIsAsItsSchemaSays) {
  CheckReport report;
  report.models.push_back(CheckFile(test::ModelFile(kGoodRecords)));
  Comparison comparison;
  for (const Rule& rule : Rules()) {
    const Finding finding{
        .rule = rule.id,
        .subject = "IfcWall.Name",
        .count = 2,
        .places = {{.number = 1, .line = 2, .what = u"\u00fc", .isNew = true}, {}}};
    report.models[0].findings.push_back(finding);
    report.between.push_back({0, 0, finding});
    comparison.newPlaces.push_back(1);
    comparison.gone.push_back(finding);
  }
  EXPECT_EQ(std::vector<std::string>(), MistakesIn(report));
  report.comparison = comparison;
  report.against = {u"a.ifc"};
  EXPECT_EQ(std::vector<std::string>(), MistakesIn(report));
}

TEST(CheckReport, NewPlacesAreToldApartFromOldOnes) {
  CheckedModel model = CheckFile(test::ModelFile(kGoodRecords));
  model.findings.push_back({.rule = RuleId::kMalformedGuid,
                            .subject = "IfcWall",
                            .count = 4,
                            .places = {{.number = 7, .line = 9, .isNew = true},
                                       {.number = 8, .isNew = true},
                                       {.number = 5, .line = 7}}});
  const Comparison comparison{.newPlaces = {2}, .gone = {}};
  EXPECT_EQ(
      u"  error   PJS003.malformed IfcWall, 2 of them new\n"
      u"          A GUID is malformed (4 places).\n"
      u"          new: #7 in line 9, #8; old: #5 in line 7, ...\n"
      u"\n  4 errors, 0 warnings, 0 notes\n\n",
      FindingsOf(model, &comparison));
}

TEST(CheckReport, TheWorstComesFirst) {
  const CheckedModel model =
      CheckRecords(kGoodRecords +
                   "#20=IFCUNITASSIGNMENT((#3));\n#21=IFCDIRECTION((0.1234567890123456,1.));\n"
                   "#22=IFCCARTESIANPOINT(());\n#23=IFCCARTESIANPOINT(());\n");
  EXPECT_EQ(
      u"  error   CRV.list.few IfcCartesianPoint.Coordinates\n"
      u"          A list has fewer members than it needs (2 places).\n"
      u"          #22 in line 20 (0 members), #23 in line 21 (0 members)\n"
      u"  warning CRV.units.unlisted IfcUnitAssignment\n"
      u"          No project names this unit assignment.\n"
      u"          #20 in line 18\n"
      u"  note    CRV.save.real\n"
      u"          A save shortens the number.\n"
      u"          #21 in line 19 (IfcDirection.DirectionRatios 0.1234567890123456)\n"
      u"\n  2 errors, 1 warning, 1 note\n\n",
      FindingsOf(model));
}

TEST(CheckReport, ColoursStandAroundTheSeverityAlone) {
  const CheckedModel model = CheckRecords(kGoodRecords + "#20=IFCUNITASSIGNMENT((#3));\n");
  EXPECT_EQ(
      u"  \x1b[33mwarning\x1b[0m CRV.units.unlisted IfcUnitAssignment\n"
      u"          No project names this unit assignment.\n          #20 in line 18\n"
      u"\n  0 errors, 1 warning, 0 notes\n\n",
      FindingsOf(model, nullptr, true));
}

TEST(CheckReport, OldNewAndGoneAreTold) {
  const CheckedModel before =
      CheckRecords(kGoodRecords + "#20=IFCCARTESIANPOINT(());\n#21=IFCUNITASSIGNMENT((#3));\n");
  const CheckedModel after = CheckRecords(kGoodRecords +
                                          "#20=IFCCARTESIANPOINT(());\n#22=IFCCARTESIANPOINT(());\n"
                                          "#23=IFCDIRECTION(());\n");
  const Comparison comparison = CompareWith(after, {before});
  EXPECT_EQ(
      u"  error   CRV.list.few IfcCartesianPoint.Coordinates, 1 of them new\n"
      u"          A list has fewer members than it needs (2 places).\n"
      u"          #20 in line 18 (0 members), #22 in line 19 (0 members)\n"
      u"  error   CRV.list.few IfcDirection.DirectionRatios, new\n"
      u"          A list has fewer members than it needs.\n"
      u"          #23 in line 20 (0 members)\n"
      u"  warning CRV.units.unlisted IfcUnitAssignment, gone\n"
      u"          No project names this unit assignment.\n"
      u"\n  3 errors, 0 warnings, 0 notes\n\n",
      FindingsOf(after, &comparison));
}

TEST(CheckReport, NoLineIsWiderThanEightyColumns) {
  const std::string longName(200, 'x');
  const CheckReport report =
      ReportOf({test::ModelFile(kSpoilt),
                test::ModelFile(kSpoilt + "#40=IFCSITE('" + longName + "',$,'" + longName +
                                "',$,$,#10,$,$,.ELEMENT.,$,$,$,$,$);")});
  for (const CheckedModel& model : report.models) {
    EXPECT_LE(WidestLine(CheckedModelAsText(model, nullptr, false)), kLineColumns);
  }
  EXPECT_LE(WidestLine(CheckSummaryAsText(report, false)), kLineColumns);
}

TEST(CheckReport, FactsLeadTheText) {
  EXPECT_EQ(
      u"  release         IFC4\n"
      u"  exporter        s, p\n"
      u"  units           length METRE\n"
      u"  place           Eastings 155000, Northings 463000, height 0, EPSG:28992\n"
      u"  true north      not stated\n"
      u"  projects        1\n"
      u"  sites           1: S\n"
      u"  buildings       0\n"
      u"  storeys         1\n"
      u"         2.000 m  G\n"
      u"  products        3 of 3 classes\n"
      u"               1  IfcBuildingStorey\n"
      u"               1  IfcSite\n"
      u"               1  IfcWall\n"
      u"  extent          x 0.000 m to 0.000 m, y 0.000 m to 0.000 m, z 0.000 m to 0.000\n"
      u"                  m\n"
      u"  doubled GUIDs   0\n",
      [] {
        const WideString text = CheckedModelAsText(CheckRecords(kSpoilt), nullptr, false);
        const std::size_t begin = text.find(u"  release");
        return text.substr(begin, text.find(u"\n\n") + 1 - begin);
      }());
}

TEST(CheckReport, WhatIsBetweenModelsStandsAtTheEnd) {
  CheckReport report = ReportOf({test::ModelFile(kGoodRecords), test::ModelFile(kGoodRecords)});
  report.models[0].path = u"a.ifc";
  report.models[1].path = u"b.ifc";
  const WideString text = CheckSummaryAsText(report, false);
  EXPECT_TRUE(text.starts_with(u"b.ifc beside a.ifc\n  note    CRV.files.guid IfcProject\n"));
  EXPECT_TRUE(text.ends_with(u"\nIn all: 0 errors, 0 warnings, 3 notes\n"));
}

TEST(WrappedText, WordsAreBrokenAtBlanksAndLongOnesCut) {
  EXPECT_EQ(u"a: b\n", Wrapped(u"a: ", u"b"));
  EXPECT_EQ(u"  label\n", LabelledLine(u"label", u""));
  const WideString word(50, u'x');
  EXPECT_EQ(u"- " + word + u"\n  " + word + u"\n", Wrapped(u"- ", word + u" " + word));
  const WideString longer(100, u'y');
  EXPECT_EQ(u"- " + longer.substr(0, 78) + u"\n  " + longer.substr(78) + u"\n",
            Wrapped(u"- ", longer));
}

TEST(WrappedText, NumbersOfMetresHaveThreePlaces) {
  EXPECT_EQ(u"3.100 m", MetresText(3.1));
  EXPECT_EQ(u"0.000 m", MetresText(-1e-9));
  EXPECT_EQ(u"-1.250 m", MetresText(-1.25));
  EXPECT_EQ(u"-", MetresText(std::numeric_limits<double>::infinity()));
}

}  // namespace corvel::host
