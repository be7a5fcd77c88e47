// One opened model as the rest of the system sees it: what can be done with it, put together from
// the reader, the writer, the marking and the fold.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "core/main_container.h"
#include "core/reporting.h"
#include "core/text.h"
#include "merge/marker_pair.h"
#include "merge/marking_steps.h"
#include "merge/merge_status.h"
#include "step/factories.h"
#include "step/numbers/number_form.h"

namespace corvel {

class Parser;
struct HeaderToken;

// Owns the parser, for its whole life, and after parsing the container. A merge moves the
// container of a document to the one that it was folded into; the getters go on working. What they
// give belongs to the document.
//
// An operation on the model needs the container: after OpenFile has given nonzero, and before the
// document is folded into another. Failures are reported; what is thrown besides is a lack of
// memory. Costs grow with the objects and their references, and with nothing faster.
class IfcDocument {
 public:
  // `ignoreEnumErrors`: unknown enumeration values are logged and replaced, not asked about.
  // `showError` is not null; `progress` may be.
  IfcDocument(bool ignoreEnumErrors, ErrorReporter showError, ProgressCallback progress);
  ~IfcDocument();
  IfcDocument(const IfcDocument&) = delete;
  IfcDocument& operator=(const IfcDocument&) = delete;

  // Names the inputs and the output of the run, which the work file of the reading never
  // overwrites. Call before OpenFile.
  void ReservePaths(std::vector<WideString> paths);
  // The work file of the reading goes to `folder`, without a name, and is gone when the reading
  // ends. Without this call it lies beside the input and stays there. Call before OpenFile.
  void KeepWorkFileIn(WideString folder);
  // Whatever the file holds that its release does not take is carried as it stands, and `Remarks`
  // tells it. Call before OpenFile.
  void ReadTolerantly();
  // Reads the whole file, once. `share`: number of documents of the run, for the progress. Nonzero
  // on success; failures have been reported, and IsParsed and IsCancelled tell them apart.
  int OpenFile(const WideString& path, int share);
  // The schema identifier of a file without reading its model; empty (reported) without a HEADER.
  WideString readSchemaIdentifier(const WideString& path);
  // A blank entity of the file's schema, filed under the next free number. `name` in any case.
  // Null (reported) for a class that the schema lacks, when the model is out of numbers, and
  // without a container.
  IFC::IfcEntity* CreateESet(std::string name);
  // Writes the model. 1: complete; 2: cancelled; 0: failed, and reported. In the last two cases the
  // path has what it had before, a file or none; see `outputKeptAt`. Throws nothing. All markers
  // are 0 behind a complete one, and the lists of the header are empty.
  int SaveFile(const WideString& path);

  // Folds `source` into this document. `mergeLevel`: 0 merges no spatial objects by name, 1 sites,
  // 2 also buildings, 3 also storeys; `nameAndGuid`: their GUIDs have to agree as well. Afterwards
  // the container of `source` belongs to this document. What counts is `mergeStatus`; once the
  // numbers have run out it is "failed" for good. Two different documents with a container each;
  // anything else fails, and is reported.
  bool MergeDocument(IfcDocument& source, unsigned mergeLevel, bool nameAndGuid);

  // Marks what is to be left out of the output and what is to stay, from here to the writing:
  // everything ends with the marker kToSave or kDeleted, or 0, which stays too. What is saved stays
  // whole; what is deleted takes along what it alone used. The lists are changed. With
  // `deleteOpenings` all openings are deleted. `fileCount`: models of the run, for the progress.
  // `listener` is told the steps while they are done.
  // False when the user cancelled; the marks are then half done.
  bool DeleteObjects(std::vector<MarkerPair>& deletePairs, std::vector<MarkerPair>& savePairs,
                     bool deleteUnrelated, bool deleteOpenings, int fileCount,
                     const MarkingListener& listener = {});

  // The steps of DeleteObjects, in their order. They look up objects by original number and skip
  // numbers that the model does not have. All but the first two need the parents lists. `share` and
  // `prefix` are for the progress; those with a result give false when the user cancelled.
  bool MarkEntitiesAndChildrenToDelete(const std::vector<MarkerPair>& deletePairs);
  void MarkEntitiesAndChildrenAndParentsToSave(const std::vector<MarkerPair>& savePairs,
                                               const std::vector<MarkerPair>& deletePairs);
  bool DeleteParentsOfDeleted(int share, const WideString& prefix);
  void RemoveOpeningsFromDeleteList(std::vector<MarkerPair>& deletePairs) const;
  bool MarkDependentsToDelete(const std::vector<MarkerPair>& deletePairs, int share,
                              const WideString& prefix);
  // Deletes what is unmarked and hangs on nothing that is saved. Silent without `progress`.
  bool RemoveUnsavedEntities(ProgressCallback progress, int share, const WideString& prefix);

  // Marks all that hangs together with the project as saved. False (reported) without one.
  bool DeleteUnrelatedObjects();
  // Marks as saved what hangs together with `entity`, which is not null, over its parents, or over
  // what it refers to. The parents lists are filled.
  void VisitParentsAndSave(IFC::IfcEntity* entity);
  void VisitChildrenAndSave(IFC::IfcEntity* entity);

  WideString getFilePath() const;  // what OpenFile was given, opened or not
  HeaderToken* getHeader() const;  // null when the file had none
  IFC::IfcEntity* getIfcUnitAssignment() const;
  IFC::IfcEntity* getIfcProject() const;
  WideString getSchemaIdentifier() const;
  // The identifier that OpenFile found; empty without one. Unlike the getter above it reports
  // nothing when the file had no header or was not read.
  const WideString& KnownSchemaIdentifier() const { return knownSchemaIdentifier_; }
  // The identifiers are the same; in tolerant readings also when one release serves both.
  bool HasSchemaOf(const IfcDocument& other) const;
  WideString getISO() const;
  bool IsParsed() const;
  // What of the file is not in the model, and that it lacks its closing line, as one does that was
  // cut short. The log has been told.
  const std::vector<WideString>& Remarks() const;
  // True also for a file that failed.
  bool IsCancelled() const;
  Parser& GetParser() const { return *parser_; }

  std::unique_ptr<IFC::MainContainer> mainContainer;
  // Every GUID made while merging; the entities point into these texts.
  std::set<std::string> generatedGuids;
  // Containers taken over by merging. Their pools hold entities and texts of this model.
  std::vector<std::unique_ptr<IFC::MainContainer>> absorbedContainers;
  MergeStatus mergeStatus = MergeStatus::kNotMerged;
  NumberForm numbers = NumberForm::kTold;  // of SaveFile
  // Threads that OpenFile and SaveFile work with, that of the caller among them; all have ended
  // when they return. What they do and tell is the same for every number.
  unsigned threads = 1;
  // SaveFile leaves the markers as they are instead of putting all of them to 0.
  bool isReleasedNext = false;
  // Where the complete output of the last SaveFile lies when that failed for one reason only: it
  // could not be put at its place. Empty otherwise.
  WideString outputKeptAt;

 private:
  SchemaNamespace ChooseTolerantly(const WideString& path);

  ErrorReporter showError_;
  ProgressCallback progress_;
  std::unique_ptr<Parser> parser_;
  WideString knownSchemaIdentifier_;
  std::optional<SchemaNamespace> release_;
};

}  // namespace corvel
