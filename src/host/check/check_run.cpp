#include "host/check/check_run.h"

#include <algorithm>
#include <new>
#include <utility>

#include "core/cancellation.h"
#include "core/shown_paths.h"
#include "host/check/check_report.h"
#include "host/check/report/check_page.h"
#include "host/display_text.h"
#include "host/reading_watch.h"
#include "host/run_checks.h"
#include "merge/report/shared/model_places.h"
#include "merge/report/shared/report_file.h"
#include "step/log/utilities.h"

namespace corvel::host {

namespace {

class CheckRun {
 public:
  CheckRun(const CheckRunOrder& order, RunConsole& console, const TextSink& output)
      : order_(order), console_(console), output_(output), watch_(console, u"Checking") {
    console.HoldBackBoxes();
    MemoryReportOutput() = nullptr;  // standard output is for what is found
    Cancellation::OfProcess().ForgetAnswer();
  }

  ExitStatus Run() {
    if (const auto trouble = TroubleWithWorkFolder(order_.workFolder)) {
      console_.Say(Printable(order_.workFolder) + u": " + *trouble);
      return ExitStatus::kNothingWritten;
    }
    if (!ReportsAreGood()) return ExitStatus::kNothingWritten;
    report_.startedAt = TimeOfReport();
    std::vector<CheckedModel> before;
    if (!CheckAll(order_.against, before)) return Unread();
    if (!CheckInputs(before)) return Unread();
    if (report_.models.size() > 1) report_.between = CheckBetween(report_.models);
    console_.EraseBars();
    const bool written = order_.json
                             ? output_(FromUtf8(CheckReportAsJson(report_)))
                             : isWritten_ && output_(CheckSummaryAsText(report_, order_.inColours));
    if (!WriteReports() || !written || !isReadable_) return ExitStatus::kNothingWritten;
    return report_.Counted().errors == 0 ? ExitStatus::kDone : ExitStatus::kErrorsFound;
  }

 private:
  // All that is wrong is told, not the first alone.
  bool ReportsAreGood() {
    std::vector<WideString> files = order_.inputs;
    files.insert(files.end(), order_.against.begin(), order_.against.end());
    bool good = true;
    for (const WideString& path : order_.reports) {
      const auto trouble = TroubleWithReport(path, files);
      if (!trouble) continue;
      console_.Say(Printable(path) + u": " + *trouble);
      good = false;
    }
    return good;
  }

  bool WriteReports() {
    bool written = true;
    for (const WideString& path : order_.reports) {
      if (WriteCheckReport(report_, path)) continue;
      console_.Say(Printable(path) + u": the report could not be written");
      written = false;
    }
    return written;
  }

  bool CheckInputs(const std::vector<CheckedModel>& before) {
    for (const WideString& path : order_.against) report_.against.push_back(WithShownPaths(path));
    for (const WideString& path : order_.inputs) {
      CheckOrder order{.keepsHolders = order_.inputs.size() > 1,
                       .keepsObjects = !order_.against.empty(),
                       .before = &before};
      if (!order_.reports.empty()) {
        order.placesOfFile = static_cast<std::uint32_t>(report_.models.size());
        order.mostPlaces = PlacesWanted().most / order_.inputs.size();
      }
      if (!CheckOne(path, std::move(order), report_.models)) return false;
      const CheckedModel& model = report_.models.back();
      if (!order_.against.empty() && model.facts) report_.comparison = CompareWith(model, before);
      if (order_.json) continue;
      console_.EraseBars();
      isWritten_ =
          output_(CheckedModelAsText(model, report_.comparison ? &*report_.comparison : nullptr,
                                     order_.inColours)) &&
          isWritten_;
    }
    return true;
  }

  bool CheckAll(const std::vector<WideString>& paths, std::vector<CheckedModel>& models) {
    return std::all_of(paths.begin(), paths.end(), [&](const WideString& path) {
      return CheckOne(path, {.keepsObjects = true}, models);
    });
  }

  // False: the user cancelled.
  bool CheckOne(const WideString& path, CheckOrder order, std::vector<CheckedModel>& models) {
    const std::size_t files = order_.inputs.size() + order_.against.size();
    watch_.StepBegins(path, static_cast<int>(done_++ * 100 / files));
    order.workFolder = order_.workFolder;
    order.progress = ReadingWatch::Tick;
    models.push_back(CheckModel(path, order));
    CheckedModel& model = models.back();
    model.path = WithShownPaths(model.path);
    if (console_.WasCancelled()) return false;
    for (const WideString& problem : model.problems) {
      console_.Say(Printable(path) + u": " + problem);
    }
    if (!model.facts) isReadable_ = false;
    return true;
  }

  ExitStatus Unread() {
    console_.Say(u"Cancelled.");
    return ExitStatus::kCancelled;
  }

  const CheckRunOrder& order_;
  RunConsole& console_;
  const TextSink& output_;
  ReadingWatch watch_;
  CheckReport report_;
  std::size_t done_ = 0;
  bool isReadable_ = true;
  bool isWritten_ = true;
};

}  // namespace

ExitStatus RunCheck(const CheckRunOrder& order, RunConsole& console, const TextSink& output) {
  CheckRun run(order, console, output);
  try {
    return run.Run();
  } catch (const std::bad_alloc&) {
    console.Say(u"Not enough memory for this model.");
  }
  return ExitStatus::kNothingWritten;
}

}  // namespace corvel::host
