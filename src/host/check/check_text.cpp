#include <algorithm>

#include "host/check/check_report.h"
#include "host/check/shown_findings.h"
#include "host/display_text.h"
#include "host/facts/facts_text.h"
#include "host/wrapped_text.h"

namespace corvel::host {

namespace {

WideString Number(std::uint64_t number) { return Widen(std::to_string(number)); }

// The word of a severity, in its colour and filled up to one width.
WideString SeverityWord(Severity severity, bool inColours) {
  constexpr std::size_t kColumns = 7;
  WideString word = Widen(NameOf(severity));
  const WideString blanks(kColumns - std::min(word.size(), kColumns), u' ');
  if (!inColours) return word + blanks;
  const char16_t* const colour = severity == Severity::kError     ? u"\x1b[31m"
                                 : severity == Severity::kWarning ? u"\x1b[33m"
                                                                  : u"\x1b[36m";
  return colour + word + u"\x1b[0m" + blanks;
}

WideString PlaceText(const FindingPlace& place) {
  WideString text;
  if (place.number != 0) text += u"#" + ToWide(place.number);
  if (place.line != 0) text += (text.empty() ? u"line " : u" in line ") + Number(place.line);
  if (!place.what.empty()) text += text.empty() ? place.what : u" (" + place.what + u")";
  return text;
}

// "#12 in line 30 ('a'), #14 in line 33, ..."; where new and old ones stand side by side "new: #12
// in line 30; old: #14 in line 33".
WideString PlacesText(const Finding& finding) {
  WideString text;
  const std::vector<FindingPlace>& places = finding.places;
  const bool areMixed = !places.empty() && places.front().isNew != places.back().isNew;
  bool wasNew = false;
  for (const FindingPlace& place : places) {
    const WideString one = PlaceText(place);
    if (one.empty()) continue;
    const bool begins = text.empty() || wasNew != place.isNew;
    if (!text.empty()) text += areMixed && begins ? u"; " : u", ";
    if (areMixed && begins) text += place.isNew ? u"new: " : u"old: ";
    text += one;
    wasNew = place.isNew;
  }
  if (!text.empty() && finding.count > finding.places.size()) text += u", ...";
  return text;
}

WideString StateText(std::uint64_t count, std::uint64_t isNew) {
  if (isNew == count) return u", new";
  if (isNew == 0) return u", old";
  return u", " + Number(isNew) + u" of them new";
}

// "  error   CRV.list.few  IfcWall.Name: A list has ... 3 places:". The escape sequences of the
// colour take no columns, so that they are put in behind the breaking of lines.
WideString HeadOf(const Finding& finding, const WideString& state, bool inColours) {
  const Rule& rule = RuleOf(finding.rule);
  WideString text = Widen(rule.name);
  if (!finding.subject.empty()) text += u"  " + Widen(finding.subject);
  const WideString plain = u"  " + SeverityWord(rule.severity, false) + u" ";
  WideString lines = Wrapped(plain, text + state);
  const WideString word = Widen(NameOf(rule.severity));
  if (inColours)
    lines.replace(2, word.size(), SeverityWord(rule.severity, true).substr(0, word.size() + 9));
  WideString sentence(rule.title);
  if (finding.count != 1) sentence += u" (" + Counted(finding.count, u"place", u"places") + u")";
  return lines + Wrapped(u"          ", sentence + u".");
}

WideString FindingText(const Finding& finding, const WideString& state, bool inColours) {
  WideString text = HeadOf(finding, state, inColours);
  const WideString places = PlacesText(finding);
  return places.empty() ? text : text + Wrapped(u"          ", places);
}

WideString TotalsText(const Totals& totals) {
  return Counted(totals.errors, u"error", u"errors") + u", " +
         Counted(totals.warnings, u"warning", u"warnings") + u", " +
         Counted(totals.notes, u"note", u"notes");
}

WideString NameOfFile(const CheckReport& report, std::size_t file) {
  return report.models[file].path;
}

// "  error   CRV.list.few  and 12 more with 34 places, which --json has".
WideString HiddenText(const Rule& rule, const ShownOfRule& ofRule) {
  return Wrapped(u"  " + SeverityWord(rule.severity, false) + u" ",
                 Widen(rule.name) + u"  and " + Number(ofRule.hidden) + u" more with " +
                     Counted(ofRule.hiddenPlaces, u"place", u"places") + u", which --json has");
}

// `stateOf(i)` stands behind the head of findings[i].
template <class StateOf>
WideString FindingsText(const std::vector<Finding>& findings,
                        const std::vector<std::uint64_t>& newPlaces, bool inColours,
                        StateOf stateOf) {
  WideString text;
  for (const ShownOfRule& ofRule : ShownFindings(findings, newPlaces)) {
    for (const std::size_t i : ofRule.shown) {
      text += FindingText(findings[i], stateOf(i), inColours);
    }
    if (ofRule.hidden == 0) continue;
    text += HiddenText(RuleOf(findings[ofRule.shown.front()].rule), ofRule);
  }
  return text;
}

}  // namespace

Totals CheckReport::Counted() const {
  Totals totals;
  for (const CheckedModel& model : models) {
    for (std::size_t i = 0; i < model.findings.size(); ++i) {
      const Finding& finding = model.findings[i];
      totals.Add(finding.HowSevere(), comparison ? comparison->newPlaces[i] : finding.count);
    }
  }
  for (const BetweenFinding& one : between) {
    totals.Add(one.finding.HowSevere(), one.finding.count);
  }
  return totals;
}

std::vector<WideString> CheckReport::Failures() const {
  std::vector<WideString> failures;
  for (const CheckedModel& model : models) {
    for (const WideString& problem : model.problems) {
      failures.push_back(Printable(model.path) + u": " + problem);
    }
  }
  return failures;
}

WideString CheckedModelAsText(const CheckedModel& model, const Comparison* comparison,
                              bool inColours) {
  WideString text = Wrapped({}, model.path);
  if (!model.facts) return text + Wrapped(u"  ", u"could not be read");
  text += ModelFactsAsText(*model.facts) + u"\n";
  if (comparison == nullptr) {
    text += FindingsText(model.findings, {}, inColours, [](std::size_t) { return WideString(); });
  } else {
    const std::vector<std::uint64_t>& newPlaces = comparison->newPlaces;
    text += FindingsText(model.findings, newPlaces, inColours, [&](std::size_t i) {
      return StateText(model.findings[i].count, newPlaces[i]);
    });
    text += FindingsText(comparison->gone, {}, inColours,
                         [](std::size_t) { return WideString(u", gone"); });
  }
  const bool isGone = comparison != nullptr && !comparison->gone.empty();
  if (!model.findings.empty() || isGone) text += u"\n";
  return text + Wrapped(u"  ", TotalsText(TotalsOf(model.findings))) + u"\n";
}

WideString CheckSummaryAsText(const CheckReport& report, bool inColours) {
  WideString text;
  for (auto at = report.between.begin(); at != report.between.end();) {
    const BetweenFinding& first = *at;
    text +=
        Wrapped({}, NameOfFile(report, first.file) + u" beside " + NameOfFile(report, first.other));
    std::vector<Finding> findings;
    for (; at != report.between.end() && at->file == first.file && at->other == first.other; ++at) {
      findings.push_back(at->finding);
    }
    text += FindingsText(findings, {}, inColours, [](std::size_t) { return WideString(); });
  }
  if (!text.empty()) text += u"\n";
  const bool isNew = report.comparison.has_value();
  if (report.models.size() > 1 || isNew) {
    text += Wrapped({}, (isNew ? u"New: " : u"In all: ") + TotalsText(report.Counted()));
  }
  return text;
}

WideString ExplanationOf(const Rule& rule) {
  WideString text = Widen(rule.name) + u" (" + Widen(NameOf(rule.severity)) + u")\n\n";
  text += Wrapped({}, WideString(rule.title) + u".");
  text += Wrapped({}, rule.explanation);
  return text + u"\n" + Wrapped(u"Example: ", rule.example);
}

WideString ListOfRules() {
  WideString text;
  constexpr std::size_t kNameColumns = 24;
  for (const Rule& rule : Rules()) {
    WideString first = u"  " + Widen(rule.name);
    first.append(kNameColumns + 2 - std::min(first.size(), kNameColumns + 1), u' ');
    text += Wrapped(first, rule.title);
  }
  return text;
}

}  // namespace corvel::host
