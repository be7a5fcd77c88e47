#include "plugin/test_command.h"

#include <exception>

#include "core/outcome.h"
#include "core/reporting.h"
#include "merge/document.h"
#include "platform/platform.h"
#include "plugin/progress_window.h"
#include "plugin/run_reports.h"
#include "step/log/ifc_log.h"
#include "step/log/utilities.h"

namespace corvel::plugin {

namespace {

void ReadAndWrite(const WideString& path, const WideString& userFolder,
                  const MergeOptions& options) {
  IfcDocument document(options.ignoreEnumErrors, ShowError, ProgressWindow::UpdateProgress);
  if (options.tolerant) document.ReadTolerantly();
  constexpr int kOneFile = 1;
  if (document.OpenFile(path, kOneFile) == 0) {
    ShowError("", u"Unable to parse file: " + path, kReportShow);
    return;
  }
  const WideString output = path + u"_test.ifc";
  if (Outcome{document.SaveFile(output)} == Outcome::kComplete) {
    SaveLastPath(userFolder, output, ShowError);
  }
}

}  // namespace

void TestCommand(const WideString& path, const WideString& userFolder,
                 const MergeOptions& options) {
  if (path.empty()) {
    ShowError("", u"No project loaded", kReportShow);
    return;
  }
  StartRun();
  IfcLog::Instance().Open(path);
  ProgressWindow& progress = ProgressWindow::Instance();
  progress.InitProgress(u"Test");
  progress.SetCurrentText(u"Processing file");
  progress.SetCurrentFile(path);
  try {
    ReadAndWrite(path, userFolder, options);
  } catch (const std::exception& error) {
    ShowError("", u"Error occurred while processing file: " + path, kReportCollect);
    ShowError("", Widen(error.what()), kReportShow);
  } catch (...) {
    ShowError("", u"Unknown error occurred while processing file: " + path, kReportShow);
  }
  // Before the user is asked about the log, which may take a while.
  platform::ReturnFreeMemory();
  FinishRun();
}

}  // namespace corvel::plugin
