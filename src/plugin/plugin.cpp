#include "plugin/plugin.h"

#include <algorithm>
#include <exception>
#include <new>
#include <set>
#include <utility>

#include "core/cancellation.h"
#include "core/main_container.h"
#include "merge/guid_choice.h"
#include "platform/file.h"
#include "platform/platform.h"
#include "platform/threads.h"
#include "plugin/bound_scene.h"
#include "plugin/bound_shell.h"
#include "plugin/callbacks.h"
#include "plugin/config_file.h"
#include "plugin/host_functions.h"
#include "plugin/progress_window.h"
#include "plugin/run_reports.h"
#include "plugin/test_command.h"
#include "plugin/texts.h"
#include "step/log/ifc_log.h"
#include "step/log/utilities.h"

namespace corvel::plugin {

namespace {

Plugin* alive = nullptr;

OptionsTexts TextsOfOptions() {
  return {GetText("options_window_name"),
          GetText("option_guid_duplication_group_name"),
          GetText("option_guid_duplication_generate"),
          GetText("option_guid_duplication_skip"),
          GetText("option_guid_duplication_remember"),
          GetText("option_ignore_units"),
          GetText("option_ignore_enume_errors"),
          GetText("btn_ok")};
}

// The viewer tells of these buttons of its own. They change what it answers when a merge asks for
// offsets, so that nothing is to be done at the click.
void OverlookClick() {}

void RegisterForeignButtons() {
  for (const char* const key :
       {"btn_set_coordinate_center", "btn_set_coordinates", "btn_reset_coordinate_center"}) {
    CallHost(Host().register_on_button_click, GetText(key).c_str(), &OverlookClick);
  }
}

std::vector<HostObject> ChildrenOf(HostObject parent) {
  return ListOf<HostObject>([parent](HostObject* list, std::uint32_t capacity) {
    return CallHost(Host().get_childs, parent, list, capacity);
  });
}

bool HasObjects() {
  HostObject* const nowhere = nullptr;
  constexpr std::uint32_t kNone = 0;
  return CallHost(Host().get_all_objects, nowhere, kNone) != 0;
}

bool AskAboutGuids() { return alive == nullptr || alive->GeneratesGuids(); }

// Tells and cleans up. What goes wrong even then has nobody left to be told to.
void EndFailedRun(const WideString& failure) {
  try {
    ShowError("", failure, kReportShow);
    FinishRun();
  } catch (...) {
    IfcLog::Instance().Close();
  }
}

// True while it lives; clicks that arrive meanwhile are another's affair.
class Running {
 public:
  explicit Running(bool& running) : running_(running) { running_ = true; }
  ~Running() { running_ = false; }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

 private:
  bool& running_;
};

}  // namespace

Plugin::Plugin() : PluginBase(u"Corvel plugin") {
  alive = this;
  SetGuidQuestion(&AskAboutGuids);
}

Plugin::~Plugin() {
  SetGuidQuestion(nullptr);
  alive = nullptr;
}

Plugin* Plugin::Instance() { return alive; }

void Plugin::GetPluginInformation(PluginInformation& information) {
  information.name = u"Corvel";
  information.producer = u"Corvel";
  information.webAddress = u"";
  information.eMail = u"";
  information.description = u"Corvel";
  information.dataFolder = folders.data.c_str();
}

void Plugin::OnPluginLoad(HostHandle host, std::int32_t /*flag*/, void* window) {
  hostHandle = host;
  parentWindow = window;
  TheHostHandle() = host;
  LoadTexts(folders.data);
  LoadCancelTexts();
  ribbon_.Build(folders.data, buttonClick);
  RegisterForeignButtons();
  nameText_ = GetText("name");
  nameAndGuidText_ = GetText("nameAndGuid");
  MakeOptions();
  LoadConfig();
  ApplyState();
  // A viewer that loads the plug-in anew, for another language perhaps, keeps its models.
  if (!projects_.empty()) ribbon_.EnableForModels(HasObjects());
}

// The window of an earlier load goes first, with the name of its class; what was chosen in it
// stays.
void Plugin::MakeOptions() {
  PluginConfig kept;
  if (options_ != nullptr) kept = {options_->options, options_->position};
  SaveConfig();
  options_.reset();
  options_ = std::make_unique<OptionsWindow>(TextsOfOptions());
  options_->options = kept.options;
  options_->position = kept.position;
}

void Plugin::OnPluginUnload() { SaveConfig(); }

void Plugin::LoadCancelTexts() {
  ProgressWindow::Instance().SetOverallText(GetText("progress_bar_overall_progress"));
  CancelTexts& texts = Cancellation::OfProcess().texts;
  texts.question = GetText("continue_question");
  texts.prompt = GetText("progress_bar_cancel_message");
  texts.caption = GetText("btnCancelName");
}

void Plugin::LoadConfig() {
  PluginConfig config{options_->options, options_->position};
  bool complete = false;
  ReadConfig(ConfigPath(), config, complete);
  options_->options = config.options;
  options_->position = config.position;
  if (complete) ribbon_.ShowToggleState(config.options.deleteOpenings);
}

void Plugin::ApplyState() {
  try {
    options_->ApplyState();
  } catch (const std::exception& error) {
    platform::Get().ShowMessageBox(
        u"Error!",
        u"Error occurred while setting up options window\nError message: " + Widen(error.what()),
        platform::Buttons::kOk, platform::Icon::kWarning);
  }
}

// What is chosen before the first merge needs a folder that nothing else has made yet.
void Plugin::SaveConfig() {
  if (options_ == nullptr) return;
  if (!platform::FileExists(ConfigPath())) EnsureFile(ConfigPath());
  WriteConfig(ConfigPath(), {options_->options, options_->position});
}

MergeOptions Plugin::RunOptions() const {
  if (overridden_) return *overridden_;
  MergeOptions now = options_ == nullptr ? MergeOptions() : options_->options;
  now.tolerant = federation_.tolerant;
  now.federation = federation_.steps;
  // The viewer goes on drawing.
  now.threads = std::max(2U, platform::UsableCores()) - 1;
  return now;
}

// False when there is a mistake in the file, which is told: nothing is to be read then. Whoever has
// set other options has no use for it.
bool Plugin::LoadFederation() {
  if (overridden_) return true;
  const auto mistake = ReadFederationFile(folders.user + u"federation.txt", federation_);
  if (!mistake) return true;
  const WideString caption = GetText("error_caption");
  CallHost(Host().message_box, caption.c_str(), mistake->c_str(), kErrorIcon);
  return false;
}

bool Plugin::GeneratesGuids() {
  const MergeOptions now = RunOptions();
  if (now.remember || overridden_ || options_ == nullptr) return now.generateGuid;
  return options_->Show(true);
}

// A run goes on with the projects and numbers that it has started with.
void Plugin::OnModelLoad() {
  if (running_) {
    modelsChanged_ = true;
    return;
  }
  allObjectsRoot = CallHost(Host().get_all_objects_id);
  selectedObject = CallHost(Host().get_selected_id);
  projects_.clear();
  projectPaths_.clear();
  for (const HostObject project : ChildrenOf(allObjectsRoot)) {
    // Listed twice it is one project, with the path that was told last.
    if (projectPaths_.count(project) == 0) projects_.push_back(project);
    projectPaths_[project] = TextOrEmpty(CallHost(Host().get_project_path, project));
  }
  // The first model of a scene: no number of an earlier one is in use any more.
  if (projects_.size() == 1) IFC::MainContainer::ResetUniqueMarker();
  ribbon_.EnableForModels(HasObjects());
}

WideString Plugin::ProjectPath(HostObject project) const {
  const auto found = projectPaths_.find(project);
  return found == projectPaths_.end() ? WideString() : found->second;
}

// The viewer knows no exceptions: what nobody has foreseen ends the run and is told.
void Plugin::OnButtonClick(std::int32_t button) {
  if (running_) return;
  try {
    Dispatch(button);
  } catch (const std::bad_alloc&) {
    EndFailedRun(u"Not enough memory for these models.");
  } catch (const std::exception& error) {
    EndFailedRun(Widen(error.what()));
  } catch (...) {
    EndFailedRun(u"Unknown error.");
  }
  report_.reset();
  if (std::exchange(modelsChanged_, false)) OnModelLoad();
}

void Plugin::Dispatch(std::int32_t button) {
  if (button == ribbon_.test) {
    RunTestCommand();
  } else if (button == ribbon_.openRecent) {
    OpenLastFile(folders.user, ShowError);
  } else if (button == ribbon_.options) {
    if (options_ != nullptr) options_->Show(false);
  } else if (button == ribbon_.toggle) {
    bool& state = options_->options.deleteOpenings;
    state = !state;
    ribbon_.ShowToggleState(state);
  } else {
    Merge(button);
  }
}

void Plugin::Merge(std::int32_t button) {
  if (CallHost(Host().get_loaded_ifc_files_count) == 0) {
    const WideString caption = GetText("no_file_selected_caption");
    const WideString message = GetText("no_file_selected_message");
    CallHost(Host().message_box, caption.c_str(), message.c_str(), kInformationIcon);
    return;
  }
  const Running whileItLasts(running_);
  BoundScene scene;
  BoundShell shell(*this);
  MergeJob job(scene, shell);
  std::set<HostObject> files = job.CollectProjectsOfMode(SavingMode::kMergeActive);
  // With nothing active no button merges, whatever its mode.
  if (files.empty()) return;
  SavingMode mode = SavingMode::kMergeActive;
  if (button == ribbon_.mergeVisible) {
    mode = SavingMode::kMergeVisible;
  } else if (button == ribbon_.mergeSelected) {
    mode = SavingMode::kMergeSelected;
  } else if (button != ribbon_.mergeActive) {
    return;
  }
  if (mode != SavingMode::kMergeActive) files = job.CollectProjectsOfMode(mode);
  // Whoever has selected nothing has asked for nothing.
  if (mode == SavingMode::kMergeSelected && files.empty()) return;
  if (!LoadFederation()) return;
  if (!overridden_ && federation_.reports) report_.emplace();
  lastRun_ = job.Run(files, projects_, mode);
}

void Plugin::RunTestCommand() {
  const Running whileItLasts(running_);
  if (!LoadFederation()) return;
  TestCommand(projects_.empty() ? WideString() : ProjectPath(projects_.front()), folders.user,
              RunOptions());
}

}  // namespace corvel::plugin
