#include "host/model_run.h"

#include <utility>

#include "host/display_text.h"
#include "host/header_look.h"
#include "host/model_warnings.h"
#include "host/object_lists.h"
#include "host/plugin_session.h"
#include "host/resave.h"
#include "host/run_checks.h"
#include "host/scene_loading.h"
#include "merge/object_selection.h"
#include "merge/report/write_report.h"
#include "platform/file.h"
#include "platform/threads.h"
#include "plugin/bound_scene.h"
#include "plugin/run_report_file.h"
#include "plugin/texts.h"
#include "step/log/ifc_log.h"

namespace corvel::host {

namespace {

// The log goes to a place while it lives.
class LogPlaced {
 public:
  explicit LogPlaced(LogPlace place) { IfcLog::Instance().SetPlace(std::move(place)); }
  ~LogPlaced() { IfcLog::Instance().SetPlace({}); }
  LogPlaced(const LogPlaced&) = delete;
  LogPlaced& operator=(const LogPlaced&) = delete;
};

std::int64_t BytesOf(const std::vector<WideString>& paths) {
  std::int64_t bytes = 0;
  for (const WideString& path : paths) {
    platform::File file;
    if (file.Open(path.substr(0, path.find(u'|')), platform::OpenMode::kRead)) {
      bytes += file.Size();
    }
  }
  return bytes;
}

}  // namespace

ModelRun::ModelRun(ModelOrder order, RunConsole& console)
    : order_(std::move(order)), console_(console) {
  if (order_.reports.empty() && !order_.isDryRun) return;
  // What is carried is looked at by one thread.
  gatherer_.emplace(order_.command, order_.choices.tolerant ? 1 : Threads());
  gatherer_->SetDryRun(order_.isDryRun);
  gatherer_->SetOutput(order_.output);
}

unsigned ModelRun::Threads() const {
  return order_.choices.threads.value_or(platform::UsableCores());
}

ExitStatus ModelRun::Run() {
  const LogPlaced whileItLasts(PlaceOfLog());
  if (PathsAreGood() && !console_.ShallEnd()) {
    const bool listsAreGood = LoadScene();
    if (!listsAreGood && !console_.WasCancelled()) return ExitStatus::kWrongUsage;
    if (!console_.ShallEnd() && ScenesAreReadable()) {
      console_.StartClock(BytesOf(order_.inputs));
      result_ = Write();
      WriteReports();
    }
  }
  console_.EraseBars();
  return Conclude();
}

// All that is wrong is told, not the first alone.
bool ModelRun::PathsAreGood() {
  bool good = InputsAreGood();
  const auto tell = [&](const WideString& path, const std::optional<WideString>& trouble) {
    if (!trouble) return;
    console_.Say(Printable(path) + u": " + *trouble);
    good = false;
  };
  const bool proposes = order_.choices.federation.proposeTree.has_value();
  const bool writesNothing = order_.isDryRun && order_.output.empty();
  if (!writesNothing) {
    tell(order_.output, proposes ? TroubleWithList(order_.output, order_.inputs)
                                 : TroubleWithOutput(order_.output, order_.inputs));
  }
  for (const WideString& report : order_.reports) {
    tell(report, TroubleWithReport(report, order_.inputs));
  }
  tell(order_.workFolder, TroubleWithWorkFolder(order_.workFolder));
  if (order_.log) tell(*order_.log, TroubleWithLog(*order_.log));
  return good;
}

// Whether they can be read, and then what they say of themselves: what can never become one model
// is not read for minutes first.
bool ModelRun::InputsAreGood() {
  bool good = true;
  const auto tell = [&](const WideString& path, const WideString& trouble) {
    console_.Say(Printable(path) + u": " + trouble);
    good = false;
  };
  std::vector<HeaderLook> looks;
  for (const WideString& input : order_.inputs) {
    const auto trouble = TroubleWithInput(input);
    HeaderLook look =
        trouble ? HeaderLook{trouble, {}} : LookAtHeader(input, order_.choices.tolerant);
    if (look.trouble) tell(input, *look.trouble);
    looks.push_back(std::move(look));
  }
  if (!good) return false;
  for (const SchemaTrouble& trouble : TroubleWithSchemas(order_.inputs, looks)) {
    tell(order_.inputs[trouble.input], trouble.text);
  }
  return good;
}

// A folder that refuses the log is no reason to refuse the run.
LogPlace ModelRun::PlaceOfLog() {
  // A dry run without an output has its log beside the first input, as the plug-in has.
  const WideString& beside = order_.output.empty() ? order_.inputs.front() : order_.output;
  return {order_.log.value_or(LogPathOf(beside)), [this](const WideString& path) {
            console_.Say(Printable(path) +
                         u": the log cannot be written there; the run goes on without it");
          }};
}

// What a model that is written back holds does not matter: it is written whole. False when a list
// names something that is not there; everything of that kind has been told.
bool ModelRun::LoadScene() {
  bool good = true;
  std::vector<SceneOrder> orders;
  for (std::size_t i = 0; i < order_.inputs.size() && ChoosesObjects(); ++i) {
    orders.push_back({order_.inputs[i], TextsForLists(order_.choices.lists, i)});
  }
  SceneLoading scenes(orders, order_.choices.tolerant, Threads());
  for (std::size_t i = 0; i < order_.inputs.size() && !console_.ShallEnd(); ++i) {
    LoadedModel& model = models_.emplace_back();
    model.path = order_.inputs[i];
    if (!ChoosesObjects()) continue;
    model.scene = scenes.Take(i);
    good = ApplyLists(i, model) && good;
  }
  if (console_.WasCancelled()) return good;
  for (const auto& [input, offset] : order_.choices.offsetsMm) models_[input].offsetMm = offset;
  return good;
}

bool ModelRun::ApplyLists(std::size_t input, LoadedModel& model) {
  const std::vector<ObjectList>& lists = order_.choices.lists;
  if (model.scene.isUnreadable) return true;
  std::vector<WideString> mistakes;
  for (const ObjectList& list : lists) {
    if (list.input != input) continue;
    for (WideString& mistake : ApplyList(list, model)) mistakes.push_back(std::move(mistake));
  }
  for (const WideString& mistake : mistakes) console_.Say(mistake);
  if (mistakes.empty()) return true;
  const WideString name = Printable(model.path);
  for (const WideString& problem : model.scene.problems) {
    console_.Say(WideString(name).append(u": ").append(problem));
  }
  console_.Say(u"See 'corvel tree " + name + u"'.");
  return false;
}

// What is missing in a scene would be missing in the output, as if the user had left it out.
bool ModelRun::ScenesAreReadable() {
  bool readable = true;
  for (const LoadedModel& model : models_) {
    if (!model.scene.isUnreadable) continue;
    for (const WideString& problem : model.scene.problems) {
      console_.Say(Printable(model.path) + u": " + problem);
    }
    readable = false;
  }
  return readable;
}

RunResult ModelRun::Write() {
  Viewer viewer(console_, ViewerScene(std::move(models_), order_.choices.centerMetres),
                order_.output);
  PluginSession session(order_.userFolder);
  plugin::Plugin& plugin = session.ThePlugin();
  MergeOptions options = order_.choices.Over(plugin.RunOptions());
  plugin.SetListener(Listener(options.federation.placeByMap));
  options.workFolder = order_.workFolder;
  options.isDryRun = order_.isDryRun;
  plugin.OverrideOptions(options);
  viewer.TellModelsAreLoaded();
  const plugin::ReportsHeard whileItRuns(gatherer_ ? &*gatherer_ : nullptr);
  if (order_.inputs.size() > 1) return Merge(viewer, plugin);
  if (order_.extracts) return Extract(viewer, plugin.RunOptions());
  return Resave({order_.inputs.front(), order_.output, plugin.RunOptions(), {}, Observer()});
}

RunResult ModelRun::Extract(const Viewer& viewer, const MergeOptions& options) {
  plugin::BoundScene scene;
  const SavingMode mode = order_.choices.mode;
  if (ObjectSelection(scene).ProjectsOf(mode).empty()) {
    const char16_t* const kind = mode == SavingMode::kMergeActive    ? u"active"
                                 : mode == SavingMode::kMergeVisible ? u"visible"
                                                                     : u"selected";
    console_.Say(WideString(u"No object is ") + kind + u".");
    return {};
  }
  return Resave({order_.inputs.front(), viewer.Output(), options, mode, Observer()});
}

void ModelRun::Warn(const WideString& line) {
  console_.Say(line);
  if (gatherer_) gatherer_->AddMessage(line);
}

// What is worth knowing and changes nothing, the exit status included.
plugin::RunListener ModelRun::Listener(bool placesByMap) {
  plugin::RunListener listener;
  listener.modelsCompared = [this, placesByMap](const auto& documents) {
    for (const WideString& line : WarningsAbout(documents, placesByMap)) Warn(line);
  };
  listener.placesFound = [this](const auto& warnings) {
    for (const auto& [path, text] : warnings) Warn(Printable(path) + u": " + text);
  };
  listener.observer = Observer();
  listener.outputNotRemembered = [this](const WideString& folder) {
    console_.Say(Printable(folder) +
                 u": this folder cannot be written; what was merged last is "
                 u"not remembered");
  };
  listener.objectsOf = [](HostObject project) {
    return Viewer::Instance()->Scene().ObjectsOf(project);
  };
  listener.sceneStandsStill = true;
  return listener;
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

// The log alone has them in the plug-in. Here they stand where somebody looks.
void ModelRun::SayRemarks() {
  for (const auto& [path, remark] : result_.remarks) console_.Say(Printable(path) + u": " + remark);
}

// Also of a run that failed, and then above all. What cannot be written changes nothing of the run.
void ModelRun::WriteReports() {
  if (!gatherer_) return;
  gatherer_->RunEnds(result_);
  for (const WideString& path : order_.reports) {
    if (WriteReport(gatherer_->Report(), path, {}, Threads())) continue;
    console_.Say(Printable(path) + u": the report could not be written");
    reportIsMissing_ = true;
  }
}

// Nobody wanted that: whoever starts runs that nobody watches has two options against it.
bool ModelRun::StoppedUnasked() const {
  return console_.WasStoppedUnasked() && !order_.answerIsGiven;
}

ExitStatus ModelRun::Conclude() {
  const bool written = result_.written;
  SayRemarks();
  const bool reported = console_.LogWasOffered();
  if (written && !reported) {
    return reportIsMissing_ ? ExitStatus::kWrittenWithReports : ExitStatus::kDone;
  }
  const WideString name = Printable(order_.outputName.empty() ? order_.output : order_.outputName);
  WideString line;
  if (written && order_.isDryRun) {
    line = u"This was a dry run, and something was reported.";
  } else if (written) {
    line = name + u" was written, but something was reported.";
  } else if (!result_.outputKeptAt.empty()) {
    line = name + u" was not written. The complete output lies in " +
           Printable(result_.outputKeptAt) + u".";
  } else if (StoppedUnasked()) {
    line =
        u"Stopped at a value that nobody could be asked about: see --answer and "
        u"--ignore-enum-errors. Nothing was written.";
  } else {
    line = console_.WasCancelled() ? u"Cancelled, nothing was written." : u"Nothing was written.";
  }
  const WideString& log = IfcLog::Instance().Path();
  if (console_.LogWasOffered() && !log.empty())
    line += u" More is told in the log: " + Printable(log);
  console_.Say(line);
  if (written) return ExitStatus::kWrittenWithReports;
  return console_.WasCancelled() && !StoppedUnasked() ? ExitStatus::kCancelled
                                                      : ExitStatus::kNothingWritten;
}

}  // namespace corvel::host
