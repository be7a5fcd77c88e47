#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "host/check/check_report.h"
#include "host/check/rules.h"
#include "host/display_text.h"
#include "host/wrapped_text.h"

namespace corvel::host {

namespace {

std::vector<std::string> RowsOfTheDocument() {
  std::ifstream file(CORVEL_SAMPLES_DIR "/../docs/check.md");
  std::vector<std::string> rows;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("| `")) rows.push_back(line);
  }
  return rows;
}

std::string RowOf(const Rule& rule) {
  return "| `" + std::string(rule.name) + "` | " + std::string(NameOf(rule.severity)) + " | " +
         ToUtf8(rule.title) + " | " + ToUtf8(rule.example) + " |";
}

}  // namespace

TEST(CheckDoc, ListsTheRulesOfTheProgram) {
  std::vector<std::string> rows;
  for (const Rule& rule : Rules()) rows.push_back(RowOf(rule));
  EXPECT_EQ(rows, RowsOfTheDocument());
}

TEST(CheckRules, AreFoundByNameInAnyCase) {
  for (const Rule& rule : Rules()) {
    EXPECT_EQ(&rule, FindRule(rule.name));
    EXPECT_EQ(&rule, FindRule(Narrow(ToLowerAscii(Widen(rule.name)))));
  }
  EXPECT_EQ(nullptr, FindRule("CRV"));
  EXPECT_EQ(nullptr, FindRule(""));
}

TEST(CheckRules, HaveNamesOfTheirOwn) {
  for (const Rule& rule : Rules()) EXPECT_EQ(rule.id, FindRule(rule.name)->id) << rule.name;
}

TEST(CheckRules, AreExplainedInEightyColumns) {
  for (const Rule& rule : Rules()) {
    WideString text = ExplanationOf(rule) + ListOfRules();
    while (!text.empty()) {
      const std::size_t end = text.find(u'\n');
      EXPECT_LE(ColumnsOf(WideView(text).substr(0, end)), kLineColumns) << rule.name;
      text.erase(0, end + 1);
    }
  }
}

TEST(CheckRules, TellWhatWhyAndAnExample) {
  EXPECT_EQ(
      u"CRV.list.few (error)\n\nA list has fewer members than it needs.\nA relation with an empty "
      u"list relates nothing. A mandatory list that is absent\ncounts as empty.\n\nExample: "
      u"#1=IFCRELAGGREGATES('2o1y...',$,$,$,#2,());\n",
      ExplanationOf(RuleOf(RuleId::kFewMembers)));
}

}  // namespace corvel::host
