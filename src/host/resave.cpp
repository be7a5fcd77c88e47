#include "host/resave.h"

#include <exception>
#include <new>

#include "core/outcome.h"
#include "core/reporting.h"
#include "merge/document.h"
#include "merge/federation/federation.h"
#include "plugin/progress_window.h"
#include "plugin/run_reports.h"
#include "plugin/texts.h"
#include "step/log/ifc_log.h"

namespace corvel::host {

namespace {

using plugin::GetText;
using plugin::ProgressWindow;

// Percent of the overall bar; writing has the rest.
constexpr int kReadingWeight = 50;

void ShowStep(const char* key, const WideString& path) {
  ProgressWindow::Instance().SetCurrentText(GetText(key));
  ProgressWindow::Instance().SetCurrentFile(path);
}

RunResult ReadAndWrite(const WideString& input, const WideString& output,
                       const MergeOptions& options) {
  IfcLog& log = IfcLog::Instance();
  IfcDocument document(options.ignoreEnumErrors, plugin::ShowError, ProgressWindow::UpdateProgress);
  if (options.tolerant) document.ReadTolerantly();
  if (options.workFolder) document.KeepWorkFileIn(*options.workFolder);
  document.ReservePaths({input, output});
  ProgressWindow::Instance().StartStage(kReadingWeight);
  ShowStep("reading_file", input);
  log.LogText(u"Reading file: " + input);
  constexpr int kOneFile = 1;
  document.OpenFile(input, kOneFile);
  if (document.IsCancelled()) log.LogText(u"Reading file cancelled.");
  RunResult result;
  for (const WideString& remark : document.Remarks()) result.remarks.emplace_back(input, remark);
  if (!document.IsParsed()) return result;
  if (!RunFederation({&document}, options.federation, ProgressWindow::UpdateProgress)) {
    return result;
  }
  document.numbers = options.federation.numbers;
  document.isReleasedNext = true;
  ProgressWindow::Instance().StartLastStage();
  ShowStep("exporting_file_as", output);
  log.LogText(u"Saving to output file ...");
  result.written = Outcome{document.SaveFile(output)} == Outcome::kComplete;
  result.outputKeptAt = document.outputKeptAt;
  if (result.written) log.LogText(u"Saving DONE");
  return result;
}

}  // namespace

RunResult Resave(const WideString& input, const WideString& output, const MergeOptions& options) {
  plugin::StartRun();
  IfcLog::Instance().Open(input);
  ProgressWindow::Instance().InitProgress({});
  ProgressWindow::Instance().SetOverallText(GetText("progress_bar_overall_progress"));
  RunResult result;
  try {
    result = ReadAndWrite(input, output, options);
  } catch (const std::bad_alloc&) {
    plugin::ShowError("", u"Not enough memory for these models.", kReportShow);
  } catch (const std::exception& error) {
    plugin::ShowError("", Widen(error.what()), kReportShow);
  }
  plugin::FinishRun();
  return result;
}

}  // namespace corvel::host
