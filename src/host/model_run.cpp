#include "host/model_run.h"

#include <utility>

#include "host/object_lists.h"
#include "host/plugin_session.h"
#include "host/resave.h"
#include "host/run_checks.h"
#include "platform/file.h"
#include "plugin/texts.h"
#include "step/log/ifc_log.h"

namespace corvel::host {

ModelRun::ModelRun(ModelOrder order, RunConsole& console)
    : order_(std::move(order)), console_(console) {}

ExitStatus ModelRun::Run() {
  RunResult result;
  if (PathsAreGood() && !console_.ShallEnd()) {
    const bool listsAreGood = LoadScene();
    if (!listsAreGood && !console_.WasCancelled()) return ExitStatus::kWrongUsage;
    if (!console_.ShallEnd()) result = Write();
  }
  console_.EraseBars();
  return Conclude(result);
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
  tell(order_.workFolder, TroubleWithWorkFolder(order_.workFolder));
  return good;
}

// What a model that is written back holds does not matter: it is written whole. False when a list
// names something that is not there; everything of that kind has been told.
bool ModelRun::LoadScene() {
  bool good = true;
  for (std::size_t i = 0; i < order_.inputs.size() && !console_.ShallEnd(); ++i) {
    LoadedModel& model = models_.emplace_back();
    model.path = order_.inputs[i];
    if (order_.inputs.size() > 1) good = Load(i, model) && good;
  }
  if (console_.WasCancelled()) return good;
  for (const auto& [input, offset] : order_.choices.offsetsMm) models_[input].offsetMm = offset;
  return good;
}

bool ModelRun::Load(std::size_t input, LoadedModel& model) {
  const std::vector<ObjectList>& lists = order_.choices.lists;
  model.scene = ReadScene(model.path, TextsForLists(lists, input));
  std::vector<WideString> mistakes;
  for (const ObjectList& list : lists) {
    if (list.input != input) continue;
    for (WideString& mistake : ApplyList(list, model)) mistakes.push_back(std::move(mistake));
  }
  for (const WideString& mistake : mistakes) console_.Say(mistake);
  if (mistakes.empty()) return true;
  for (const WideString& problem : model.scene.problems) console_.Say(model.path + u": " + problem);
  console_.Say(u"See 'corvel tree " + model.path + u"'.");
  return false;
}

RunResult ModelRun::Write() {
  Viewer viewer(console_, ViewerScene(std::move(models_), order_.choices.centerMetres),
                order_.output);
  PluginSession session(order_.userFolder);
  plugin::Plugin& plugin = session.ThePlugin();
  MergeOptions options = order_.choices.Over(plugin.RunOptions());
  options.workFolder = order_.workFolder;
  plugin.OverrideOptions(options);
  viewer.TellModelsAreLoaded();
  if (order_.inputs.size() > 1) return Merge(viewer, plugin);
  return Resave(order_.inputs.front(), order_.output, plugin.RunOptions());
}

RunResult ModelRun::Merge(Viewer& viewer, plugin::Plugin& plugin) {
  // The plug-in passes over this without a word.
  if (!viewer.Scene().AnythingIsActive()) {
    console_.Say(u"No object is active.");
    return {};
  }
  const plugin::Ribbon& buttons = plugin.Buttons();
  // Over this as well.
  const bool selects = order_.choices.mode == SavingMode::kMergeSelected;
  if (selects && !viewer.Scene().AnythingIsSelected()) {
    console_.Say(plugin::GetText("combining_failed"));
  }
  switch (order_.choices.mode) {
    case SavingMode::kMergeActive: viewer.Click(buttons.mergeActive); break;
    case SavingMode::kMergeVisible: viewer.Click(buttons.mergeVisible); break;
    case SavingMode::kMergeSelected: viewer.Click(buttons.mergeSelected); break;
  }
  return plugin.LastRun();
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

ExitStatus ModelRun::Conclude(const RunResult& result) {
  const bool written = result.written;
  const bool cut = written && RemarkCutFiles();
  const bool reported = console_.LogWasOffered() || cut;
  if (written && !reported) return ExitStatus::kDone;
  WideString line;
  if (written) {
    line = order_.output + u" was written, but something was reported.";
  } else if (!result.outputKeptAt.empty()) {
    line = order_.output + u" was not written. The complete output lies in " + result.outputKeptAt +
           u".";
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
