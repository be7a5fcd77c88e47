#include "host/resave.h"

#include <exception>
#include <new>

#include "core/cancellation.h"
#include "core/outcome.h"
#include "core/reporting.h"
#include "host/viewer.h"
#include "merge/chosen_objects.h"
#include "merge/document.h"
#include "merge/federation/federation.h"
#include "merge/federation/new_header.h"
#include "plugin/bound_scene.h"
#include "plugin/progress_window.h"
#include "plugin/run_reports.h"
#include "plugin/texts.h"
#include "step/log/ifc_log.h"

namespace corvel::host {

namespace {

using plugin::GetText;
using plugin::ProgressWindow;

// Percent of the overall bar; writing has the rest.
constexpr int kReadingWeight = 50;
constexpr int kDeletingWeight = 20;

void ShowStep(const char* key, const WideString& path) {
  ProgressWindow::Instance().SetCurrentText(GetText(key));
  ProgressWindow::Instance().SetCurrentFile(path);
}

void TellStage(const ResaveOrder& order, RunStage stage) {
  const bool isOfModel = stage == RunStage::kRead || stage == RunStage::kChoose;
  if (order.observer != nullptr) {
    order.observer->StageBegins(stage, isOfModel ? order.input : WideString());
  }
}

// What nobody has chosen is not there any more. False: it has been told why nothing is written.
bool KeepChosen(IfcDocument& document, const ResaveOrder& order) {
  plugin::BoundScene scene;
  const HostObject project = Viewer::Instance()->Scene().Projects().front();
  ShowStep("deleting_entities_from", order.input);
  ProgressWindow::Instance().StartStage(kDeletingWeight);
  TellStage(order, RunStage::kChoose);
  const Outcome outcome = KeepChosenObjects(
      document, project, scene,
      {*order.chosen, order.options.deleteOpenings, order.options.federation.placeByMap},
      order.observer);
  if (outcome == Outcome::kFailed) plugin::ShowError("", u"Nothing can be extracted.", kReportShow);
  return outcome == Outcome::kComplete && !Cancellation::OfProcess().WasConfirmed();
}

std::size_t RecordsIn(const IFC::MainContainer& container) {
  std::size_t count = 0;
  for (const auto& [number, entity] : container.entities) {
    if (entity->marker != IFC::kDeleted) ++count;
  }
  return count;
}

bool Read(IfcDocument& document, const ResaveOrder& order) {
  document.threads = order.options.threads;
  if (order.options.tolerant) document.ReadTolerantly();
  if (order.options.workFolder) document.KeepWorkFileIn(*order.options.workFolder);
  document.ReservePaths({order.input, order.output});
  ProgressWindow::Instance().StartStage(kReadingWeight);
  ShowStep("reading_file", order.input);
  IfcLog::Instance().LogText(u"Reading file: " + order.input);
  TellStage(order, RunStage::kRead);
  constexpr int kOneFile = 1;
  document.OpenFile(order.input, kOneFile);
  if (order.observer != nullptr) order.observer->ModelIsRead(document);
  if (document.IsCancelled()) IfcLog::Instance().LogText(u"Reading file cancelled.");
  return document.IsParsed();
}

bool Write(IfcDocument& document, const ResaveOrder& order) {
  const FederationChoices& federation = order.options.federation;
  if (federation.newHeader) RenewHeader(*document.getHeader(), order.output, {order.input});
  document.numbers = federation.numbers;
  document.isReleasedNext = true;
  TellStage(order, RunStage::kWrite);
  ProgressWindow::Instance().StartLastStage();
  ShowStep("exporting_file_as", order.output);
  IfcLog::Instance().LogText(u"Saving to output file ...");
  const bool written = Outcome{document.SaveFile(order.output)} == Outcome::kComplete;
  if (written) IfcLog::Instance().LogText(u"Saving DONE");
  return written;
}

RunResult ReadAndWrite(const ResaveOrder& order) {
  IfcDocument document(order.options.ignoreEnumErrors, plugin::ShowError,
                       ProgressWindow::UpdateProgress);
  RunResult result;
  const bool isRead = Read(document, order);
  for (const WideString& remark : document.Remarks()) {
    result.remarks.emplace_back(order.input, remark);
  }
  if (!isRead) return result;
  result.recordsRead = document.mainContainer->entities.Size();
  if (order.chosen && !KeepChosen(document, order)) return result;
  const FederationChoices& federation = order.options.federation;
  TellStage(order, RunStage::kJoin);
  PrepareFederation({&document}, federation);
  if (order.observer != nullptr) order.observer->ModelsAreFolded({&document});
  if (!RunFederation({&document}, federation, {}, plugin::ShowError, ProgressWindow::UpdateProgress,
                     order.observer))
    return result;
  TellStage(order, RunStage::kLook);
  if (order.observer != nullptr) order.observer->ModelIsDone({&document});
  result.recordsWritten = RecordsIn(*document.mainContainer);
  // A proposal is what is written, and there already.
  result.written = federation.proposeTree || Write(document, order);
  result.outputKeptAt = document.outputKeptAt;
  return result;
}

}  // namespace

RunResult Resave(const ResaveOrder& order) {
  plugin::StartRun();
  IfcLog::Instance().Open(order.input);
  ProgressWindow::Instance().InitProgress({});
  ProgressWindow::Instance().SetOverallText(GetText("progress_bar_overall_progress"));
  RunResult result;
  try {
    result = ReadAndWrite(order);
  } catch (const std::bad_alloc&) {
    plugin::ShowError("", u"Not enough memory for these models.", kReportShow);
  } catch (const std::exception& error) {
    plugin::ShowError("", Widen(error.what()), kReportShow);
  }
  if (order.observer != nullptr) order.observer->RunEnds(result);
  plugin::FinishRun();
  return result;
}

}  // namespace corvel::host
