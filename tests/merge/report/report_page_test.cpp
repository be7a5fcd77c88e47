#include "merge/report/report_page.h"

#include <gtest/gtest.h>

#include <set>

#include "merge/report/report_json.h"
#include "merge/report/shared/page_texts.h"

namespace corvel {
namespace {

constexpr WideView kHostile = u"</script></title><script>bad()</script>{{json}}\"'&\u2028";

// Something in every section, and a hostile name wherever a name can stand.
RunReport FullReport() {
  const WideString hostile(kHostile);
  RunReport report;
  report.command = "merge";
  report.startedAt = u"2026-11-22 14:05:09";
  report.failures = {{hostile, u"/a/" + hostile}, {u"no room", u"/a/" + hostile}};
  report.messages = {{hostile}};
  report.output.path = u"/" + hostile;
  report.output.keptAt = hostile;
  report.output.isKnown = true;
  for (int i = 0; i < 2; ++i) {
    InputReport& input = report.inputs.emplace_back();
    input.path = hostile;
    input.schema = hostile;
    input.lengthUnit = hostile;
    input.unitsDiffer = true;
    input.unitDifferences.push_back({hostile, hostile, 1, hostile, 2, false, hostile});
    input.products.in = input.products.kept = 1;
    input.classes = {{"IfcWall", input.products}};
    input.remarks = {hostile};
  }
  report.inputs[0].takesPart = report.inputs[1].takesPart = true;
  report.steps.push_back({"tree", {{"joined", 1}}, {{"ambiguous", {hostile}}}});
  report.stages.push_back({RunStage::kRead, hostile, 0.5, 1000000});
  ModelPlaces& places = report.places.emplace();
  places.classes = {{"IfcWall", 2, 2}};
  places.products.push_back({0, 0, "</title>", hostile, {0, 0, 0}});
  places.products.push_back({1, 0, "g", hostile, {9, 0, 0}, ProductBox{{9, 0, 1}, {1, 2, 2}, 30}});
  places.storeys = {{0, hostile, 3.0}};
  places.tree = {{"IfcProject", "g", hostile, {0, 1}, {0, 0}, {1}},
                 {"IfcSite", "g", hostile, {0}, {1, 0}, {}}};
  return report;
}

std::size_t Occurrences(std::string_view text, std::string_view piece) {
  std::size_t count = 0;
  for (std::size_t at = text.find(piece); at != std::string_view::npos;
       at = text.find(piece, at + piece.size())) {
    ++count;
  }
  return count;
}

// What stands behind each of these beginnings, up to the end of the attribute.
std::vector<std::string> Attributes(std::string_view page, std::string_view begin) {
  std::vector<std::string> found;
  for (std::size_t at = page.find(begin); at != std::string_view::npos; at = page.find(begin, at)) {
    at += begin.size();
    found.emplace_back(page.substr(at, page.find('\'', at) - at));
  }
  return found;
}

TEST(ReportPage, NoNameGetsOutOfItsPlace) {
  const std::string page = ReportAsPage(FullReport(), "en");
  EXPECT_EQ(3u, Occurrences(page, "<script"));
  EXPECT_EQ(3u, Occurrences(page, "</script>"));
  EXPECT_EQ(0u, Occurrences(page, "<script>bad"));
  EXPECT_EQ(Occurrences(page, "<title>"), Occurrences(page, "</title>"));
  EXPECT_LT(10u, Occurrences(page, "&lt;/script&gt;"));
}

TEST(ReportPage, TheJsonInItIsThatOfTheReport) {
  const RunReport report = FullReport();
  const std::string page = ReportAsPage(report, "en");
  EXPECT_EQ(1u, Occurrences(page, "id=\"report\">\n" + ReportAsJson(report) + "</script>"));
}

TEST(ReportPage, WhatWasConvertedIsShownOfThoseModelsAloneThatNeededIt) {
  constexpr std::string_view kShown = "data-t='conversions'";
  const std::vector<WideString> lines = {u"all about the units"};
  RunReport report = FullReport();
  EXPECT_EQ(0u, Occurrences(ReportAsPage(report, "en"), kShown));
  report.steps.push_back({"units", {{"copies", 0}}, {{"converted", lines}}, 1});
  EXPECT_EQ(1u, Occurrences(ReportAsPage(report, "en"), kShown));
  report.steps.back().foundWork = false;
  EXPECT_EQ(0u, Occurrences(ReportAsPage(report, "en"), kShown));
}

TEST(ReportPage, FailuresComeFirst) {
  const std::string page = ReportAsPage(FullReport(), "en");
  EXPECT_LT(page.find("id='failures'"), page.find("data-t='inputs'"));
  EXPECT_LT(page.find("id='failures'"), page.find("class='chip"));
}

TEST(ReportPage, WhatWasToldNamesItsFileUnlessTheTextDoes) {
  constexpr std::string_view kFile = "<b><bdi>a.ifc</bdi></b><span data-t='colon'>:</span> ";
  RunReport report;
  report.failures = {{u"no such class\n", u"/models/a.ifc"},
                     {u"/models/a.ifc is cut short", u"/models/a.ifc"},
                     {u"no memory"}};
  report.messages = {{u"by the way", u"/models/a.ifc"}};
  const std::string page = ReportAsPage(report, "en");
  EXPECT_EQ(2u, Occurrences(page, kFile));
  EXPECT_EQ(1u, Occurrences(page, "<li>" + std::string(kFile) + "<bdi>no such class</bdi></li>"));
  EXPECT_EQ(1u, Occurrences(page, "<li><bdi>/models/a.ifc is cut short</bdi></li>"));
  EXPECT_EQ(1u, Occurrences(page, "<li>" + std::string(kFile) + "<bdi>by the way</bdi></li>"));
  const std::string json = ReportAsJson(report);
  EXPECT_EQ(1u, Occurrences(json, "\"failureFiles\":[\"/models/a.ifc\",\"/models/a.ifc\",null]"));
  EXPECT_EQ(1u, Occurrences(json, "\"messageFiles\":[\"/models/a.ifc\"]"));
}

TEST(ReportPage, AFlowIsDrawnWhereSomethingCameToTheResultAlone) {
  RunReport report = FullReport();
  const std::string page = ReportAsPage(report, "en");
  EXPECT_EQ(1u, Occurrences(page, "<div class='flows'"));
  EXPECT_LT(0u, Occurrences(page, "<path class='flow"));
  for (InputReport& input : report.inputs) {
    for (ClassTally& tally : input.classes) tally.products.kept = 0;
  }
  EXPECT_EQ(0u, Occurrences(ReportAsPage(report, "en"), "<div class='flows'"));
}

// Beside the drawing or above it, they are as large as other text however narrow the page is.
TEST(ReportPage, NamesOfAFlowAreTextsOfThePageAndNotOfTheDrawing) {
  const std::string page = ReportAsPage(FullReport(), "en");
  const std::size_t begin = page.find("<div class='flows'");
  const std::string flows = page.substr(begin, page.find("</div>", begin) - begin);
  EXPECT_EQ(0u, Occurrences(flows, "<text"));
  EXPECT_EQ(1u, Occurrences(flows, "<ul class='from'>"));
  EXPECT_EQ(1u, Occurrences(flows, "<ul class='to'>"));
  EXPECT_EQ(Occurrences(flows, "<rect class='end"), Occurrences(flows, "<li"));
  EXPECT_LT(flows.find("</svg>"), flows.find(">IfcWall<"));
}

TEST(ReportPage, OffsetsAndSizesAreToldInWholeAndInGroups) {
  RunReport report = FullReport();
  report.inputs[0].offsetMm = {-1000000, 0, 0.5};
  report.inputs[0].bytes = 123456;
  const std::string page = ReportAsPage(report, "en");
  EXPECT_EQ(1u, Occurrences(page,
                            "<dd><span data-n='-1000000'>-1,000,000</span> \u00B7 0 \u00B7 "
                            "<span data-n='0.5'>0.5</span></dd>"));
  EXPECT_EQ(1u, Occurrences(page,
                            "<dd><span data-n='123.5'>123.5</span>\u00A0<span "
                            "data-t='size.kB'>kB</span></dd>"));
}

TEST(ReportPage, NumbersAreThoseOfItsLanguageAndCoordinatesAreNot) {
  RunReport report = FullReport();
  report.inputs[0].offsetMm = {-1000000, 0, 0.5};
  const std::string page = ReportAsPage(report, "de");
  EXPECT_EQ(1u, Occurrences(page, "<span data-n='-1000000'>-1.000.000</span>"));
  EXPECT_EQ(1u, Occurrences(page, "<span data-n='0.5'>0,5</span>"));
  EXPECT_EQ(1u, Occurrences(page, "<tspan data-n='3.00'>3,00</tspan>\u00A0m</tspan></text>"));
  EXPECT_EQ(1u, Occurrences(page, "<span data-n='3.00'>3,00</span> m \u00B7"));
  const std::vector<std::string> paths = Attributes(page, "<path class='p' d='");
  EXPECT_EQ(2u, paths.size());
  EXPECT_EQ(Attributes(ReportAsPage(report, "en"), "<path class='p' d='"), paths);
}

TEST(ReportPage, EveryTextOfThePageIsThereInEachLanguage) {
  std::set<std::string> keys;
  const std::string page = ReportAsPage(FullReport(), "en");
  for (std::size_t at = page.find("data-t="); at != std::string::npos;
       at = page.find("data-t=", at + 1)) {
    const std::size_t begin = at + 8;
    keys.insert(page.substr(begin, page.find(page[begin - 1], begin) - begin));
  }
  EXPECT_LT(30u, keys.size());
  for (const char* const language : {"en", "de", "fr", "es", "pl"}) {
    const PageTexts texts(language);
    ASSERT_EQ(language, texts.Language());
    for (const std::string& key : keys) EXPECT_NE(key, texts.Of(key)) << language;
  }
}

TEST(ReportPage, WithALanguageItStaysInIt) {
  const std::string german = ReportAsPage(FullReport(), "de");
  EXPECT_NE(std::string::npos, german.find("<html lang=\"de\">"));
  EXPECT_NE(std::string::npos, german.find("<h2 data-t='inputs'>Eingaben</h2>"));
  EXPECT_NE(std::string::npos,
            ReportAsPage(FullReport(), "").find("<html lang=\"en\" data-follows>"));
}

TEST(ReportPage, ARunThatEndedBeforeItReadAnythingHasAPageToo) {
  RunReport report;
  report.command = "merge";
  report.failures = {{u"no memory"}};
  const std::string page = ReportAsPage(report, "en");
  EXPECT_NE(std::string::npos, page.find("<bdi>no memory</bdi>"));
  EXPECT_EQ(0u, Occurrences(page, "<svg"));
}

TEST(ReportPage, OutlinesAlongTheAxesAreDrawnWithOneNumberALine) {
  RunReport report = FullReport();
  ModelPlaces& places = *report.places;
  places.products = {{0, 0, "upright", u"n", {}, ProductBox{{5, 5, 1}, {10, 10, 2}, 0}},
                     {0, 0, "turned", u"n", {}, ProductBox{{5, 5, 1}, {7, 7, 2}, 45}}};
  places.storeys.clear();
  const std::string page = ReportAsPage(report, "en");
  const auto outlines = [&page](std::string_view guid) {
    std::vector<std::string> found;
    for (std::size_t at = page.find(guid); at != std::string::npos; at = page.find(guid, at + 1)) {
      const std::size_t path = page.rfind(" d='", at);
      if (path == std::string::npos) continue;
      found.push_back(page.substr(path + 4, page.find('\'', path + 4) - path - 4));
    }
    return found;
  };
  // The plan is 10 metres in 640 - 2 * 26 units, and in the middle of 760 - 2 * 26 - 24.
  const auto upright = outlines("\nupright");
  ASSERT_EQ(2u, upright.size());
  EXPECT_EQ("M74.0 614.0H662.0V26.0H74.0z", upright[0]);
  const auto turned = outlines("\nturned");
  ASSERT_EQ(2u, turned.size());
  EXPECT_EQ("M368.0 611.0L659.0 320.0L368.0 29.0L77.0 320.0z", turned[0]);
  EXPECT_EQ(std::string::npos, turned[1].find('L')) << turned[1];
}

TEST(ReportPage, MoreProductsThanABrowserDrawsAreThinnedOutByClassAndItIsSaid) {
  RunReport report = FullReport();
  ModelPlaces& places = *report.places;
  places.classes = {{"IfcWall", 40000, 40000}, {"IfcDoor", 3, 3}};
  places.products.clear();
  for (std::uint32_t i = 0; i < 40003; ++i) {
    places.products.push_back(
        {0, i < 40000 ? 0u : 1u, "g", u"n", {double(i % 200), double(i) / 200, 0}});
  }
  const std::string page = ReportAsPage(report, "en");
  const std::size_t drawn = Occurrences(page, "<circle class='p'");
  EXPECT_LT(2 * 7900u, drawn);
  EXPECT_GE(2 * 8002u, drawn);
  EXPECT_LE(2u, Occurrences(page, "\u00b7 IfcDoor \u00b7"));
  EXPECT_NE(std::string::npos, page.find("Every class is thinned out by the same share."));
}

}  // namespace
}  // namespace corvel
