#include "plugin/run_reports.h"

#include <utility>

#include "core/cancellation.h"
#include "core/reporting.h"
#include "platform/platform.h"
#include "plugin/host_functions.h"
#include "plugin/progress_window.h"
#include "plugin/texts.h"
#include "step/log/ifc_log.h"

namespace corvel::plugin {

namespace {

struct Reports {
  bool reported = false;
  WideString pending;  // reports of mode 1 that wait to be shown
};

ReportEar& TheEar() {
  static ReportEar ear;
  return ear;
}

Reports& TheReports() {
  static Reports reports;
  return reports;
}

void LogPastMuting(const WideString& text) {
  const LogUnmuted unmuted(IfcLog::Instance());
  IfcLog::Instance().LogText(text);
}

// Nothing to say is no reason to open a box.
void ShowInBox(const WideString& text) {
  if (text.empty()) return;
  const WideString box =
      text + u"\n" + GetText("merge_combine_log") + u" " + IfcLog::Instance().Path();
  if (Cancellation::OfProcess().mode == CancelMode::kHoldBackBoxes) return;
  CallHost(Host().message_box, GetText("error_caption").c_str(), box.c_str(), kErrorIcon);
}

// True when the user wants to see it.
bool OfferLog() {
  return platform::Get().ShowMessageBox(u"Corvel", GetText("show_log_question"),
                                        platform::Buttons::kYesNo,
                                        platform::Icon::kInformation) == platform::Answer::kYes;
}

}  // namespace

int ShowError(const char* key, const WideString& message, int mode) {
  Reports& reports = TheReports();
  reports.reported = true;
  WideString text = *key == '\0' ? WideString() : GetText(key) + u" ";
  text += message;
  LogPastMuting(text);
  if (TheEar()) TheEar()(text, mode);
  IfcLog::Instance().KeepFile();
  if (mode == kReportCollect) {
    reports.pending += text;
  } else if (mode == kReportShow) {
    ShowInBox(std::exchange(reports.pending, {}) + text);
  }
  return 0;
}

ReportEar SetReportEar(ReportEar ear) { return std::exchange(TheEar(), std::move(ear)); }

void StartRun() {
  TheReports() = {};
  Cancellation::OfProcess().mode = CancelMode::kAsk;
}

void FinishRun(const WideString& report) {
  ProgressWindow::Instance().Finish();
  IfcLog& log = IfcLog::Instance();
  log.SetMuted(false);
  if (!std::exchange(TheReports().reported, false)) {
    log.Discard();
  } else {
    log.Close();
    if (OfferLog()) {
      platform::Get().ShellOpen(log.Path(), {});
      if (!report.empty()) platform::Get().ShellOpen(report, {});
    }
  }
  Cancellation::OfProcess().mode = CancelMode::kAsk;
}

bool SomethingWasReported() { return TheReports().reported; }

}  // namespace corvel::plugin
