#include "host/check/report/check_page.h"

#include <array>

#include "host/check/report/check_parts.h"
#include "host/check/report/check_sections.h"
#include "host/check/report/places_of_model.h"
#include "merge/report/shared/html_text.h"
#include "merge/report/shared/json_text.h"
#include "merge/report/shared/page_drawings.h"
#include "merge/report/shared/page_frame.h"
#include "merge/report/shared/places_json.h"
#include "merge/report/shared/report_file.h"
#include "step/writer/unfinished_output.h"

namespace corvel::host {

namespace {

// The places of the models together; nothing where none could be read.
std::optional<ModelPlaces> PlacesOf(const CheckReport& report) {
  std::vector<const ModelPlaces*> models;
  for (const CheckedModel& model : report.models) {
    if (model.places) models.push_back(&*model.places);
  }
  return models.empty() ? std::nullopt : std::optional(AllPlaces(models));
}

void AddDrawingsOfModels(const CheckReport& report, const ModelPlaces* places, HtmlText& html) {
  std::vector<DrawnInput> inputs;
  for (const CheckedModel& model : report.models) {
    inputs.push_back({model.path, model.places.has_value()});
  }
  AddDrawings(inputs, places, html);
}

std::string TitleOf(const CheckReport& report, const PageTexts& texts) {
  HtmlText html(texts);
  for (std::size_t i = 0; i < report.models.size(); ++i) {
    if (i != 0) html.Raw(", ");
    html.Text(ShortName(report.models[i].path));
  }
  return html.Raw(" \u00b7 corvel check").Take();
}

// What rules say of themselves in English, for the languages that lack it.
std::string TextsOfRules() {
  std::string lines;
  for (const Rule& rule : Rules()) {
    const std::string name(rule.name);
    lines += "rule." + name + " = " + ToUtf8(rule.title) + "\n";
    lines += "why." + name + " = " + ToUtf8(rule.explanation) + "\n";
  }
  return lines;
}

}  // namespace

std::string CheckReportForPrograms(const CheckReport& report) {
  constexpr int kFormat = 1;
  JsonText json;
  json.BeginObject();
  json.Member("report", "check");
  json.Member("format", kFormat);
  json.Member("program", "corvel " CORVEL_VERSION);
  json.Member("startedAt", report.startedAt);
  json.NewLine();
  json.Key("failures").Texts(report.Failures());
  json.NewLine();
  json.Key("check").Made(CheckReportAsJson(report));
  json.NewLine();
  json.Key("trees");
  json.EachOnALine(report.models, [&json](const CheckedModel& model) {
    if (!model.places) return json.Null();
    AddTree(model.places->tree, json);
  });
  json.NewLine();
  const std::optional<ModelPlaces> places = PlacesOf(report);
  json.Key("places");
  AddPlaces(places ? &*places : nullptr, json);
  json.NewLine();
  json.EndObject();
  return json.Take() + "\n";
}

std::string CheckReportAsPage(const CheckReport& report, std::string_view language) {
  const std::string rules = TextsOfRules();
  std::vector<PageLanguage> more(std::begin(kCheckLanguages), std::end(kCheckLanguages));
  for (const PageLanguage& one : kCheckLanguages) more.push_back({one.code, rules});
  const PageTexts texts(language, more);
  HtmlText html(texts);
  const std::optional<ModelPlaces> places = PlacesOf(report);
  const ModelPlaces* const drawn = places ? &*places : nullptr;
  BeginPage({TitleOf(report, texts), drawn, kCheckStyle, language.empty()}, html);
  AddCheckHead(report, html);
  AddFindings(report, html);
  AddFactsOfModels(report, html);
  AddDrawingsOfModels(report, drawn, html);
  AddTreesOfModels(report, html);
  EndPage(CheckReportForPrograms(report), html);
  return html.Take();
}

bool WriteCheckReport(const CheckReport& report, const WideString& path) {
  const bool isPage = ReportFormOf(path) == ReportForm::kPage;
  return WriteInOneStep(path,
                        isPage ? CheckReportAsPage(report, {}) : CheckReportForPrograms(report));
}

}  // namespace corvel::host
