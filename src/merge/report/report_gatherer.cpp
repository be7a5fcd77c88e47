#include "merge/report/report_gatherer.h"

#include <algorithm>
#include <array>
#include <utility>

#include "core/shown_paths.h"
#include "merge/federation/attribute_values.h"
#include "merge/federation/tree/length_in_metres.h"
#include "merge/marking.h"
#include "merge/merge_job.h"
#include "merge/report/shared/model_places.h"
#include "merge/report/shared/report_file.h"
#include "platform/file.h"
#include "platform/platform.h"

namespace corvel {

namespace {

constexpr double kNanosecondsPerSecond = 1e9;

// Of an entry in a container it is the container's.
std::int64_t BytesOf(const WideString& path) {
  platform::File file;
  const WideString onDisk = path.substr(0, path.find(u'|'));
  return file.Open(onDisk, platform::OpenMode::kRead) ? file.Size() : 0;
}

// The last one of the assignment is the one that counts: "MILLIMETRE", "FOOT".
WideString LengthUnitName(const IFC::IfcEntity* assignment) {
  const EntityList* const units =
      assignment == nullptr ? nullptr : ReferencesOf(*assignment, "Units");
  WideString name;
  if (units == nullptr) return name;
  for (const IFC::IfcEntity* const unit : *units) {
    if (unit == nullptr || WordOf(*unit, "UnitType") != "LENGTHUNIT") continue;
    const std::string_view word = WordOf(*unit, "Name");
    name = word.empty() ? TextOf(*unit, "Name") : Widen(WordOf(*unit, "Prefix")) + Widen(word);
  }
  return name;
}

std::size_t CountDeleted(const NumberTable& records) {
  std::size_t count = 0;
  for (const auto& [number, entity] : records) {
    if (IsDeleted(*entity)) ++count;
  }
  return count;
}

// What becomes of the products that a step of federation takes away, and of whose objects nothing
// else is known.
DropReason ReasonOfStep(std::string_view step) {
  if (step == "prune") return DropReason::kHangsOnDropped;
  return step == "belongings" ? DropReason::kJoined : DropReason::kNotNeeded;
}

}  // namespace

ReportGatherer::ReportGatherer(std::string command, unsigned threads) : threads_(threads) {
  report_.command = std::move(command);
  report_.startedAt = TimeOfReport();
}

ReportGatherer::~ReportGatherer() = default;

void ReportGatherer::EndStage() {
  const std::int64_t now = platform::Get().MonotonicNanoseconds();
  if (!report_.stages.empty()) {
    StageReport& last = report_.stages.back();
    last.seconds = static_cast<double>(now - stageBegan_) / kNanosecondsPerSecond;
    last.memoryBytes = platform::ProcessMemoryBytes();
  }
  stageBegan_ = now;
}

void ReportGatherer::StageBegins(RunStage stage, const WideString& path) {
  EndStage();
  beingMarked_.reset();
  report_.stages.push_back({stage, WithShownPaths(path)});
}

std::size_t ReportGatherer::IndexOf(const IfcDocument& document) const {
  const auto found = std::find_if(inputs_.begin(), inputs_.end(),
                                  [&](const Input& input) { return input.document == &document; });
  return static_cast<std::size_t>(found - inputs_.begin());
}

void ReportGatherer::ModelIsRead(const IfcDocument& document) {
  Input& input = inputs_.emplace_back();
  InputReport& told = report_.inputs.emplace_back();
  input.document = &document;
  told.path = WithShownPaths(document.getFilePath());
  told.bytes = BytesOf(document.getFilePath());
  told.schema = document.KnownSchemaIdentifier();
  told.isRead = document.IsParsed();
  told.takesPart = told.isRead;
  told.remarks = document.Remarks();
  if (document.mainContainer == nullptr) return;
  const IFC::MainContainer& container = *document.mainContainer;
  told.lengthUnit = LengthUnitName(document.getIfcUnitAssignment());
  told.metresPerUnit = MetresPerLengthUnit(document.getIfcUnitAssignment());
  told.records.in = container.originalEntities.Size();
  input.fates.Collect(container);
}

void ReportGatherer::ModelsAreCompared(const std::vector<RunModel>& models) {
  for (std::size_t i = 0; i < models.size(); ++i) {
    const RunModel& model = models[i];
    InputReport& told = report_.inputs[i];
    told.takesPart = model.mergeable;
    told.schemaDiffers = !model.schemaValid;
    told.unitsDiffer = !model.unitsValid;
    told.unitDifferences = model.unitDifferences;
    if (!model.mergeable) inputs_[i].fates.DropRest(DropReason::kModelLeftOut);
  }
}

void ReportGatherer::ModelIsMoved(const IfcDocument& document,
                                  const std::array<double, 3>& offsetMm) {
  report_.inputs[IndexOf(document)].offsetMm = offsetMm;
}

void ReportGatherer::ObjectsAreLeftOut(const IfcDocument& document,
                                       const std::vector<LeftOutObject>& objects) {
  inputs_[IndexOf(document)].fates.NoteLeftOut(objects);
}

void ReportGatherer::ModelIsMarked(const IfcDocument& document, MarkingStep step,
                                   bool anyIsDeleted) {
  Input& input = inputs_[IndexOf(document)];
  input.isMarked = true;
  if (!anyIsDeleted) return;
  input.fates.NoteMarked(step);
  if (step != MarkingStep::kSwept) return;
  input.deletedByMarking = CountDeleted(document.mainContainer->originalEntities);
}

void ReportGatherer::ModelHasItsTurn(const IfcDocument& document) {
  beingMarked_ = IndexOf(document);
  inputs_[*beingMarked_].hadItsTurn = true;
}

namespace {

// The objects of the document at `index` as its file has them, wherever they have gone since.
const NumberTable& RecordsOf(const std::vector<IfcDocument*>& documents, std::size_t index) {
  const IfcDocument& merged = *documents.front();
  return index == 0 ? merged.mainContainer->originalEntities
                    : merged.absorbedContainers[index - 1]->originalEntities;
}

bool GaveWay(const IFC::IfcEntity* project, const NumberTable& written) {
  return project != nullptr && !IsDeleted(*project) && written.Find(project->marker) != project;
}

}  // namespace

// The usual fold, which adds up: each later model came with all that was not deleted, but for its
// project, and nothing was made or deleted since.
bool ReportGatherer::FoldTookAllButProjects(const std::vector<IfcDocument*>& documents) const {
  const IFC::MainContainer& merged = *documents.front()->mainContainer;
  const bool isMarked = inputs_[IndexOf(*documents.front())].isMarked;
  if (!report_.steps.empty() || (isMarked && !merged.MarkersAreTrue())) return false;
  std::size_t size = RecordsOf(documents, 0).Size();
  for (std::size_t i = 1; i < documents.size(); ++i) {
    const IFC::IfcEntity* const project = documents[i]->getIfcProject();
    if (!GaveWay(project, merged.entities)) return false;
    size += RecordsOf(documents, i).Size() - inputs_[IndexOf(*documents[i])].deletedByMarking - 1;
  }
  return merged.entities.Size() == size;
}

void ReportGatherer::ModelsAreFolded(const std::vector<IfcDocument*>& documents) {
  folded_ = documents;
  isOnlyFolded_ = FoldTookAllButProjects(documents);
  if (isOnlyFolded_) return;
  for (const IfcDocument* const document : documents) {
    inputs_[IndexOf(*document)].fates.NoteGone(*documents.front()->mainContainer,
                                               DropReason::kNotNeeded);
  }
}

void ReportGatherer::StepIsDone(const FederationNote& note) {
  StepReport& step = report_.steps.emplace_back();
  step.step = note.step;
  step.foundWork = note.foundWork;
  for (const auto& [name, count] : note.counts) step.counts.emplace_back(name, count);
  for (const auto& [name, lines] : note.lists) {
    if (!lines->empty()) step.lists.emplace_back(name, *lines);
  }
  if (note.model != nullptr) step.input = IndexOf(*note.model);
  for (const IfcDocument* const document : folded_) {
    inputs_[IndexOf(*document)].fates.NoteGone(*folded_.front()->mainContainer,
                                               ReasonOfStep(note.step));
  }
}

void ReportGatherer::ModelIsDone(const std::vector<IfcDocument*>& documents) {
  if (isOnlyFolded_ && FoldTookAllButProjects(documents)) {
    CountFoldedRecords(documents);
  } else {
    CountRecords(documents);
  }
  const IFC::IfcEntity* const units = documents.front()->getIfcUnitAssignment();
  report_.output.lengthUnit = LengthUnitName(units);
  report_.output.metresPerUnit = MetresPerLengthUnit(units);
  std::vector<PlacedInput> placed;
  for (const IfcDocument* const document : documents) {
    const std::size_t index = IndexOf(*document);
    placed.push_back({static_cast<std::uint32_t>(index), inputs_[index].fates.Placed()});
  }
  report_.places = CollectPlaces(*documents.front(), placed, {.threads = threads_});
}

void ReportGatherer::CountFoldedRecords(const std::vector<IfcDocument*>& documents) {
  OutputReport& output = report_.output;
  output.isKnown = true;
  for (std::size_t i = 0; i < documents.size(); ++i) {
    const std::size_t index = IndexOf(*documents[i]);
    RecordTally& tally = report_.inputs[index].records;
    tally.leftOut = inputs_[index].deletedByMarking;
    tally.joined = i == 0 ? 0 : 1;
    tally.kept = tally.in - tally.leftOut - tally.joined;
    output.records += tally.kept;
  }
}

// By what is filed under its own number in the model that is written: that is what is written.
void ReportGatherer::CountRecords(const std::vector<IfcDocument*>& documents) {
  const IfcDocument& merged = *documents.front();
  const NumberTable& written = merged.mainContainer->entities;
  OutputReport& output = report_.output;
  output.isKnown = true;
  output.records = written.Size() - CountDeleted(written);
  output.made = output.records;
  for (std::size_t i = 0; i < documents.size(); ++i) {
    const std::size_t index = IndexOf(*documents[i]);
    RecordTally& tally = report_.inputs[index].records;
    std::size_t deleted = 0;
    for (const auto& [number, entity] : RecordsOf(documents, i)) {
      if (IsDeleted(*entity)) {
        ++deleted;
      } else if (written.Find(entity->marker) == entity) {
        ++tally.kept;
      } else {
        ++tally.joined;
      }
    }
    tally.leftOut = std::min(inputs_[index].deletedByMarking, deleted);
    tally.notNeeded = deleted - tally.leftOut;
    output.made -= tally.kept;
  }
}

void ReportGatherer::TallyProducts() {
  report_.output.products = 0;
  for (std::size_t i = 0; i < inputs_.size(); ++i) {
    InputReport& told = report_.inputs[i];
    told.products = inputs_[i].fates.Tally();
    told.classes = inputs_[i].fates.TallyByClass();
    report_.output.products += told.products.kept;
  }
}

// The models may be gone by now.
void ReportGatherer::RunEnds(const RunResult& result) {
  if (std::exchange(hasEnded_, true)) return;
  EndStage();
  OutputReport& output = report_.output;
  output.written = result.written && !report_.isDryRun;
  output.cancelled = result.cancelled;
  output.keptAt = result.outputKeptAt;
  if (output.written) output.bytes = BytesOf(output.path);
  output.path = WithShownPaths(output.path);
  // A run that ended early has no result: nothing is kept of any input.
  for (std::size_t i = 0; i < inputs_.size(); ++i) {
    InputReport& told = report_.inputs[i];
    if (output.isKnown && told.takesPart) continue;
    if (!inputs_[i].hadItsTurn || beingMarked_ == i) inputs_[i].fates.Forget();
    told.records.leftOut = told.records.in;
    inputs_[i].fates.DropRest(DropReason::kModelLeftOut);
  }
  TallyProducts();
  inputs_.clear();
  folded_.clear();
}

}  // namespace corvel
