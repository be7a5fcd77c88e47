#include "host/check/shown_findings.h"

#include <gtest/gtest.h>

#include "host/check/check_report.h"
#include "host/check/checked_text.h"

namespace corvel::host {

namespace {

std::vector<Finding> FindingsOfRule(RuleId rule, std::size_t count) {
  std::vector<Finding> findings;
  for (std::size_t i = 0; i < count; ++i) {
    findings.push_back({.rule = rule, .subject = "S" + std::to_string(i), .count = i + 1});
  }
  return findings;
}

using Shown = std::vector<ShownOfRule>;

}  // namespace

TEST(ShownFindings, TenOfARuleAreAllShown) {
  EXPECT_EQ((Shown{{{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, 0, 0}}),
            ShownFindings(FindingsOfRule(RuleId::kFewMembers, 10), {}));
}

TEST(ShownFindings, OfMoreThoseWithMostPlacesAreShownInTheirOrder) {
  EXPECT_EQ((Shown{{{3, 4, 5, 6, 7, 8, 9, 10}, 3, 1 + 2 + 3}}),
            ShownFindings(FindingsOfRule(RuleId::kFewMembers, 11), {}));
}

TEST(ShownFindings, NewPlacesAreNotHiddenByOldOnes) {
  std::vector<std::uint64_t> newPlaces(11, 0);
  newPlaces[0] = 1;
  EXPECT_EQ((Shown{{{0, 4, 5, 6, 7, 8, 9, 10}, 3, 2 + 3 + 4}}),
            ShownFindings(FindingsOfRule(RuleId::kFewMembers, 11), newPlaces));
}

TEST(ShownFindings, RulesComeBySeverity) {
  const std::vector<Finding> findings = {
      {.rule = RuleId::kChangedReal, .subject = {}, .count = 1},
      {.rule = RuleId::kFewMembers, .subject = {}, .count = 1},
      {.rule = RuleId::kNoUnits, .subject = {}, .count = 1},
      {.rule = RuleId::kMalformedGuid, .subject = {}, .count = 1}};
  EXPECT_EQ((Shown{{{1}, 0, 0}, {{3}, 0, 0}, {{2}, 0, 0}, {{0}, 0, 0}}),
            ShownFindings(findings, {}));
}

TEST(ShownFindings, WhatIsNotShownIsCounted) {
  CheckedModel model = CheckRecords(kGoodRecords);
  model.findings = FindingsOfRule(RuleId::kMissingValue, 12);
  const WideString text = CheckedModelAsText(model, nullptr, false);
  EXPECT_NE(WideString::npos,
            text.find(u"  error   CRV.value.missing S11\n"
                      u"          A mandatory attribute has no value (12 places).\n"
                      u"  error   CRV.value.missing and 4 more with 10 places, which --json has\n"
                      u"\n  78 errors, 0 warnings, 0 notes\n"))
      << ToUtf8(text);
}

TEST(ShownFindings, WhatIsGoneIsCutLikewise) {
  CheckedModel model = CheckRecords(kGoodRecords);
  const Comparison comparison{.newPlaces = {}, .gone = FindingsOfRule(RuleId::kUnknownClass, 20)};
  const WideString text = CheckedModelAsText(model, &comparison, false);
  EXPECT_NE(WideString::npos, text.find(u"  error   CRV.class.unknown S19, gone\n"));
  EXPECT_NE(WideString::npos,
            text.find(u"CRV.class.unknown and 12 more with 78 places, which --json has\n"));
}

}  // namespace corvel::host
