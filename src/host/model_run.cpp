#include "host/model_run.h"

#include <utility>

#include "host/plugin_session.h"
#include "host/resave.h"
#include "host/run_checks.h"
#include "host/viewer.h"
#include "platform/file.h"
#include "plugin/plugin.h"
#include "step/log/ifc_log.h"

namespace corvel::host {

ModelRun::ModelRun(ModelOrder order, RunConsole& console)
    : order_(std::move(order)), console_(console) {}

ExitStatus ModelRun::Run() {
  const bool written = PathsAreGood() && Write();
  console_.EraseBars();
  return Conclude(written);
}

// All that is wrong is told, not the first alone.
bool ModelRun::PathsAreGood() {
  bool good = true;
  const auto tell = [&](const WideString& path, const std::optional<WideString>& trouble) {
    if (!trouble) return;
    console_.Say(path + u": " + *trouble);
    good = false;
  };
  for (const WideString& input : order_.inputs) tell(input, TroubleWithInput(input));
  tell(order_.output, TroubleWithOutput(order_.output, order_.inputs));
  return good;
}

bool ModelRun::Write() {
  Viewer viewer(console_, order_.inputs, order_.output);
  PluginSession session(order_.userFolder);
  plugin::Plugin& plugin = session.ThePlugin();
  MergeOptions options = plugin.RunOptions();
  options.ignoreEnumErrors = options.ignoreEnumErrors || order_.ignoreEnumErrors;
  plugin.OverrideOptions(options);
  viewer.TellModelsAreLoaded();
  if (order_.inputs.size() == 1) {
    return Resave(order_.inputs.front(), order_.output, options.ignoreEnumErrors);
  }
  viewer.Click(plugin.Buttons().mergeActive);
  return plugin.LastRun().written;
}

// The reader takes a file that was cut short without a word, as far as it goes.
bool ModelRun::RemarkCutFiles() {
  bool remarked = false;
  for (const WideString& input : order_.inputs) {
    if (HasClosingLine(input)) continue;
    console_.Say(input + u": " + kCutShort);
    remarked = true;
  }
  return remarked;
}

ExitStatus ModelRun::Conclude(bool written) {
  const bool cut = written && RemarkCutFiles();
  const bool reported = console_.LogWasOffered() || cut;
  if (written && !reported) return ExitStatus::kDone;
  WideString line;
  if (written) {
    line = order_.output + u" was written, but something was reported.";
  } else {
    line = console_.WasCancelled() ? u"Cancelled, nothing was written." : u"Nothing was written.";
  }
  const WideString& log = IfcLog::Instance().Path();
  if (console_.LogWasOffered() && platform::FileExists(log)) {
    line += u" More is told in the log: " + log;
  }
  console_.Say(line);
  if (written) return ExitStatus::kWrittenWithReports;
  return console_.WasCancelled() ? ExitStatus::kCancelled : ExitStatus::kNothingWritten;
}

}  // namespace corvel::host
