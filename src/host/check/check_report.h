// All that one run of `corvel check` has found, as people and as programs read it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/text.h"
#include "host/check/against.h"
#include "host/check/between_models.h"
#include "host/check/findings.h"
#include "host/check/model_check.h"

namespace corvel::host {

struct CheckReport {
  WideString startedAt;  // for reports alone: see TimeOfReport
  std::vector<CheckedModel> models;
  std::vector<BetweenFinding> between;  // of several models
  std::vector<WideString> against;      // the files that the only model is compared with
  std::optional<Comparison> comparison;

  // Of all models and between them; with a comparison the new ones alone.
  Totals Counted() const;
  // Why files could not be read, each with its path.
  std::vector<WideString> Failures() const;
};

// One model: some lines of at most 80 columns. With `comparison`, which is about it, each finding
// is told as old or new, and what is gone behind them.
WideString CheckedModelAsText(const CheckedModel& model, const Comparison* comparison,
                              bool inColours);
// What stands behind the models: what is between them, and what it comes to.
WideString CheckSummaryAsText(const CheckReport& report, bool inColours);
// `corvel check --explain RULE`.
WideString ExplanationOf(const Rule& rule);
// All names of rules with their titles, for whoever asked for one that is not there.
WideString ListOfRules();

// One JSON object, in UTF-8, with a line feed behind it: see docs/check.schema.json.
std::string CheckReportAsJson(const CheckReport& report);

}  // namespace corvel::host
