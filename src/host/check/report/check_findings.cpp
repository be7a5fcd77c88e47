// What was found, rule by rule, the worst first.

#include <algorithm>
#include <span>
#include <string>
#include <vector>

#include "host/check/report/check_sections.h"
#include "merge/report/shared/page_units.h"

namespace corvel::host {

namespace {

// A rule may be broken by each class of a schema: what is more is in the JSON.
constexpr std::size_t kMostSubjects = 40;

enum class State { kNone, kSome, kGone };

// One finding, and how many of its places are new.
struct Told {
  const Finding* finding = nullptr;
  State state = State::kNone;
  std::uint64_t isNew = 0;
};

std::string_view ColourOf(Severity severity) {
  switch (severity) {
    case Severity::kError: return "bad";
    case Severity::kWarning: return "warn";
    case Severity::kNote: break;
  }
  return "soft";
}

void AddSeverity(Severity severity, HtmlText& html) {
  const std::string attributes = " class='chip " + std::string(ColourOf(severity)) + "'";
  html.Word("span", NameOf(severity), attributes);
}

void AddState(const Told& told, HtmlText& html) {
  switch (told.state) {
    case State::kNone: return;
    case State::kGone: html.Raw(" ").Word("span", "gone", " class='chip good'"); return;
    case State::kSome: break;
  }
  if (told.isNew == 0) {
    html.Raw(" ").Word("span", "old", " class='chip soft'");
  } else if (told.isNew == told.finding->count) {
    html.Raw(" ").Word("span", "new", " class='chip bad'");
  } else {
    html.Raw(" <span class='chip bad'>").Word("new").Colon().Count(told.isNew).Raw("</span>");
  }
}

void AddPart(const PlacePart& part, HtmlText& html) {
  switch (part.kind) {
    case PlacePart::Kind::kWord: html.Word(Narrow(part.text)); return;
    case PlacePart::Kind::kText: html.Name(part.text); return;
    case PlacePart::Kind::kNumber: html.Plain(Narrow(part.text)); return;
    case PlacePart::Kind::kUnit: AddUnit(part.text, html); return;
  }
}

void AddWhat(const FindingPlace& place, HtmlText& html) {
  if (place.what.empty()) return;
  html.Raw("<span class='what'>");
  if (place.parts.empty()) html.Name(place.what);
  for (const PlacePart& part : place.parts) {
    if (&part != &place.parts.front()) html.Raw(" ");
    AddPart(part, html);
  }
  html.Raw("</span>");
}

void AddPlace(const FindingPlace& place, HtmlText& html) {
  html.Raw("<li>");
  if (place.number != 0) html.Raw("<code>#").Text(std::to_string(place.number)).Raw("</code> ");
  if (place.line != 0) html.Word("line").Raw(" ").Count(place.line).Raw(" ");
  AddWhat(place, html);
  html.Raw("</li>");
}

// Most are classes and their attributes.
void AddNameOfSubject(const Finding& finding, HtmlText& html) {
  if (finding.subject.empty()) {
    html.Raw("\u2014");
  } else if (finding.rule == RuleId::kOtherUnit) {
    AddKindOfUnit(finding.subject, html);
  } else if (finding.rule == RuleId::kHiddenRecords) {
    html.Word(finding.subject == "text" ? "said.text" : "said.comment");
  } else {
    html.Text(finding.subject);
  }
}

void AddSubject(const Told& told, HtmlText& html) {
  const Finding& finding = *told.finding;
  html.Raw("<tr><td>");
  AddNameOfSubject(finding, html);
  AddState(told, html);
  html.Raw("</td><td>").Count(finding.count).Raw("</td><td class='name'><ul class='places'>");
  for (const FindingPlace& place : finding.places) {
    if (place.number != 0 || place.line != 0 || !place.what.empty()) AddPlace(place, html);
  }
  if (!finding.places.empty() && finding.count > finding.places.size()) html.Raw("<li>\u2026</li>");
  html.Raw("</ul></td></tr>\n");
}

// All of one rule.
void AddRule(std::span<const Told> all, HtmlText& html) {
  const Rule& rule = RuleOf(all.front().finding->rule);
  const std::string name(rule.name);
  html.Raw("<div class='rule-of'><h4>");
  AddSeverity(rule.severity, html);
  html.Raw(" ").Word("rule." + name).Raw(" <code>").Text(name).Raw("</code></h4>\n");
  html.Word("p", "why." + name, " class='soft'").Raw("\n<div class='wide'><table>\n<tr>");
  html.Word("th", "subject").Word("th", "places").Word("th", "firstPlaces", " class='name'");
  html.Raw("</tr>\n");
  for (const Told& told : all.first(std::min(all.size(), kMostSubjects))) AddSubject(told, html);
  html.Raw("</table></div>\n");
  if (all.size() > kMostSubjects) {
    html.Raw("<p class='soft'>+ ").Count(all.size() - kMostSubjects).Raw(" ");
    html.Word("moreInJson").Raw("</p>\n");
  }
  html.Raw("<details><summary>").Word("example").Raw("</summary><p><code>").Text(rule.example);
  html.Raw("</code></p></details></div>\n");
}

// `told`: by rule.
void AddRules(std::vector<Told> told, HtmlText& html) {
  std::stable_sort(told.begin(), told.end(), [](const Told& a, const Told& b) {
    return a.finding->HowSevere() > b.finding->HowSevere();
  });
  for (std::size_t first = 0; first < told.size();) {
    std::size_t end = first + 1;
    while (end < told.size() && told[end].finding->rule == told[first].finding->rule) ++end;
    AddRule(std::span(told).subspan(first, end - first), html);
    first = end;
  }
}

void AddCountChip(std::uint64_t count, std::string_view key, std::string_view colour,
                  HtmlText& html) {
  if (count == 0) return;
  html.Raw(" <span class='chip ").Raw(colour).Raw("'>").Word(key).Colon();
  html.Count(count).Raw("</span>");
}

void AddTotals(const Totals& totals, HtmlText& html) {
  if (totals.errors + totals.warnings + totals.notes == 0) {
    html.Raw(" ").Word("span", "nothingFound", " class='chip good'");
  }
  AddCountChip(totals.errors, "errors", "bad", html);
  AddCountChip(totals.warnings, "warnings", "warn", html);
  AddCountChip(totals.notes, "notes", "soft", html);
}

// The worst of what is new comes first, then what is old, and what is gone at the end.
std::vector<Told> ToldOf(const CheckedModel& model, const Comparison* comparison, bool isNew) {
  std::vector<Told> told;
  for (std::size_t i = 0; i < model.findings.size(); ++i) {
    const Finding& finding = model.findings[i];
    if (comparison == nullptr) {
      if (isNew) told.push_back({&finding});
    } else if ((comparison->newPlaces[i] != 0) == isNew) {
      told.push_back({&finding, State::kSome, comparison->newPlaces[i]});
    }
  }
  return told;
}

void AddModel(const CheckedModel& model, std::size_t index, const Comparison* comparison,
              HtmlText& html) {
  html.Raw("<article class='input ").Raw(corvel::ColourOf(index)).Raw("'>\n<header><h3>");
  html.Count(index + 1).Raw(". ").Name(ShortName(model.path)).Raw("</h3>");
  if (model.facts) {
    AddTotals(TotalsOf(model.findings), html);
  } else {
    html.Raw(" ").Word("span", "unread", " class='chip bad'");
  }
  html.Raw("</header>\n<div class='path'>").Name(model.path).Raw("</div>\n");
  AddRules(ToldOf(model, comparison, true), html);
  if (comparison != nullptr) {
    AddRules(ToldOf(model, comparison, false), html);
    std::vector<Told> gone;
    for (const Finding& finding : comparison->gone) gone.push_back({&finding, State::kGone});
    AddRules(std::move(gone), html);
  }
  html.Raw("</article>\n");
}

// One article for each pair of models.
void AddBetween(const CheckReport& report, HtmlText& html) {
  const std::vector<BetweenFinding>& between = report.between;
  for (std::size_t first = 0; first < between.size();) {
    std::vector<Told> told;
    std::size_t end = first;
    while (end < between.size() && between[end].file == between[first].file &&
           between[end].other == between[first].other) {
      told.push_back({&between[end++].finding});
    }
    html.Raw("<article class='input ").Raw(corvel::ColourOf(between[first].file));
    html.Raw("'>\n<header><h3>").Name(ShortName(report.models[between[first].file].path));
    html.Raw(" ").Word("beside").Raw(" ");
    html.Name(ShortName(report.models[between[first].other].path)).Raw("</h3></header>\n");
    AddRules(std::move(told), html);
    html.Raw("</article>\n");
    first = end;
  }
}

}  // namespace

void AddFindings(const CheckReport& report, HtmlText& html) {
  html.Raw("<section>\n").Word("h2", "findings").Raw("\n");
  const Comparison* const comparison = report.comparison ? &*report.comparison : nullptr;
  for (std::size_t i = 0; i < report.models.size(); ++i) {
    AddModel(report.models[i], i, comparison, html);
  }
  AddBetween(report, html);
  html.Raw("</section>\n");
}

}  // namespace corvel::host
