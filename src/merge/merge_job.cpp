#include "merge/merge_job.h"

#include <algorithm>
#include <utility>

#include "core/cancellation.h"
#include "core/outcome.h"
#include "merge/chosen_objects.h"
#include "merge/federation/federation.h"
#include "merge/federation/new_header.h"
#include "merge/federation/tree/join_trees.h"
#include "merge/federation/units/convert_units.h"
#include "merge/guid_choice.h"
#include "merge/merge_documents.h"
#include "merge/project_offsets.h"
#include "merge/units.h"
#include "platform/file.h"
#include "platform/platform.h"
#include "step/log/ifc_log.h"
#include "step/streams/model_form.h"

namespace corvel {

namespace {

// Percent of the overall bar; writing has the rest.
constexpr int kReadingWeight = 30;
constexpr int kDeletingWeight = 10;
constexpr int kMergingWeight = 15;

// Flags of the system's message box.
constexpr unsigned kErrorIcon = 16;
constexpr unsigned kWarningIcon = 48;

constexpr std::int64_t kLargeFiles = 104857600;

void Log(WideView text) { IfcLog::Instance().LogText(text); }

std::int64_t SizeOf(const WideString& path) {
  platform::File file;
  return file.Open(path, platform::OpenMode::kRead) ? file.Size() : 0;
}

// What the save dialog starts with for an output next to `path` with `ending` behind its name. An
// entry of a container gives its own name and the container's folder.
OutputSuggestion SuggestionFor(const WideString& path, const WideString& ending) {
  const std::size_t bar = path.rfind(u'|');
  const bool isEntry = bar != WideString::npos;
  const WideView file = WideView(path).substr(0, bar);
  const std::size_t folderEnd = platform::FindLastSeparator(file) + 1;
  const WideView name = platform::FileNameOf(isEntry ? WideView(path).substr(bar + 1) : file);
  OutputSuggestion suggestion;
  suggestion.folder = file.substr(0, folderEnd);
  suggestion.name = WideString(name.substr(0, name.rfind(u'.'))) + ending;
  suggestion.extension = FileStream::ExtensionOf(name);
  return suggestion;
}

bool HasModelExtension(const WideString& path) {
  return FileStream::FormOf(path) != FileStream::ModelForm::kNone;
}

// A viewer lives on after a run, and has better use for the memory of its models. Once for all of
// them: each look at what is free costs as much as there is.
void Free(std::vector<RunModel>& models) {
  if (models.empty()) return;
  models.clear();
  platform::ReturnFreeMemory();
}

// Frees the models however a run ends.
class ModelsOfRun {
 public:
  explicit ModelsOfRun(std::vector<RunModel>& models) : models_(models) {}
  ~ModelsOfRun() { Free(models_); }
  ModelsOfRun(const ModelsOfRun&) = delete;
  ModelsOfRun& operator=(const ModelsOfRun&) = delete;

 private:
  std::vector<RunModel>& models_;
};

}  // namespace

MergeJob::MergeJob(HostScene& scene, MergeShell& shell) : scene_(scene), shell_(shell) {}

MergeJob::~MergeJob() = default;

std::set<HostObject> MergeJob::CollectProjectsOfMode(SavingMode mode) {
  std::set<HostObject> projects = ObjectSelection(scene_).ProjectsOf(mode);
  const auto offender = std::find_if(projects.begin(), projects.end(), [this](HostObject project) {
    return !HasModelExtension(scene_.ProjectPath(project));
  });
  if (offender == projects.end()) return projects;
  const WideString path = scene_.ProjectPath(*offender);
  projects.erase(offender);
  shell_.Reporter()("could_not_open_file_extension", u" " + path, kReportShow);
  return projects;
}

RunResult MergeJob::Run(const std::set<HostObject>& files, const std::vector<HostObject>& projects,
                        SavingMode mode) {
  mode_ = mode;
  projects_ = projects;
  files_.clear();
  outputKeptAt_.clear();
  // In the order of the host's list: a set has that of the handles.
  for (const HostObject project : projects) {
    if (files.count(project) != 0) files_.push_back(project);
  }
  shell_.HideOptionsWindow();
  if (files_.size() < 2) {
    const WideString caption = shell_.Text("error_caption");
    shell_.ShowBox(caption, shell_.Text("combining_failed"), kErrorIcon);
    return {};
  }
  WarnOfLargeFiles();
  observer_ = shell_.Observer();
  const ModelsOfRun whileItLasts(models_);
  Prepare();
  const bool proposes = shell_.Options().federation.proposeTree.has_value();
  const bool writesModel = !proposes && !shell_.Options().isDryRun;
  if (!TreeMapIsRight() || (writesModel && !AskForOutput()) || !ReadAll()) return End(false);
  // Reading is over, so that an output may take the place of a work file that it has left.
  if (writesModel) outputPath_ = shell_.OutputPath();
  if (!PrepareModels() || !Fold()) return End(false);
  if (proposes) return EndProposal();
  if (!writesModel) return EndDryRun();
  const bool saved = Save();
  // An output that is at its place is one, whatever was pressed since.
  if (!saved && Cancellation::OfProcess().WasConfirmed()) return End(false);
  Conclude();
  return End(saved);
}

// The name of the program in small letters is never equal to a text with a capital one: nobody has
// seen this box, and nobody will before somebody asks for it.
void MergeJob::WarnOfLargeFiles() {
  const WideString program = platform::Get().ExecutablePath();
  if (ToLowerAscii(platform::FileNameOf(program)) != u"Orlenta.exe") return;
  std::int64_t size = 0;
  for (const HostObject project : files_) size += SizeOf(scene_.ProjectPath(project));
  if (size > kLargeFiles) {
    shell_.ShowBox(u"Corvel", shell_.Text("large_file_question"), kWarningIcon);
  }
}

void MergeJob::Prepare() {
  shell_.StartRun();
  Cancellation::OfProcess().ForgetAnswer();
  IfcLog::Instance().Close();
  IfcLog::Instance().Open(scene_.ProjectPath(projects_.front()));
  shell_.OpenProgress(shell_.Text("btn_merge"));
  shell_.SetOverallText(shell_.Text("progress_bar_overall_progress"));
  shell_.SetCurrentText(shell_.Text("checking_files"));
}

bool MergeJob::AskForOutput() {
  const WideString path = scene_.ProjectPath(files_.front());
  return shell_.AskForOutput(SuggestionFor(path, shell_.Text("merged")));
}

// Before models are read for minutes.
bool MergeJob::TreeMapIsRight() {
  const auto map = shell_.Options().federation.treeMap;
  return !map || TreeMapIsGood(*map, shell_.Reporter());
}

bool MergeJob::ReadAll() {
  // Ends at the first that is cancelled.
  return std::all_of(files_.begin(), files_.end(),
                     [this](HostObject project) { return Read(project); });
}

bool MergeJob::Read(HostObject project) {
  const WideString path = scene_.ProjectPath(project);
  const int projectCount = static_cast<int>(projects_.size());
  shell_.SetCurrentText(shell_.Text("checking_files"));
  shell_.SetCurrentFile(path);
  Log(u"Reading file: " + path);
  TellStage(RunStage::kRead, path);
  const MergeOptions options = shell_.Options();
  auto document =
      std::make_unique<IfcDocument>(options.ignoreEnumErrors, shell_.Reporter(), shell_.Ticks());
  document->threads = options.threads;
  if (options.tolerant) document->ReadTolerantly();
  // A work file without a name takes nobody's place.
  if (options.workFolder) {
    document->KeepWorkFileIn(*options.workFolder);
  } else {
    std::vector<WideString> reserved;
    for (const HostObject file : files_) reserved.push_back(scene_.ProjectPath(file));
    document->ReservePaths(std::move(reserved));
  }
  Log(u"ParseFile: " + path);
  shell_.StartStage(kReadingWeight / projectCount);
  shell_.SetOverallText(shell_.Text("progress_bar_overall_progress"));
  shell_.SetCurrentText(shell_.Text("reading_file"));
  shell_.SetCurrentFile(path);
  Log(u"Reading file: " + path);
  document->OpenFile(path, projectCount);
  if (observer_ != nullptr) observer_->ModelIsRead(*document);
  if (document->IsCancelled()) {
    Log(u"Reading file cancelled.");
    return false;
  }
  models_.emplace_back(std::move(document), project);
  return true;
}

// A model that was not read to its end stops the run, as nobody wants half a building.
bool MergeJob::PrepareModels() {
  shell_.SetCurrentText(shell_.Text("checking_files"));
  TellStage(RunStage::kCompare);
  if (shell_.Options().federation.convertUnits &&
      !ConvertUnitsOfRun(models_, shell_.Ticks(), observer_)) {
    if (!Cancellation::OfProcess().WasConfirmed()) TellMergeFailed();
    return false;
  }
  const int mergeableCount = CheckUnits(models_, shell_);
  shell_.TellModelsCompared(models_);
  if (observer_ != nullptr) observer_->ModelsAreCompared(models_);
  if (mergeableCount < 2) return false;
  PlanPlaces();
  const std::unique_ptr<MarkingAhead> ahead = BeginAhead();
  for (const RunModel& model : models_) {
    if (!model.mergeable) continue;
    if (!model.document->IsParsed()) {
      shell_.Reporter()("",
                        shell_.Text("unable_to_continue") + model.document->getFilePath() +
                            shell_.Text("merging_terminate"),
                        kReportShow);
      return false;
    }
    if (!PrepareModel(model, kDeletingWeight / (mergeableCount + 1), ahead.get())) {
      TellMergeFailed();
      return false;
    }
    if (Cancellation::OfProcess().WasConfirmed()) return false;
  }
  if (ahead) ahead->FinishFolds();
  return true;
}

// The models behind the first, as far as nothing happens to them before they are marked. Null for
// tolerant readings, and where the scene may change until a model has its turn.
std::unique_ptr<MarkingAhead> MergeJob::BeginAhead() {
  const MergeOptions options = shell_.Options();
  const bool goesAlone = options.threads < 2 || options.tolerant;
  if (goesAlone || places_ || !shell_.SceneStandsStill()) return nullptr;
  const bool keepsGuids = options.federation.guids == GuidHandling::kKeep;
  auto ahead = std::make_unique<MarkingAhead>(options.threads, keepsGuids);
  for (const RunModel& model : models_) {
    if (!model.mergeable || &model == &models_.front()) continue;
    if (!model.document->IsParsed()) break;  // the run ends there
    if (!model.unitDifferences.empty() || IsMoved(model.hostProject, scene_)) continue;
    ahead->Begin(*model.document, TaskOf(model));
  }
  return ahead;
}

// Of all models, before the first is moved.
void MergeJob::PlanPlaces() {
  places_.reset();
  if (!shell_.Options().federation.placeByMap) return;
  std::vector<MapPlaces::Model> models;
  for (const RunModel& model : models_) {
    if (model.mergeable && model.document->IsParsed()) {
      models.push_back({model.document.get(), model.hostProject});
    }
  }
  if (models.empty() || models.front().document != models_.front().document.get()) return;
  places_.emplace(models, scene_);
  shell_.TellPlaces(places_->Warnings());
}

bool MergeJob::MoveToItsPlace(const RunModel& model) {
  IfcDocument& document = *model.document;
  if (places_) return places_->Place({&document, model.hostProject}, scene_);
  return ApplyProjectOffsets(document, model.hostProject, scene_);
}

// Its offset comes before its objects are chosen: what carries the offset is kept with them. False
// when there is no number left for that.
bool MergeJob::PrepareModel(const RunModel& model, int weight, MarkingAhead* ahead) {
  IfcDocument& document = *model.document;
  const WideString path = document.getFilePath();
  shell_.SetCurrentText(shell_.Text("deleting_entities_from"));
  shell_.SetCurrentFile(path);
  TellStage(RunStage::kChoose, path);
  if (observer_ != nullptr) observer_->ModelHasItsTurn(document);
  Log(u"Procesing AdjustUnit");
  // The first is what the others are measured by.
  if (&model != &models_.front()) AdjustUnit(model);
  Log(u"Applying projects offsets to file: " + path);
  if (!MoveToItsPlace(model)) return false;
  Log(u"Done.");
  Log(u"getObjectsToSaveAndDelete");
  const bool isAhead = ahead != nullptr && ahead->Has(document);
  MarkingTask task;
  if (!isAhead) task = TaskOf(model);
  shell_.StartStage(weight);
  Log(u"Deleting objects from: " + path);
  if (isAhead) {
    ahead->Finish(document, shell_.Ticks());
  } else {
    document.DeleteObjects(task.deletePairs, task.savePairs, false, task.deleteOpenings,
                           task.fileCount, task.listener);
    if (ahead != nullptr) ahead->BeginFold(document);
  }
  Log(u"Done.");
  return true;
}

// What the host wants of the model.
MarkingTask MergeJob::TaskOf(const RunModel& model) {
  ObjectSelection selection(scene_);
  std::vector<HostObject> save;
  std::vector<HostObject> leftOut;
  selection.getObjectsID(mode_, model.hostProject, save, leftOut);
  MarkingTask task;
  task.savePairs = selection.ToMarkerPairs(save);
  task.deletePairs = selection.ToMarkerPairs(leftOut);
  task.deleteOpenings = shell_.Options().deleteOpenings;
  task.fileCount = static_cast<int>(projects_.size());
  task.listener = ListenerFor(observer_, *model.document);
  TellChoice(observer_, *model.document, model.hostProject, scene_, mode_, leftOut);
  return task;
}

// With what waits to be shown.
void MergeJob::TellMergeFailed() {
  shell_.Reporter()("", u"Error occurred while merging files. Merging will be terminated.",
                    kReportShow);
}

bool MergeJob::Fold() {
  shell_.SetCurrentText(shell_.Text("btn_merge"));
  shell_.StartStage(kMergingWeight);
  TellStage(RunStage::kFold);
  Log(u"Processing ResetGenerateNewGuidMarker");
  RememberedGuidChoice() = kAskAboutGuids;
  Log(u"Merging files...");
  const std::vector<IfcDocument*> documents = MergeableDocuments();
  const auto announce = [this](const IfcDocument& source) {
    shell_.SetCurrentText(shell_.Text("btn_merge"));
    shell_.SetCurrentFile(source.getFilePath());
  };
  const FederationChoices federation = shell_.Options().federation;
  PreparedFederation prepared = PrepareFederation(documents, federation);
  if (places_) prepared.oneMap = places_->BehindFold();
  const bool merged = MergeDocuments(documents, {}, announce) != nullptr;
  // A fold that was stopped half way has a model too, but not the one that was wanted.
  if (Cancellation::OfProcess().WasConfirmed()) return false;
  if (!merged) {
    TellMergeFailed();
    return false;
  }
  documents.front()->RemoveUnsavedEntities(nullptr, 0, {});
  if (observer_ != nullptr) observer_->ModelsAreFolded(documents);
  TellStage(RunStage::kJoin);
  if (!RunFederation(documents, federation, prepared, shell_.Reporter(), shell_.Ticks(),
                     observer_)) {
    if (!Cancellation::OfProcess().WasConfirmed()) TellMergeFailed();
    return false;
  }
  TellStage(RunStage::kLook);
  if (observer_ != nullptr) observer_->ModelIsDone(documents);
  if (!shell_.Options().isDryRun) shell_.SaveOptions();
  IfcLog::Instance().Flush();
  Log(u"Done.");
  return true;
}

std::vector<IfcDocument*> MergeJob::MergeableDocuments() const {
  std::vector<IfcDocument*> documents;
  for (const RunModel& model : models_) {
    if (model.mergeable) documents.push_back(model.document.get());
  }
  return documents;
}

bool MergeJob::Save() {
  TellStage(RunStage::kWrite);
  shell_.SetCurrentText(shell_.Text("exporting_file_as"));
  shell_.SetCurrentFile(outputPath_);
  shell_.StartLastStage();
  shell_.RememberOutput(outputPath_);
  Log(u"Saving to output file ...");
  IfcDocument& document = *models_.front().document;
  RenewHeaderIfWanted();
  document.numbers = shell_.Options().federation.numbers;
  document.isReleasedNext = true;
  const bool complete = Outcome{document.SaveFile(outputPath_)} == Outcome::kComplete;
  outputKeptAt_ = document.outputKeptAt;
  Log(u"Saving DONE");
  return complete;
}

void MergeJob::RenewHeaderIfWanted() {
  if (!shell_.Options().federation.newHeader) return;
  std::vector<WideString> inputs;
  for (const RunModel& model : models_) {
    if (model.mergeable) inputs.push_back(model.document->getFilePath());
  }
  RenewHeader(*models_.front().document->getHeader(), outputPath_, inputs);
}

void MergeJob::Conclude() {
  IfcLog::Instance().Flush();
  shell_.SetCurrentText(shell_.Text("finalizing"));
  shell_.EnableOpenRecent();
  shell_.ResetProgress();
}

// The list is written, and there is no output that could be opened.
RunResult MergeJob::EndProposal() {
  Log(u"Proposed tree written: " + shell_.Options().federation.proposeTree.value_or(WideString()));
  IfcLog::Instance().Flush();
  shell_.ResetProgress();
  return End(true);
}

// Nothing is there that could be opened, and the choices of the window are kept by a real run.
RunResult MergeJob::EndDryRun() {
  Log(u"Dry run: nothing is written.");
  IfcLog::Instance().Flush();
  shell_.ResetProgress();
  return End(true);
}

void MergeJob::TellStage(RunStage stage, const WideString& path) {
  if (observer_ != nullptr) observer_->StageBegins(stage, path);
}

// The models go before the user is asked about the log, which may take a while.
RunResult MergeJob::End(bool written) {
  RunResult result;
  for (const RunModel& model : models_) {
    for (const WideString& remark : model.document->Remarks()) {
      result.remarks.emplace_back(model.document->getFilePath(), remark);
    }
  }
  places_.reset();
  result.written = written;
  result.cancelled = Cancellation::OfProcess().WasConfirmed();
  result.outputKeptAt = std::move(outputKeptAt_);
  if (observer_ != nullptr) observer_->RunEnds(result);
  Free(models_);
  shell_.FinishRun();
  result.cancelled = Cancellation::OfProcess().WasConfirmed();
  return result;
}

}  // namespace corvel
