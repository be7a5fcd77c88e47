// What is known of each model.

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "host/check/report/check_sections.h"
#include "merge/report/shared/page_lists.h"
#include "merge/report/shared/page_tree.h"
#include "merge/report/shared/page_units.h"

namespace corvel::host {

namespace {

constexpr int kLengthDigits = 3;  // of metres

void BeginFact(std::string_view key, HtmlText& html, std::string_view attributes = {}) {
  html.Raw("<div").Raw(attributes).Raw(">").Word("dt", key).Raw("<dd>");
}
void EndFact(HtmlText& html) { html.Raw("</dd></div>\n"); }

void AddFact(std::string_view key, WideView text, HtmlText& html) {
  BeginFact(key, html);
  if (text.empty()) {
    html.Word("span", "notStated", " class='soft'");
  } else {
    html.Name(text);
  }
  EndFact(html);
}

// The header's own names stand behind the application only where they say something else.
WideString ExporterOf(const Exporter& exporter) {
  std::vector<WideString> names;
  for (const WideString& name :
       {exporter.application, exporter.originatingSystem, exporter.preprocessorVersion}) {
    if (!name.empty() && std::find(names.begin(), names.end(), name) == names.end()) {
      names.push_back(name);
    }
  }
  WideString text;
  for (const WideString& name : names) text += text.empty() ? name : u", " + name;
  return text;
}

// "millimetre (length)"
void AddUnits(const std::vector<UnitFacts>& units, HtmlText& html) {
  BeginFact("units", html, " class='across'");
  if (units.empty()) html.Word("span", "notStated", " class='soft'");
  for (std::size_t i = 0; i < units.size(); ++i) {
    if (i != 0) html.Raw(", ");
    AddUnit(units[i].name, html);
    html.Raw(" <span class='soft'>(");
    AddKindOfUnit(units[i].type, html);
    html.Raw(")</span>");
  }
  EndFact(html);
}

void AddPlaceOnEarth(const Georeference& place, HtmlText& html) {
  BeginFact("mapConversion", html);
  if (place.conversion) {
    const auto& values = place.conversion->values;
    constexpr std::array<std::string_view, 3> kNames = {"eastings", "northings", "height"};
    for (std::size_t i = 0; i < kNames.size(); ++i) {
      if (i != 0) html.Raw(" \u00b7 ");
      html.Word(kNames[i]).Raw(" ").Plain(FewestDigits(values[i]));
    }
    if (values[3] != 1.0 || values[4] != 0.0) {
      html.Raw(" \u00b7 ").Word("xAxis").Raw(" ").Plain(FewestDigits(values[3]));
      html.Raw(" ").Plain(FewestDigits(values[4]));
    }
    if (values[5] != 1.0)
      html.Raw(" \u00b7 ").Word("scale").Raw(" ").Plain(FewestDigits(values[5]));
  } else {
    html.Word("span", "notStated", " class='soft'");
  }
  EndFact(html);
  AddFact("system", place.system, html);
  BeginFact("trueNorth", html);
  if (place.trueNorthDegrees) {
    constexpr double kParts = 1e6;  // of a degree
    html.Plain(FewestDigits(std::round(*place.trueNorthDegrees * kParts) / kParts + 0.0))
        .Raw("\u00b0 ")
        .Word("clockwise");
  } else {
    html.Word("span", "notStated", " class='soft'");
  }
  EndFact(html);
}

void AddObjects(std::string_view key, const std::vector<SpatialFacts>& objects, HtmlText& html) {
  BeginFact(key, html);
  html.Count(objects.size());
  for (std::size_t i = 0; i < objects.size(); ++i) {
    if (i == 0) {
      html.Colon();
    } else {
      html.Raw(", ");
    }
    const WideString& name = objects[i].name;
    html.Name(name.empty() ? u"#" + ToWide(objects[i].number) : name);
  }
  EndFact(html);
}

void AddExtent(const Extent& extent, HtmlText& html) {
  BeginFact("extent", html);
  if (extent.placed == 0) {
    html.Word("span", "nothingPlaced", " class='soft'");
  } else {
    constexpr std::array<std::string_view, 3> kAxes = {"x", "y", "z"};
    for (std::size_t axis = 0; axis < kAxes.size(); ++axis) {
      html.Raw(axis == 0 ? "" : "<br>").Raw(kAxes[axis]).Raw(" ");
      html.Decimal(extent.least[axis], kLengthDigits).Raw(" \u2026 ");
      html.Decimal(extent.most[axis], kLengthDigits).Raw("\u00a0m");
    }
  }
  if (extent.nowhere != 0) {
    html.Raw("<br>").Word("withoutPlace").Colon().Count(extent.nowhere);
  }
  EndFact(html);
}

void AddMetres(const std::optional<double>& metres, HtmlText& html) {
  html.Raw("<td>");
  if (metres) html.Decimal(*metres, kLengthDigits);
  html.Raw("</td>");
}

void AddStoreys(const std::vector<SpatialFacts>& storeys, HtmlText& html) {
  html.Raw("<details open><summary>").Word("storeys").Raw(" (").Count(storeys.size());
  html.Raw(")</summary>\n");
  if (!storeys.empty()) {
    html.Raw("<div class='wide'><table>\n<tr>").Word("th", "storey");
    html.Word("th", "standsAt").Word("th", "elevationTold").Raw("</tr>\n");
    // As buildings stand: the highest at the top.
    for (std::size_t behind = storeys.size(); behind != 0; --behind) {
      const SpatialFacts& storey = storeys[behind - 1];
      const WideString number = u"#" + ToWide(storey.number);
      html.Raw("<tr><td>").Name(storey.name.empty() ? number : storey.name).Raw("</td>");
      AddMetres(storey.heightMetres, html);
      AddMetres(storey.elevationMetres, html);
      html.Raw("</tr>\n");
    }
    html.Raw("</table></div>\n");
  }
  html.Raw("</details>\n");
}

void AddProducts(const ModelFacts& facts, HtmlText& html) {
  if (facts.products.empty()) return;
  constexpr double kPercent = 100.0;
  html.Raw("<details open><summary>").Word("products").Raw(" (").Count(facts.ProductCount());
  html.Raw(")</summary>\n<table class='counts'>\n");
  const auto most = static_cast<double>(facts.products.front().second);
  for (const auto& [name, count] : facts.products) {
    html.Raw("<tr><td>").Text(name).Raw("</td><td>").Count(count);
    html.Raw("</td><td class='name'><div class='bar'><i style='width:");
    html.Number(kPercent * static_cast<double>(count) / most, 2).Raw("%'></i></div></td></tr>\n");
  }
  html.Raw("</table></details>\n");
}

void AddFacts(const CheckedModel& model, std::size_t index, HtmlText& html) {
  const ModelFacts& facts = *model.facts;
  html.Raw("<article class='input ").Raw(ColourOf(index)).Raw("'>\n<header><h3>");
  html.Count(index + 1).Raw(". ").Name(ShortName(model.path));
  html.Raw("</h3></header>\n<dl class='facts'>\n");
  const WideString release = Widen(facts.release);
  AddFact(
      "release",
      release == facts.schemaIdentifier ? release : release + u" (" + facts.schemaIdentifier + u")",
      html);
  AddFact("exporter", ExporterOf(facts.exporter), html);
  AddFact("timeStamp", facts.exporter.timeStamp, html);
  BeginFact("records", html);
  html.Count(facts.objects);
  EndFact(html);
  AddPlaceOnEarth(facts.georeference, html);
  AddObjects("sites", facts.spatial.sites, html);
  AddObjects("buildings", facts.spatial.buildings, html);
  AddExtent(facts.extent, html);
  AddUnits(facts.units, html);
  html.Raw("</dl>\n<div class='columns'><div>\n");
  AddStoreys(facts.spatial.storeys, html);
  html.Raw("</div><div>\n");
  AddProducts(facts, html);
  html.Raw("</div></div>\n</article>\n");
}

void AddSum(std::uint64_t count, std::string_view key, std::string_view colour, HtmlText& html) {
  html.Raw("<li><b");
  if (count != 0) html.Raw(" class='").Raw(colour).Raw("'");
  html.Raw(">").Count(count);
  EndSum(key, html);
}

// Each names its file by itself.
std::vector<ToldText> ToldFailures(const CheckReport& report) {
  std::vector<ToldText> told;
  for (const WideString& failure : report.Failures()) told.push_back({failure});
  return told;
}

void AddStatus(const CheckReport& report, HtmlText& html) {
  html.Raw("<p>");
  const bool isNew = report.comparison.has_value();
  if (!report.Failures().empty()) html.Word("span", "unread", " class='chip bad'").Raw(" ");
  if (report.Counted().errors != 0) {
    html.Word("span", isNew ? "newErrorsFound" : "errorsFound", " class='chip bad'");
  } else {
    html.Word("span", isNew ? "noNewErrors" : "noErrors", " class='chip good'");
  }
  html.Raw("</p>\n");
  if (report.against.empty()) return;
  html.Raw("<p>").Word("against").Colon();
  for (std::size_t i = 0; i < report.against.size(); ++i) {
    if (i != 0) html.Raw(", ");
    html.Name(report.against[i]);
  }
  html.Raw("</p>\n");
}

}  // namespace

void AddCheckHead(const CheckReport& report, HtmlText& html) {
  html.Raw("<h1>corvel check: ");
  for (std::size_t i = 0; i < report.models.size(); ++i) {
    if (i != 0) html.Raw(", ");
    html.Name(ShortName(report.models[i].path));
  }
  html.Raw("</h1>\n<p class='soft'>").Word("checkTitle").Raw(" \u00b7 ").Text(report.startedAt);
  html.Raw("</p>\n");
  AddFailures(ToldFailures(report), html);
  AddStatus(report, html);
  const Totals totals = report.Counted();
  const bool isNew = report.comparison.has_value();
  std::uint64_t products = 0;
  for (const CheckedModel& model : report.models) {
    if (model.facts) products += model.facts->ProductCount();
  }
  html.Raw("<ul class='sums'>\n");
  AddSum(totals.errors, isNew ? "newErrors" : "errors", "bad", html);
  AddSum(totals.warnings, isNew ? "newWarnings" : "warnings", "warn", html);
  AddSum(totals.notes, isNew ? "newNotes" : "notes", "", html);
  AddSum(report.models.size(), "models", "", html);
  AddSum(products, "products", "", html);
  html.Raw("</ul>\n");
}

void AddFactsOfModels(const CheckReport& report, HtmlText& html) {
  html.Raw("<section>\n").Word("h2", "facts").Raw("\n");
  for (std::size_t i = 0; i < report.models.size(); ++i) {
    if (report.models[i].facts) AddFacts(report.models[i], i, html);
  }
  html.Raw("</section>\n");
}

void AddTreesOfModels(const CheckReport& report, HtmlText& html) {
  html.Raw("<section>\n").Word("h2", "trees").Raw("\n");
  html.Word("p", "treesHint", " class='soft'").Raw("\n");
  for (const CheckedModel& model : report.models) {
    if (model.places && !model.places->tree.empty()) AddNodes(model.places->tree, html);
  }
  html.Raw("</section>\n");
}

}  // namespace corvel::host
