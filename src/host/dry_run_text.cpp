#include "host/dry_run_text.h"

#include <array>
#include <charconv>
#include <string>

#include "host/display_text.h"
#include "merge/report/report_json.h"
#include "merge/unit_texts.h"

namespace corvel::host {

namespace {

constexpr WideView kReasons[kDropReasons] = {u"left out with the model",
                                             u"inactive",
                                             u"hidden",
                                             u"not selected",
                                             u"left out as openings",
                                             u"that hang on what is dropped",
                                             u"that nothing kept needs",
                                             u"joined with others"};

WideString Count(std::size_t count) { return Widen(std::to_string(count)); }

WideString Number(double value) {
  std::array<char, 40> digits{};
  const auto written = std::to_chars(digits.data(), digits.data() + digits.size(), value + 0.0);
  return Widen(std::string_view(digits.data(), written.ptr));
}

// ": 12 in, 9 kept, 2 hidden, 1 openings"
WideString TextOf(const ProductTally& tally) {
  WideString text = u": " + Count(tally.in) + u" in, " + Count(tally.kept) + u" kept";
  for (std::size_t i = 0; i < kDropReasons; ++i) {
    if (tally.dropped[i] == 0) continue;
    text += u", " + Count(tally.dropped[i]) + u" ";
    text += kReasons[i];
  }
  return text + u"\n";
}

WideString TextOf(const RecordTally& tally) {
  WideString text = u": " + Count(tally.in) + u" in, " + Count(tally.kept) + u" kept";
  if (tally.leftOut != 0) text += u", " + Count(tally.leftOut) + u" left out";
  if (tally.joined != 0) text += u", " + Count(tally.joined) + u" joined with others";
  if (tally.notNeeded != 0) text += u", " + Count(tally.notNeeded) + u" not needed any more";
  return text + u"\n";
}

WideString WhyLeftOut(const InputReport& input) {
  if (!input.isRead) return u"could not be read";
  WideString why;
  if (input.schemaDiffers) why = u"its schema is not that of the first";
  if (!input.unitsDiffer) return why;
  if (!why.empty()) why += u"; ";
  why += u"its units are not those of the first";
  for (const UnitComparison& row : input.unitDifferences) {
    why += u", " + WithoutDotsAndCommas(row.unitType) + u" " +
           WithoutDotsAndCommas(row.otherLabel) + u" and not " +
           WithoutDotsAndCommas(row.unitLabel);
  }
  return why;
}

WideString TextOf(const InputReport& input) {
  WideString text = Printable(input.path) + u": ";
  text += input.takesPart ? WideString(u"takes part") : u"left out: " + WhyLeftOut(input);
  text += u"\n  schema " + Printable(input.schema) + u", lengths in ";
  text += input.lengthUnit.empty() ? WideString(u"no unit") : Printable(input.lengthUnit);
  if (input.offsetMm != std::array<double, 3>{}) {
    text += u", moved by " + Number(input.offsetMm[0]) + u", " + Number(input.offsetMm[1]) + u", " +
            Number(input.offsetMm[2]) + u" mm";
  }
  text += u"\n  records" + TextOf(input.records) + u"  products" + TextOf(input.products);
  for (const ClassTally& tally : input.classes) {
    text += u"    " + Printable(FromUtf8(tally.name)) + TextOf(tally.products);
  }
  return text;
}

WideString TextOf(const StepReport& step) {
  WideString text = u"  " + Widen(step.step) + u":";
  for (std::size_t i = 0; i < step.counts.size(); ++i) {
    const auto& [name, count] = step.counts[i];
    text += (i == 0 ? u" " : u", ") + Widen(name) + u" " + Count(count);
  }
  text += u"\n";
  for (const auto& [name, lines] : step.lists) {
    for (const WideString& line : lines) {
      text += u"    " + Widen(name) + u": " + Printable(line) + u"\n";
    }
  }
  return text;
}

}  // namespace

WideString DryRunText(const RunReport& report) {
  WideString text;
  for (const InputReport& input : report.inputs) text += TextOf(input);
  if (!report.steps.empty()) text += u"Steps of federation:\n";
  for (const StepReport& step : report.steps) text += TextOf(step);
  const OutputReport& output = report.output;
  if (output.isKnown) {
    text += u"The result would have " + Count(output.records) + u" records, " + Count(output.made) +
            u" of them new, and " + Count(output.products) + u" products.\n";
  } else {
    text += u"There would be no result.\n";
  }
  return text;
}

}  // namespace corvel::host
