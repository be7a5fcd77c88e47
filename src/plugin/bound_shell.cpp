#include "plugin/bound_shell.h"

#include "core/shown_paths.h"
#include "plugin/host_functions.h"
#include "plugin/plugin.h"
#include "plugin/progress_window.h"
#include "plugin/run_reports.h"
#include "plugin/texts.h"
#include "step/log/utilities.h"

namespace corvel::plugin {

WideString BoundShell::Text(const char* key) { return GetText(key); }

void BoundShell::ShowBox(const WideString& caption, const WideString& text, unsigned flags) {
  CallHost(Host().message_box, caption.c_str(), text.c_str(), std::uint32_t{flags});
}

bool BoundShell::AskForOutput(const OutputSuggestion& suggestion) {
  CallHost(Host().set_save_dialog_params, GetText("filter_caption").c_str(),
           suggestion.folder.c_str(), suggestion.name.c_str());
  CallHost(Host().set_save_dialog_default_extension, suggestion.extension.c_str());
  constexpr std::int32_t kZero = 0;
  return CallHost(Host().save_dialog, kZero) != 0;
}

WideString BoundShell::OutputPath() {
  WideString path = TextOrEmpty(CallHost(Host().get_save_dialog_name));
  if (RunReportFile* const report = plugin_.ReportOfRun()) report->SetOutput(path);
  return path;
}

void BoundShell::EnableOpenRecent() { plugin_.Buttons().EnableOpenRecent(); }

void BoundShell::RememberOutput(const WideString& path) {
  if (IsShownAsAnother(path)) return;
  const auto& refused = plugin_.Listener().outputNotRemembered;
  const WideString& folder = plugin_.folders.user;
  const ErrorReporter reporter = refused ? nullptr : ShowError;
  if (!SaveLastPath(folder, path, reporter) && refused) refused(folder);
}

MergeOptions BoundShell::Options() { return plugin_.RunOptions(); }

void BoundShell::SaveOptions() { plugin_.SaveConfig(); }

void BoundShell::HideOptionsWindow() {
  if (plugin_.Options() != nullptr) plugin_.Options()->Hide();
}

ErrorReporter BoundShell::Reporter() { return ShowError; }

ProgressCallback BoundShell::Ticks() { return ProgressWindow::UpdateProgress; }

RunObserver* BoundShell::Observer() {
  if (RunReportFile* const report = plugin_.ReportOfRun()) return &report->Observer();
  return plugin_.Listener().observer;
}

bool BoundShell::SceneStandsStill() { return plugin_.Listener().sceneStandsStill; }

void BoundShell::TellModelsCompared(const std::vector<RunModel>& models) {
  if (const auto& listener = plugin_.Listener().modelsCompared) listener(models);
}

void BoundShell::TellPlaces(const std::vector<PlaceWarning>& warnings) {
  if (const auto& listener = plugin_.Listener().placesFound) listener(warnings);
}

void BoundShell::StartRun() { plugin::StartRun(); }

void BoundShell::FinishRun() {
  RunReportFile* const report = plugin_.ReportOfRun();
  plugin::FinishRun(report == nullptr ? WideString() : report->Write());
}

void BoundShell::OpenProgress(const WideString& title) {
  ProgressWindow::Instance().InitProgress(title);
}

void BoundShell::SetOverallText(const WideString& text) {
  ProgressWindow::Instance().SetOverallText(text);
}

void BoundShell::SetCurrentText(const WideString& text) {
  ProgressWindow::Instance().SetCurrentText(text);
}

void BoundShell::SetCurrentFile(const WideString& path) {
  ProgressWindow::Instance().SetCurrentFile(path);
}

void BoundShell::StartStage(int weight) { ProgressWindow::Instance().StartStage(weight); }

void BoundShell::StartLastStage() { ProgressWindow::Instance().StartLastStage(); }

void BoundShell::ResetProgress() { ProgressWindow::Instance().Reset(); }

}  // namespace corvel::plugin
