// The report of a run as a file beside its log.
#pragma once

#include "core/text.h"
#include "merge/report/report_gatherer.h"

namespace corvel::plugin {

// While it lives, what is reported goes into the report as well: what is only logged as a message,
// all else as a failure.
class ReportsHeard {
 public:
  // Borrows the gatherer, which may be null: nothing is heard then.
  explicit ReportsHeard(ReportGatherer* gatherer);
  ~ReportsHeard();
  ReportsHeard(const ReportsHeard&) = delete;
  ReportsHeard& operator=(const ReportsHeard&) = delete;
};

// A report that users have asked for in federation.txt.
class RunReportFile {
 public:
  RunReportFile() : gatherer_("merge"), heard_(&gatherer_) {}

  RunObserver& Observer() { return gatherer_; }
  void SetOutput(const WideString& path) { gatherer_.SetOutput(path); }
  // Behind the end of the run, while the log has its place: NAME_IFC_REPORT.html beside
  // NAME_IFC_LOG.txt, in the viewer's language. Gives its path; empty (reported) when it could not
  // be written.
  WideString Write();

 private:
  ReportGatherer gatherer_;
  ReportsHeard heard_;
};

}  // namespace corvel::plugin
