#include "plugin/run_report_file.h"

#include "core/reporting.h"
#include "merge/report/write_report.h"
#include "plugin/host_functions.h"
#include "plugin/progress_window.h"
#include "plugin/run_reports.h"
#include "step/log/ifc_log.h"

namespace corvel::plugin {

namespace {

constexpr WideView kEndOfLog = u"LOG.txt";

WideString PathBeside(WideString log) {
  if (log.ends_with(kEndOfLog)) log.resize(log.size() - kEndOfLog.size());
  return log + u"REPORT.html";
}

}  // namespace

ReportsHeard::ReportsHeard(ReportGatherer* gatherer) {
  if (gatherer == nullptr) return;
  // What is collected is one report with what is shown at its end, as it is in a box.
  SetReportEar([gatherer, isOpen = false](const WideString& text, int mode) mutable {
    const WideString& file = ProgressWindow::Instance().CurrentFile();
    if (mode == kReportLog) {
      if (!text.empty()) gatherer->AddMessage(text, file);
      return;
    }
    if (isOpen) {
      gatherer->ContinueFailure(text);
    } else if (!text.empty()) {
      gatherer->AddFailure(text, file);
    }
    isOpen = mode == kReportCollect && (isOpen || !text.empty());
  });
}

ReportsHeard::~ReportsHeard() { SetReportEar({}); }

WideString RunReportFile::Write() {
  WideString path = PathBeside(IfcLog::Instance().Path());
  const std::string language = Narrow(TextOrEmpty(CallHost(Host().get_language)));
  if (WriteReport(gatherer_.Report(), path, language)) return path;
  ShowError("", u"The report could not be written. File path: " + path, kReportShow);
  return {};
}

}  // namespace corvel::plugin
