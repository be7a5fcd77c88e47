// From the host's list of loaded projects to one written file.
#pragma once

#include <memory>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "merge/federation/place/map_places.h"
#include "merge/host_scene.h"
#include "merge/marking_ahead.h"
#include "merge/merge_shell.h"
#include "merge/object_selection.h"
#include "merge/run_model.h"
#include "merge/run_observer.h"

namespace corvel {

// How a run ended. Users are told by boxes and the log; this is for a shell without windows.
struct RunResult {
  // The output, or the list that was asked for instead, is there, complete; or a dry run has come
  // to its end.
  bool written = false;
  bool cancelled = false;  // somebody answered a cancel question with Yes
  // Where the complete output lies when it could not be put at its place; empty otherwise.
  WideString outputKeptAt;
  // Of a model that is written back or extracted; 0 for others.
  std::size_t recordsRead = 0;
  std::size_t recordsWritten = 0;
  // Path of an input, and a remark on it: see IfcDocument::Remarks.
  std::vector<std::pair<WideString, WideString>> remarks;
};

// One run at a time, from its start to its end within one call. All models that take part are in
// memory at once and gone at the end, however the run ends.
class MergeJob {
 public:
  // Both are borrowed.
  MergeJob(HostScene& scene, MergeShell& shell);
  ~MergeJob();
  MergeJob(const MergeJob&) = delete;
  MergeJob& operator=(const MergeJob&) = delete;

  // The projects with an object that counts. The first of them (by handle) whose file is no model
  // is taken out, and reported; those behind it are not looked at.
  std::set<HostObject> CollectProjectsOfMode(SavingMode mode);

  // Reads the projects of `files`, folds them into the first and writes the result where the user
  // wants it; or, where the options ask for that instead, writes what would become one. `projects`:
  // all that are loaded; their order is the order of the run, and members of `files` that are none
  // of them don't count. Everything is shown to the user. Throws what nobody foresees, a lack of
  // memory above all: the models are gone then, FinishRun is the caller's.
  RunResult Run(const std::set<HostObject>& files, const std::vector<HostObject>& projects,
                SavingMode mode);

 private:
  void WarnOfLargeFiles();
  bool AskForOutput();
  bool TreeMapIsRight();
  void Prepare();
  bool ReadAll();
  bool Read(HostObject project);
  bool PrepareModels();
  void PlanPlaces();
  bool MoveToItsPlace(const RunModel& model);
  std::unique_ptr<MarkingAhead> BeginAhead();
  bool PrepareModel(const RunModel& model, int weight, MarkingAhead* ahead);
  MarkingTask TaskOf(const RunModel& model);
  void TellMergeFailed();
  bool Fold();
  bool Save();
  void RenewHeaderIfWanted();
  void Conclude();
  RunResult EndProposal();
  RunResult EndDryRun();
  void TellStage(RunStage stage, const WideString& path = {});
  std::vector<IfcDocument*> MergeableDocuments() const;
  RunResult End(bool written);

  HostScene& scene_;
  MergeShell& shell_;
  RunObserver* observer_ = nullptr;
  std::vector<HostObject> files_;  // in the order of the run
  std::vector<HostObject> projects_;
  std::vector<RunModel> models_;
  std::optional<MapPlaces> places_;  // where models are placed by a map
  SavingMode mode_ = SavingMode::kMergeActive;
  WideString outputPath_;
  WideString outputKeptAt_;
};

}  // namespace corvel
