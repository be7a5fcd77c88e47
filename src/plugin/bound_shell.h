// The shell of a merge job: the viewer's dialogs and texts, the progress window, the options.
#pragma once

#include "merge/merge_shell.h"

namespace corvel::plugin {

class Plugin;

class BoundShell final : public MergeShell {
 public:
  // Borrowed.
  explicit BoundShell(Plugin& plugin) : plugin_(plugin) {}

  WideString Text(const char* key) override;
  void ShowBox(const WideString& caption, const WideString& text, unsigned flags) override;
  bool AskForOutput(const OutputSuggestion& suggestion) override;
  WideString OutputPath() override;
  void EnableOpenRecent() override;
  void RememberOutput(const WideString& path) override;
  MergeOptions Options() override;
  void SaveOptions() override;
  void HideOptionsWindow() override;
  ErrorReporter Reporter() override;
  ProgressCallback Ticks() override;
  RunObserver* Observer() override;
  bool SceneStandsStill() override;
  void TellModelsCompared(const std::vector<RunModel>& models) override;
  void TellPlaces(const std::vector<PlaceWarning>& warnings) override;
  void StartRun() override;
  void FinishRun() override;
  void OpenProgress(const WideString& title) override;
  void SetOverallText(const WideString& text) override;
  void SetCurrentText(const WideString& text) override;
  void SetCurrentFile(const WideString& path) override;
  void StartStage(int weight) override;
  void StartLastStage() override;
  void ResetProgress() override;

 private:
  Plugin& plugin_;
};

}  // namespace corvel::plugin
