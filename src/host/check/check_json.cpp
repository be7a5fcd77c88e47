#include "host/check/check_report.h"
#include "host/facts/facts_json.h"
#include "host/json.h"

namespace corvel::host {

namespace {

Json PlacesOf(const Finding& finding, bool isCompared = false) {
  Json array = Json::array();
  for (const FindingPlace& place : finding.places) {
    Json object = {{"record", place.number == 0 ? Json(nullptr) : Json(place.number)},
                   {"line", place.line == 0 ? Json(nullptr) : Json(place.line)},
                   {"what", ToUtf8(place.what)}};
    if (isCompared) object["new"] = place.isNew;
    array.push_back(object);
  }
  return array;
}

Json FindingOf(const Finding& finding) {
  const Rule& rule = RuleOf(finding.rule);
  Json object;
  object["rule"] = rule.name;
  object["severity"] = NameOf(rule.severity);
  object["title"] = ToUtf8(rule.title);
  object["subject"] = finding.subject;
  object["count"] = finding.count;
  return object;
}

void AddTotals(Json& object, const Totals& totals) {
  object["errors"] = totals.errors;
  object["warnings"] = totals.warnings;
  object["notes"] = totals.notes;
}

Json ModelOf(const CheckedModel& model, const Comparison* comparison) {
  Json object;
  object["file"] = ToUtf8(model.path);
  object["problems"] = TextsOf(model.problems);
  object["facts"] = model.facts ? ModelFactsAsJson(*model.facts) : Json(nullptr);
  object["findings"] = Json::array();
  for (std::size_t i = 0; i < model.findings.size(); ++i) {
    Json finding = FindingOf(model.findings[i]);
    if (comparison != nullptr) finding["new"] = comparison->newPlaces[i];
    finding["places"] = PlacesOf(model.findings[i], comparison != nullptr);
    object["findings"].push_back(finding);
  }
  AddTotals(object, TotalsOf(model.findings));
  return object;
}

Json BetweenOf(const CheckReport& report) {
  Json array = Json::array();
  for (const BetweenFinding& one : report.between) {
    Json object;
    object["file"] = ToUtf8(report.models[one.file].path);
    object["other"] = ToUtf8(report.models[one.other].path);
    object.update(FindingOf(one.finding));
    object["places"] = PlacesOf(one.finding);
    array.push_back(object);
  }
  return array;
}

Json AgainstOf(const CheckReport& report) {
  if (!report.comparison) return nullptr;
  Json gone = Json::array();
  for (const Finding& finding : report.comparison->gone) {
    Json object = FindingOf(finding);
    object["places"] = PlacesOf(finding);
    gone.push_back(object);
  }
  return {{"files", TextsOf(report.against)}, {"gone", gone}};
}

}  // namespace

std::string CheckReportAsJson(const CheckReport& report) {
  Json all;
  all["version"] = 1;
  all["files"] = Json::array();
  for (const CheckedModel& model : report.models) {
    all["files"].push_back(ModelOf(model, report.comparison ? &*report.comparison : nullptr));
  }
  all["between"] = BetweenOf(report);
  all["against"] = AgainstOf(report);
  AddTotals(all, report.Counted());
  return Indented(all);
}

}  // namespace corvel::host
