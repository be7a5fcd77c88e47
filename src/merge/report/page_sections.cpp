#include "merge/report/page_sections.h"

#include <algorithm>
#include <cmath>

#include "merge/report/report_json.h"
#include "merge/report/shared/page_drawings.h"
#include "merge/report/shared/page_lists.h"
#include "merge/report/shared/page_tree.h"
#include "merge/report/shared/page_units.h"
#include "merge/unit_texts.h"

namespace corvel {

namespace {

constexpr double kMegabyte = 1e6;
constexpr double kPercent = 100.0;

void AddStatus(const RunReport& report, HtmlText& html) {
  const OutputReport& output = report.output;
  html.Raw("<p>");
  if (report.isDryRun) {
    html.Word("span", "dryRun", " class='chip warn'");
  } else if (output.written) {
    html.Word("span", "written", " class='chip good'");
  } else {
    html.Word("span", "notWritten", " class='chip bad'");
  }
  if (output.cancelled) html.Raw(" ").Word("span", "cancelled", " class='chip warn'");
  html.Raw(" <span class='path'>").Name(output.path).Raw("</span></p>\n");
  if (!output.keptAt.empty()) {
    html.Raw("<p>").Word("keptAt").Raw(" ").Name(output.keptAt).Raw("</p>\n");
  }
}

void AddSums(const RunReport& report, HtmlText& html) {
  std::size_t in = 0;
  for (const InputReport& input : report.inputs) in += input.products.in;
  double seconds = 0.0;
  for (const StageReport& stage : report.stages) seconds += stage.seconds;
  const OutputReport& output = report.output;
  html.Raw("<ul class='sums'>\n");
  BeginSum(html);
  html.Count(report.inputs.size());
  EndSum("inputs", html);
  BeginSum(html);
  html.Count(output.products).Raw(" <span class='unit'>/ ").Count(in);
  html.Raw("</span>");
  EndSum("productsKept", html);
  if (output.isKnown) {
    BeginSum(html);
    html.Count(output.records);
    EndSum("recordsWritten", html);
    BeginSum(html);
    html.Count(output.made);
    EndSum("made", html);
  }
  BeginSum(html);
  html.Decimal(seconds, 2).Raw(" <span class='unit'>s</span>");
  EndSum("time", html);
  html.Raw("</ul>\n");
}

// --- Inputs --------------------------------------------------------------------------------------

void AddReasons(const ProductTally& tally, HtmlText& html) {
  bool isFirst = true;
  for (std::size_t i = 0; i < kDropReasons; ++i) {
    if (tally.dropped[i] == 0) continue;
    if (!isFirst) html.Raw(", ");
    isFirst = false;
    const auto reason = static_cast<DropReason>(i);
    html.Count(tally.dropped[i]).Raw(" ").Word("reason." + std::string(WordOf(reason)));
  }
}

void AddWhy(const InputReport& input, HtmlText& html) {
  html.Raw("<p class='warn'>");
  if (!input.isRead) html.Word("why.reading").Raw(" ");
  if (input.schemaDiffers) html.Word("why.schema").Raw(" ");
  if (input.unitsDiffer) html.Word("why.units").Raw(" ");
  html.Raw("</p>\n");
}

void AddUnitDifferences(const InputReport& input, HtmlText& html) {
  if (input.unitDifferences.empty()) return;
  html.Raw("<ul class='texts'>\n");
  for (const UnitComparison& row : input.unitDifferences) {
    html.Raw("<li>");
    AddKindOfUnit(ToUtf8(WithoutDotsAndCommas(row.unitType)), html);
    html.Colon();
    AddUnit(WithoutDotsAndCommas(row.otherLabel), html);
    html.Raw(" ").Word("unitHere").Raw(", ");
    AddUnit(WithoutDotsAndCommas(row.unitLabel), html);
    html.Raw(" ").Word("unitFirst").Raw("</li>\n");
  }
  html.Raw("</ul>\n");
}

void AddUnitName(const WideString& name, HtmlText& html) {
  if (name.empty()) {
    html.Word("noUnit");
  } else {
    AddUnit(name, html);
  }
}

// What the steps have converted of an input.
std::vector<WideString> ConvertedOf(std::size_t input, const RunReport& report) {
  std::vector<WideString> all;
  for (const StepReport& step : report.steps) {
    if (step.step != "units" || step.input != input || !step.foundWork) continue;
    for (const auto& [name, lines] : step.lists) all.insert(all.end(), lines.begin(), lines.end());
  }
  return all;
}

// Beside that of the result, and what became of the numbers.
void AddLengthUnit(const InputReport& input, const RunReport& report, HtmlText& html) {
  constexpr double kSame = 1e-9;
  AddUnitName(input.lengthUnit, html);
  const OutputReport& output = report.output;
  if (!output.isKnown || !input.takesPart) return;
  const bool isSame =
      std::abs(input.metresPerUnit - output.metresPerUnit) <= kSame * output.metresPerUnit;
  if (isSame) {
    html.Raw(" ").Word("span", "unitOfResult", " class='soft'");
    return;
  }
  html.Raw(" \u2192 ");
  AddUnitName(output.lengthUnit, html);
  const auto index = static_cast<std::size_t>(&input - report.inputs.data());
  if (ConvertedOf(index, report).empty()) {
    html.Raw("<br>").Word("span", "unitKept", " class='warn'");
  } else {
    html.Raw("<br>").Word("span", "unitConverted", " class='soft'");
  }
}

void AddConverted(std::size_t input, const RunReport& report, HtmlText& html) {
  const std::vector<WideString> lines = ConvertedOf(input, report);
  if (lines.empty()) return;
  html.Raw("<details><summary>").Word("conversions").Raw("</summary>\n");
  AddTexts(lines, html);
  html.Raw("</details>\n");
}

// Most offsets are whole numbers, and large ones are to be seen as such.
void AddMillimetres(double value, HtmlText& html) {
  html.Decimal(value, value == std::trunc(value) ? 0 : 1);
}

void AddSize(double bytes, HtmlText& html) {
  constexpr double kKilobyte = 1e3;
  if (bytes < kMegabyte) {
    html.Decimal(bytes / kKilobyte, 1).Raw("\u00a0").Word("size.kB");
  } else {
    html.Decimal(bytes / kMegabyte, 1).Raw("\u00a0").Word("size.MB");
  }
}

void AddFacts(const InputReport& input, const RunReport& report, HtmlText& html) {
  html.Raw("<dl class='facts'>\n<div>").Word("dt", "schema").Raw("<dd>");
  html.Text(input.schema).Raw("</dd></div>\n<div>").Word("dt", "lengthUnit").Raw("<dd>");
  AddLengthUnit(input, report, html);
  html.Raw("</dd></div>\n<div>").Word("dt", "offset").Raw("<dd>");
  if (input.offsetMm == std::array<double, 3>{}) {
    html.Word("unmoved");
  } else {
    for (std::size_t i = 0; i < input.offsetMm.size(); ++i) {
      if (i != 0) html.Raw(" \u00b7 ");
      AddMillimetres(input.offsetMm[i], html);
    }
  }
  html.Raw("</dd></div>\n<div>").Word("dt", "size").Raw("<dd>");
  AddSize(static_cast<double>(input.bytes), html);
  html.Raw("</dd></div>\n</dl>\n");
}

void AddBar(const ProductTally& tally, HtmlText& html) {
  if (tally.in == 0) return;
  const double share = kPercent * static_cast<double>(tally.kept) / static_cast<double>(tally.in);
  html.Raw("<div class='bar'><i style='width:").Number(share, 2).Raw("%'></i>");
  html.Raw("<i class='dropped' style='width:").Number(kPercent - share, 2).Raw("%'></i></div>\n");
}

void AddRecords(const RecordTally& tally, HtmlText& html) {
  html.Raw("<p>").Word("records").Colon().Count(tally.in).Raw(" \u2192 ").Count(tally.kept);
  const auto add = [&html](std::size_t count, std::string_view key) {
    if (count != 0) html.Raw(", ").Count(count).Raw(" ").Word(key);
  };
  add(tally.leftOut, "record.leftOut");
  add(tally.joined, "record.joined");
  add(tally.notNeeded, "record.notNeeded");
  html.Raw("</p>\n");
}

void AddClasses(const InputReport& input, HtmlText& html) {
  if (input.classes.empty()) return;
  html.Raw("<details><summary>").Word("byClass").Raw("</summary>\n<div class='wide'><table>\n<tr>");
  html.Word("th", "class").Word("th", "in").Word("th", "kept").Word("th", "dropped").Raw("</tr>\n");
  for (const ClassTally& tally : input.classes) {
    html.Raw("<tr><td>").Text(tally.name).Raw("</td><td>").Count(tally.products.in);
    html.Raw("</td><td>").Count(tally.products.kept).Raw("</td><td class='name'>");
    AddReasons(tally.products, html);
    html.Raw("</td></tr>\n");
  }
  html.Raw("</table></div></details>\n");
}

void AddInput(std::size_t index, const RunReport& report, HtmlText& html) {
  const InputReport& input = report.inputs[index];
  html.Raw("<article class='input ").Raw(ColourOf(index)).Raw("'>\n<header><h3>");
  html.Count(index + 1).Raw(". ").Name(ShortName(input.path)).Raw("</h3> ");
  if (input.takesPart) {
    html.Word("span", "takesPart", " class='chip good'");
  } else {
    html.Word("span", "leftOut", " class='chip bad'");
  }
  html.Raw("</header>\n<div class='path'>").Name(input.path).Raw("</div>\n");
  if (!input.takesPart) AddWhy(input, html);
  AddUnitDifferences(input, html);
  AddFacts(input, report, html);
  html.Raw("<p>").Word("products").Colon().Count(input.products.in).Raw(" \u2192 ");
  html.Count(input.products.kept);
  if (input.products.kept != input.products.in) html.Raw(", ");
  AddReasons(input.products, html);
  html.Raw("</p>\n");
  AddBar(input.products, html);
  AddRecords(input.records, html);
  AddClasses(input, html);
  AddConverted(index, report, html);
  if (!input.remarks.empty()) AddTexts(input.remarks, html);
  html.Raw("</article>\n");
}

}  // namespace

void AddHead(const RunReport& report, HtmlText& html) {
  const WideString command = Widen(report.command);
  const WideString subject =
      report.output.path.empty()
          ? (report.inputs.empty() ? WideString() : ShortName(report.inputs.front().path))
          : ShortName(report.output.path);
  html.Raw("<h1>corvel ").Text(command).Raw(": ").Name(subject).Raw("</h1>\n<p class='soft'>");
  html.Word(report.isDryRun ? "dryTitle" : "title").Raw(" \u00b7 ").Text(report.startedAt);
  html.Raw("</p>\n");
  AddFailures(report.failures, html);
  AddStatus(report, html);
  AddSums(report, html);
}

void AddInputs(const RunReport& report, HtmlText& html) {
  html.Raw("<section>\n").Word("h2", "inputs").Raw("\n");
  for (std::size_t i = 0; i < report.inputs.size(); ++i) AddInput(i, report, html);
  html.Raw("</section>\n");
}

void AddDrawings(const RunReport& report, HtmlText& html) {
  std::vector<DrawnInput> inputs;
  for (const InputReport& input : report.inputs) inputs.push_back({input.path, input.takesPart});
  AddDrawings(inputs, report.places ? &*report.places : nullptr, html);
}

void AddMessages(const RunReport& report, HtmlText& html) {
  html.Raw("<section>\n").Word("h2", "messages").Raw("\n");
  if (report.messages.empty()) {
    html.Word("p", "noMessages", " class='soft'").Raw("\n");
  } else {
    AddTexts(report.messages, html);
  }
  html.Raw("</section>\n");
}

void AddSteps(const RunReport& report, HtmlText& html) {
  if (report.steps.empty()) return;
  html.Raw("<section>\n")
      .Word("h2", "steps")
      .Raw("\n<div class='wide'><table class='steps'>\n<tr>");
  html.Word("th", "step").Word("th", "counts", " style='text-align:left'").Raw("</tr>\n");
  for (const StepReport& step : report.steps) {
    const std::string did = "did." + step.step + ".";
    html.Raw("<tr><td>").Word("step." + step.step);
    if (step.input) {
      html.Raw(" <span class='soft'>").Name(ShortName(report.inputs[*step.input].path));
      html.Raw("</span>");
    }
    html.Raw("</td><td class='name'>");
    for (std::size_t i = 0; i < step.counts.size(); ++i) {
      if (i != 0) html.Raw(" \u00b7 ");
      html.Word(did + step.counts[i].first).Colon().Count(step.counts[i].second);
    }
    for (const auto& [name, lines] : step.lists) {
      html.Raw("<details><summary>").Word(did + name).Raw(" (").Count(lines.size());
      html.Raw(")</summary>\n");
      AddTexts(lines, html);
      html.Raw("</details>");
    }
    html.Raw("</td></tr>\n");
  }
  html.Raw("</table></div>\n</section>\n");
}

void AddTree(const RunReport& report, HtmlText& html) {
  if (!report.places || report.places->tree.empty()) return;
  html.Raw("<section>\n").Word("h2", "tree").Raw("\n");
  html.Word("p", "treeHint", " class='soft'").Raw("\n");
  AddNodes(report.places->tree, html);
  html.Raw("</section>\n");
}

void AddStages(const RunReport& report, HtmlText& html) {
  html.Raw("<section>\n").Word("h2", "stages").Raw("\n<div class='wide'><table>\n<tr>");
  html.Word("th", "stage").Word("th", "seconds").Word("th", "memory").Raw("</tr>\n");
  for (const StageReport& stage : report.stages) {
    html.Raw("<tr><td>").Word("stage." + std::string(WordOf(stage.stage)));
    if (!stage.path.empty()) {
      html.Raw(" <span class='soft'>").Name(ShortName(stage.path)).Raw("</span>");
    }
    html.Raw("</td><td>").Decimal(stage.seconds, 3).Raw("</td><td>");
    AddSize(static_cast<double>(stage.memoryBytes), html);
    html.Raw("</td></tr>\n");
  }
  html.Raw("</table></div>\n</section>\n");
}

}  // namespace corvel
