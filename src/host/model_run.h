// Models in, one model out.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/text.h"
#include "host/exit_status.h"
#include "host/run_choices.h"
#include "host/run_console.h"
#include "host/viewer.h"
#include "merge/report/report_gatherer.h"
#include "plugin/plugin.h"
#include "step/log/log_place.h"

namespace corvel::host {

struct ModelOrder {
  std::vector<WideString> inputs;  // one: read and written back; several: merged into the first
  WideString output;
  RunChoices choices;
  bool extracts = false;  // of one input: what the choices keep of it is written
  // In the place of the user's own folder for config.txt and LastPath.txt.
  std::optional<WideString> userFolder;
  WideString workFolder;  // of the files that the reading needs meanwhile
  // In the place of NAME_IFC_LOG.txt beside the output NAME.ifc.
  std::optional<WideString> log;
  // Questions are answered by the user's word (--answer).
  bool answerIsGiven = false;
  // What people call the output; empty: its path.
  WideString outputName;
  std::string command = "merge";  // as the user called it
  bool isDryRun = false;          // of several inputs; the output may be empty then
  std::vector<WideString> reports;
};

// One run: it checks, reads the scenes that the choices are about, lets the plug-in do its work,
// and tells how it ended. There is a log from the first report on, and it stays.
class ModelRun {
 public:
  // Borrows `console`.
  ModelRun(ModelOrder order, RunConsole& console);

  // Once. Refusals, reports and the end are told on the console, each once. Nothing of the models
  // is in memory afterwards. Throws what nobody foresees.
  ExitStatus Run();
  // How the run ended, once it has.
  const RunResult& Result() const { return result_; }
  // What was gathered of the run; null where nobody asked for a report.
  const RunReport* Report() const { return gatherer_ ? &gatherer_->Report() : nullptr; }

 private:
  bool ChoosesObjects() const { return order_.extracts || order_.inputs.size() > 1; }
  unsigned Threads() const;
  bool PathsAreGood();
  bool InputsAreGood();
  LogPlace PlaceOfLog();
  bool LoadScene();
  bool ScenesAreReadable();
  bool ApplyLists(std::size_t input, LoadedModel& model);
  RunResult Write();
  RunResult Merge(Viewer& viewer, plugin::Plugin& plugin);
  RunResult Extract(const Viewer& viewer, const MergeOptions& options);
  void Warn(const WideString& line);
  plugin::RunListener Listener(bool placesByMap);
  void SayRemarks();
  void WriteReports();
  RunObserver* Observer() { return gatherer_ ? &*gatherer_ : nullptr; }
  bool StoppedUnasked() const;
  ExitStatus Conclude();

  ModelOrder order_;
  RunConsole& console_;
  std::vector<LoadedModel> models_;
  RunResult result_;
  std::optional<ReportGatherer> gatherer_;
  bool reportIsMissing_ = false;
};

}  // namespace corvel::host
