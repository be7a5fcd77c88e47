#include "host/check/report/check_page.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <string>

#include "host/check/report/places_of_model.h"
#include "host/check/rules.h"

namespace corvel::host {

namespace {

constexpr WideView kEvilName = u"</script></title><script>bad()</script>{{json}}\"'&\u2028";

Finding FindingWith(RuleId rule, std::string subject, const WideString& what) {
  return {.rule = rule,
          .subject = std::move(subject),
          .count = 5,
          .places = {{12, 30, what}, {14, 33, what}, {16, 0, {}}}};
}

ModelPlaces PlacesWith(std::uint32_t file, const WideString& name) {
  ModelPlaces places;
  places.classes = {{"IfcDoor", 0, 0}, {file == 0 ? "IfcWall" : "IfcDuct", 2, 1}};
  places.products.push_back({file, 1, "g", name, {double(file), 0, 0}});
  places.storeys = {{file, name, 3.0 - file}};
  places.tree = {{"IfcProject", "g", name, {file}, {0}, {1}},
                 {"IfcSite", "g", name, {file}, {1}, {}}};
  return places;
}

// All that the script of the page can say, by language.
nlohmann::json TextsOfPage(const std::string& page) {
  constexpr std::string_view kBegin = R"(<script type="application/json" id="texts">)";
  const std::size_t begin = page.find(kBegin) + kBegin.size();
  return nlohmann::json::parse(page.substr(begin, page.find("</script>", begin) - begin));
}

// Something in every section, and an evil name wherever a name can stand.
CheckReport ReportOfAll() {
  const WideString evil(kEvilName);
  CheckReport report;
  report.startedAt = u"2026-11-22 14:05:09";
  for (std::uint32_t file = 0; file < 2; ++file) {
    CheckedModel& model = report.models.emplace_back();
    model.path = u"/" + evil;
    ModelFacts& facts = model.facts.emplace();
    facts.schemaIdentifier = evil;
    facts.release = "IFC4";
    facts.exporter = {evil, evil, evil, evil};
    facts.units = {{"LENGTHUNIT", evil}};
    facts.georeference = {MapConversion{{1, 2, 3, 0.5, 0.5, 2}}, evil, 12.5};
    facts.spatial.sites = {{2, "IfcSite", "g", evil, {}, {}}};
    facts.spatial.storeys = {{3, "IfcBuildingStorey", "g", {}, 1.0, 2.0}};
    facts.products = {{"IfcWall", 2}};
    facts.extent = {2, 1, {0, 0, 0}, {1, 1, 1}};
    model.findings = {FindingWith(RuleId::kMissingValue, "IfcWall.Name", evil),
                      FindingWith(RuleId::kUnlistedUnits, "", evil),
                      FindingWith(RuleId::kChangedReal, "IfcDirection", evil)};
    model.places = PlacesWith(file, evil);
  }
  CheckedModel& unread = report.models.emplace_back();
  unread.path = evil;
  unread.problems = {evil};
  report.between = {{1, 0, FindingWith(RuleId::kSharedGuid, "IfcWall", evil)}};
  return report;
}

// What is old, partly new, new and gone.
CheckReport ComparedReport() {
  CheckReport report = ReportOfAll();
  report.models.resize(1);
  report.between.clear();
  report.against = {WideString(kEvilName)};
  report.comparison = {{0, 2, 5}, {FindingWith(RuleId::kNoProject, "", {})}};
  return report;
}

std::size_t CountOf(std::string_view text, std::string_view piece) {
  std::size_t count = 0;
  for (std::size_t at = text.find(piece); at != std::string_view::npos;
       at = text.find(piece, at + piece.size())) {
    ++count;
  }
  return count;
}

// Of the page as it is without its script, by key.
std::map<std::string, std::string> WordsIn(const std::string& page) {
  std::map<std::string, std::string> words;
  for (std::size_t at = page.find("data-t="); at != std::string::npos;
       at = page.find("data-t=", at + 1)) {
    const std::size_t begin = at + 8;
    const std::size_t text = page.find('>', begin) + 1;
    words.emplace(page.substr(begin, page.find(page[begin - 1], begin) - begin),
                  page.substr(text, page.find('<', text) - text));
  }
  return words;
}

}  // namespace

TEST(CheckPage, NoNameGetsOutOfItsPlace) {
  for (const CheckReport& report : {ReportOfAll(), ComparedReport()}) {
    const std::string page = CheckReportAsPage(report, "en");
    EXPECT_EQ(3u, CountOf(page, "<script"));
    EXPECT_EQ(3u, CountOf(page, "</script>"));
    EXPECT_EQ(0u, CountOf(page, "<script>bad"));
    EXPECT_EQ(CountOf(page, "<title>"), CountOf(page, "</title>"));
    EXPECT_EQ(0u, CountOf(CheckReportForPrograms(report), "\u2028"));
    EXPECT_LT(10u, CountOf(page, "&lt;/script&gt;"));
  }
}

TEST(CheckPage, TheJsonInItIsThatOfTheReportAndHasAllOfTheCheck) {
  const CheckReport report = ReportOfAll();
  const std::string json = CheckReportForPrograms(report);
  const std::string page = CheckReportAsPage(report, "en");
  EXPECT_EQ(1u, CountOf(page, "id=\"report\">\n" + json + "</script>"));
  const auto parsed = nlohmann::json::parse(json);
  EXPECT_EQ(nlohmann::json::parse(CheckReportAsJson(report)), parsed["check"]);
  EXPECT_EQ("check", parsed["report"]);
  EXPECT_EQ(3u, parsed["trees"].size());
  EXPECT_TRUE(parsed["trees"][2].is_null());
  EXPECT_EQ(ToUtf8(kEvilName), parsed["places"]["products"][1][3]);
}

TEST(CheckPage, WhatCouldNotBeReadComesFirstAndThenTheWorst) {
  const std::string page = CheckReportAsPage(ReportOfAll(), "en");
  const std::array<std::string_view, 7> order = {"id='failures'",
                                                 "data-t='errorsFound'",
                                                 "<h2 data-t='findings'>",
                                                 "data-t='rule.CRV.value.missing'",
                                                 "data-t='rule.CRV.units.unlisted'",
                                                 "data-t='rule.CRV.save.real'",
                                                 "<h2 data-t='facts'>"};
  std::size_t last = 0;
  for (const std::string_view piece : order) {
    const std::size_t at = page.find(piece);
    ASSERT_NE(std::string::npos, at) << piece;
    EXPECT_LT(last, at) << piece;
    last = at;
  }
}

TEST(CheckPage, WithAComparisonItTellsWhatIsNewOldAndGone) {
  const std::string page = CheckReportAsPage(ComparedReport(), "en");
  const std::size_t partly =
      page.find("<span data-t='new'>new</span><span data-t='colon'>:</span> 2");
  const std::size_t isNew = page.find("<span data-t='new' class='chip bad'>new</span>");
  const std::size_t old = page.find("<span data-t='old' class='chip soft'>old</span>");
  const std::size_t gone = page.find("<span data-t='gone' class='chip good'>gone</span>");
  ASSERT_NE(std::string::npos, gone);
  EXPECT_LT(partly, isNew);
  EXPECT_LT(isNew, old);
  EXPECT_LT(old, gone);
  // Errors that are old are none that were found.
  EXPECT_NE(std::string::npos, page.find("data-t='noNewErrors'"));
}

TEST(CheckPage, EveryTextOfItIsThereInEachLanguage) {
  for (const char* const language : {"en", "de", "fr", "es", "pl"}) {
    auto words = WordsIn(CheckReportAsPage(ReportOfAll(), language));
    words.merge(WordsIn(CheckReportAsPage(ComparedReport(), language)));
    EXPECT_LT(60u, words.size());
    for (const auto& [key, text] : words) {
      const bool isItsOwnName = key == "error" || key == "warning" || key == "note" ||
                                key == "new" || key == "old" || key == "gone" || key == "line" ||
                                key == "beside" || key == "scale" || key == "height";
      if (isItsOwnName && std::string_view(language) != "pl") continue;
      EXPECT_NE(key, text) << language;
    }
  }
  EXPECT_NE(std::string::npos,
            CheckReportAsPage(ReportOfAll(), "de").find("<h2 data-t='findings'>Befunde</h2>"));
}

// A finding of each rule.
CheckReport ReportOfAllRules() {
  CheckReport report = ReportOfAll();
  report.models.resize(1);
  report.between.clear();
  report.models[0].findings.clear();
  for (const Rule& rule : Rules()) {
    report.models[0].findings.push_back(FindingWith(rule.id, "IfcWall", {}));
  }
  return report;
}

TEST(CheckPage, EachRuleHasATitleAndAnExplanationInEachLanguage) {
  const CheckReport report = ReportOfAllRules();
  const auto english = WordsIn(CheckReportAsPage(report, "en"));
  for (const char* const language : {"de", "fr", "es", "pl"}) {
    const auto words = WordsIn(CheckReportAsPage(report, language));
    for (const Rule& rule : Rules()) {
      for (const char* const kind : {"rule.", "why."}) {
        const std::string key = kind + std::string(rule.name);
        ASSERT_EQ(1u, words.count(key)) << key;
        EXPECT_NE(english.at(key), words.at(key)) << language << ' ' << key;
      }
    }
  }
}

// What is the same in each language: names of rules, options and classes, words of STEP, numbers.
std::multiset<std::string> TermsIn(const std::string& text) {
  static const std::regex kTerm(
      R"(CRV\.[a-z.]+[a-z]|--[a-z]+|Ifc[A-Z]\w+|END-ISO-10303-21;|\b(?!GUID\b)[A-Z][A-Z0-9]{3,}\b|\d+)"
      R"(|\.[A-Z]\.|0\.|''|\(\)|\*|\b(resave|extract|optimise)\b)");
  std::multiset<std::string> terms;
  for (std::sregex_iterator at(text.begin(), text.end(), kTerm), end; at != end; ++at) {
    terms.insert(at->str());
  }
  return terms;
}

TEST(CheckPage, AnExplanationNamesTheSameThingsInEachLanguage) {
  const nlohmann::json texts = TextsOfPage(CheckReportAsPage(ReportOfAllRules(), "en"));
  const auto& english = texts.at("en").at("texts");
  std::set<std::string> seen;
  for (const char* const language : {"de", "fr", "es", "pl"}) {
    const auto& own = texts.at(language).at("texts");
    for (const Rule& rule : Rules()) {
      const std::string key = "why." + std::string(rule.name);
      const auto wanted = TermsIn(english.at(key));
      EXPECT_EQ(wanted, TermsIn(own.at(key))) << language << ' ' << key;
      seen.insert(wanted.begin(), wanted.end());
    }
  }
  EXPECT_LT(25u, seen.size());
}

TEST(CheckPage, NothingIsSaidOfARuleThatIsGone) {
  static const std::regex kOfRule(R"((?:^|\n)(?:rule|why)\.([^ ]+) = )");
  std::size_t said = 0;
  for (const std::string language : {"en", "de", "fr", "es", "pl"}) {
    std::ifstream file(CORVEL_DATA_DIR "/../report/check/texts." + language);
    const std::string lines(std::istreambuf_iterator<char>(file), {});
    EXPECT_NE("", lines);
    for (std::sregex_iterator at(lines.begin(), lines.end(), kOfRule), end; at != end; ++at) {
      EXPECT_NE(nullptr, FindRule((*at)[1].str())) << language << ' ' << (*at)[1];
      ++said;
    }
  }
  EXPECT_EQ(8 * kRules, said);  // a title and an explanation in each language but English
}

TEST(CheckPage, ItsScriptHasTheTextsThatThePageNames) {
  const std::string page = CheckReportAsPage(ReportOfAll(), "en");
  const auto named = WordsIn(page);
  const nlohmann::json texts = TextsOfPage(page);
  for (const auto& [language, own] : texts.items()) {
    EXPECT_EQ(named.size(), own.at("texts").size()) << language;
    for (const auto& [key, text] : named) EXPECT_TRUE(own.at("texts").contains(key)) << key;
  }
}

std::string ShownOf(const FindingPlace& place, std::string_view language, RuleId rule,
                    const std::string& subject = {}) {
  CheckReport report = ReportOfAll();
  report.models.resize(1);
  report.between.clear();
  report.models[0].findings = {{.rule = rule, .subject = subject, .count = 1, .places = {place}}};
  const std::string page = CheckReportAsPage(report, language);
  const std::size_t begin = page.find("<tr><td>", page.find("class='rule-of'"));
  static const std::regex kTag("<[^>]*>");
  return std::regex_replace(page.substr(begin, page.find("</tr>", begin) - begin), kTag, "");
}

TEST(CheckPage, WhatIsToldOfAPlaceIsInTheWordsOfTheLanguage) {
  using Kind = PlacePart::Kind;
  const FindingPlace place{.what = u"FOOT (0.3048 m) for MILLIMETRE",
                           .parts = {{Kind::kUnit, u"FOOT (0.3048 m)"},
                                     {Kind::kWord, u"said.insteadOf"},
                                     {Kind::kUnit, u"MILLIMETRE"},
                                     {Kind::kText, u"<b>"},
                                     {Kind::kNumber, u"1234.5"}}};
  EXPECT_EQ("plane angle1foot (0.3048\u00A0m) instead of millimetre &lt;b&gt; 1,234.5",
            ShownOf(place, "en", RuleId::kOtherUnit, "PLANEANGLEUNIT"));
  EXPECT_EQ("ebener Winkel1Fuß (0,3048\u00A0m) statt Millimeter &lt;b&gt; 1.234,5",
            ShownOf(place, "de", RuleId::kOtherUnit, "PLANEANGLEUNIT"));
  EXPECT_EQ("un commentaire1&lt;b&gt;",
            ShownOf({.what = u"<b>"}, "fr", RuleId::kHiddenRecords, "comment"));
}

TEST(CheckPage, OfARuleThatIsBrokenByVeryManyClassesItShowsTheFirst) {
  CheckReport report = ReportOfAll();
  report.models.resize(1);
  report.between.clear();
  report.models[0].findings.clear();
  for (int i = 0; i < 45; ++i) {
    report.models[0].findings.push_back(
        FindingWith(RuleId::kMissingValue, "IfcClass" + std::to_string(100 + i), {}));
  }
  const std::string page = CheckReportAsPage(report, "en");
  const std::string shown = page.substr(0, page.find("id=\"report\""));
  EXPECT_EQ(40u, CountOf(shown, "IfcClass"));
  EXPECT_NE(std::string::npos, shown.find("+ 5 <span data-t='moreInJson'>"));
}

TEST(CheckPage, ModelsStandTogetherWithOneListOfClasses) {
  const ModelPlaces first = PlacesWith(0, u"a");
  const ModelPlaces second = PlacesWith(1, u"b");
  const ModelPlaces all = AllPlaces({&first, nullptr, &second, &first});
  ASSERT_EQ(3u, all.classes.size());
  EXPECT_EQ("IfcWall", all.classes[1].name);
  EXPECT_EQ(4u, all.classes[1].products);
  EXPECT_EQ(2u, all.classes[1].listed);
  ASSERT_EQ(3u, all.products.size());
  EXPECT_EQ("IfcDuct", all.classes[all.products[1].classIndex].name);
  EXPECT_EQ("IfcWall", all.classes[all.products[2].classIndex].name);
  EXPECT_EQ(u"b", all.storeys.front().name);
}

}  // namespace corvel::host
