// Corvel as a plug-in of the viewer: its buttons, and what they do.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "merge/merge_job.h"
#include "plugin/federation_file.h"
#include "plugin/options_window.h"
#include "plugin/plugin_base.h"
#include "plugin/ribbon.h"
#include "plugin/run_listener.h"
#include "plugin/run_report_file.h"

namespace corvel::plugin {

class Plugin final : public cpp::PluginBase {
 public:
  Plugin();
  ~Plugin() override;

  // The one that lives while the library is attached; null before and after.
  static Plugin* Instance();

  void GetPluginInformation(PluginInformation& information) override;
  void OnPluginLoad(HostHandle host, std::int32_t flag, void* window) override;
  void OnPluginUnload() override;
  void OnButtonClick(std::int32_t button) override;
  void OnModelLoad() override;

  // The file behind a loaded project; empty for another handle.
  WideString ProjectPath(HostObject project) const;
  const std::vector<HostObject>& Projects() const { return projects_; }
  // Null before OnPluginLoad.
  OptionsWindow* Options() { return options_.get(); }
  // What a run looks at: the choices of the window and those of federation.txt, unless others were
  // set for a while. Those are neither shown nor kept in config.txt.
  MergeOptions RunOptions() const;
  void OverrideOptions(const MergeOptions& options) { overridden_ = options; }
  // For a program that has the plug-in built in.
  const RunListener& Listener() const { return listener_; }
  void SetListener(RunListener listener) { listener_ = std::move(listener); }
  // Gives the answer about GUIDs that are there already; asks in the window unless it is
  // remembered.
  bool GeneratesGuids();
  const Ribbon& Buttons() const { return ribbon_; }
  // Writes config.txt, if there is something to write. Trouble is told in a box.
  void SaveConfig();
  // Of the run at hand; null when nobody wants one.
  RunReportFile* ReportOfRun() { return report_ ? &*report_ : nullptr; }
  // How the last run ended; as it is made when there was none.
  const RunResult& LastRun() const { return lastRun_; }

 private:
  void LoadCancelTexts();
  void MakeOptions();
  void LoadConfig();
  void ApplyState();
  WideString ConfigPath() const { return folders.user + u"config.txt"; }
  bool LoadFederation();
  void Dispatch(std::int32_t button);
  void Merge(std::int32_t button);
  void RunTestCommand();

  Ribbon ribbon_;
  std::unique_ptr<OptionsWindow> options_;
  std::optional<MergeOptions> overridden_;
  std::optional<RunReportFile> report_;
  FederationOptions federation_;      // of the run at hand, or the last one
  std::vector<HostObject> projects_;  // in the viewer's order
  std::unordered_map<HostObject, WideString> projectPaths_;
  // The two ways to match spatial objects, for a choice that the window does not offer yet.
  WideString nameText_;
  WideString nameAndGuidText_;
  RunResult lastRun_;
  RunListener listener_;
  bool running_ = false;
  bool modelsChanged_ = false;  // during a run, which has to end first
};

}  // namespace corvel::plugin
