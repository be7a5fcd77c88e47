#include "merge/document.h"

#include "merge/document_merge.h"
#include "merge/marking.h"
#include "schema/registry.h"
#include "schema/schema_choice.h"
#include "step/reader/parser.h"
#include "step/reader/schema_identifier.h"
#include "step/writer/step_writer.h"

namespace corvel {

IfcDocument::IfcDocument(bool ignoreEnumErrors, ErrorReporter showError, ProgressCallback progress)
    : showError_(showError),
      progress_(progress),
      parser_(std::make_unique<Parser>(ignoreEnumErrors, showError, progress)) {}

// Absorbed containers hold objects that this document's own container refers to, so they go last.
IfcDocument::~IfcDocument() {
  parser_.reset();
  mainContainer.reset();
  absorbedContainers.clear();
}

void IfcDocument::ReservePaths(std::vector<WideString> paths) {
  parser_->workFileRules.reserved = std::move(paths);
}

void IfcDocument::KeepWorkFileIn(WideString folder) {
  parser_->workFileRules.folder = std::move(folder);
}

void IfcDocument::ReadTolerantly() { parser_->tolerance = std::make_unique<Tolerance>(); }

int IfcDocument::OpenFile(const WideString& path, int share) {
  // Also for a file that cannot be opened: reports name it.
  parser_->filePath = path;
  const bool tolerant = parser_->tolerance != nullptr;
  const SchemaOfFile schema = ReadSchemaOfFile(path, showError_, tolerant);
  if (schema.damaged) parser_->state = ParserState::kFailed;
  if (!schema.opened) return 0;
  knownSchemaIdentifier_ = schema.identifier;
  release_ =
      tolerant ? ChooseTolerantly(path) : ChooseSchemaNamespace(schema.identifier, showError_);
  if (!release_) {
    showError_("unknown_schema_identifier", u": " + schema.identifier, kReportShow);
    return 0;
  }
  parser_->SelectSchema(FactoriesOf(*release_));
  parser_->carrying.otherReleases = BuiltFactories();
  parser_->aheadRules.threads = threads;
  const bool parsed = parser_->ParseFile(path, share);
  // A file that names no schema is given the name of its release.
  if (parsed && tolerant && schema.identifier.empty()) {
    parser_->headerToken->schemaIdentifier = Widen(NameOf(*release_));
  }
  mainContainer = std::move(parser_->mainContainer);
  return parsed ? 1 : 0;
}

SchemaNamespace IfcDocument::ChooseTolerantly(const WideString& path) {
  const SchemaChoice choice = ChooseSchemaTolerantly(knownSchemaIdentifier_, path);
  if (!choice.told.empty()) parser_->tolerance->Tell(choice.told);
  return choice.release;
}

bool IfcDocument::HasSchemaOf(const IfcDocument& other) const {
  if (knownSchemaIdentifier_ == other.knownSchemaIdentifier_) return true;
  return parser_->tolerance != nullptr && release_ && release_ == other.release_;
}

WideString IfcDocument::readSchemaIdentifier(const WideString& path) {
  return ReadSchemaOfFile(path, showError_).identifier;
}

IFC::IfcEntity* IfcDocument::CreateESet(std::string name) {
  for (char& c : name) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  const EntityCreator create =
      parser_->factories == nullptr ? nullptr : parser_->factories->Find(name);
  if (create == nullptr) {
    showError_(
        "",
        u"Creating eSet error. No eSet called: " + Widen(name) + u" exists in map of functions.",
        kReportShow);
    return nullptr;
  }
  if (mainContainer == nullptr) {
    showError_("", u"Creating eSet error. There is no model any more: " + getFilePath(),
               kReportShow);
    return nullptr;
  }
  IFC::IfcEntity* const entity = create(mainContainer->Pool());
  mainContainer->AddEntity(entity);
  return mainContainer->HasRunOutOfNumbers() ? nullptr : entity;
}

int IfcDocument::SaveFile(const WideString& path) {
  try {
    StepWriter writer(showError_, progress_,
                      {mainContainer.get(), getHeader(), getISO(), getIfcUnitAssignment(), numbers,
                       isReleasedNext, threads},
                      path);
    const Outcome outcome = writer.WriteFile();
    outputKeptAt = writer.KeptAt();
    return static_cast<int>(outcome);
  } catch (...) {
    return static_cast<int>(Outcome::kFailed);
  }
}

bool IfcDocument::MergeDocument(IfcDocument& source, unsigned mergeLevel, bool nameAndGuid) {
  if (&source == this || mainContainer == nullptr || source.mainContainer == nullptr) {
    showError_("", u"There is no model to merge: " + source.getFilePath(), kReportShow);
    if (mergeStatus == MergeStatus::kNotMerged) mergeStatus = MergeStatus::kFailed;
    return false;
  }
  // Before the fold, so that what has moved over stays alive if the fold ends half way.
  absorbedContainers.push_back(std::move(source.mainContainer));
  return DocumentMerge(
             {*mainContainer, generatedGuids, parser_->guidIndex, mergeStatus, getFilePath()},
             *absorbedContainers.back(), source.getFilePath(), showError_, progress_)
      .Run(mergeLevel, nameAndGuid);
}

bool IfcDocument::DeleteObjects(std::vector<MarkerPair>& deletePairs,
                                std::vector<MarkerPair>& savePairs, bool deleteUnrelated,
                                bool deleteOpenings, int fileCount,
                                const MarkingListener& listener) {
  return corvel::DeleteObjects(*mainContainer,
                               {deletePairs, savePairs, deleteUnrelated, deleteOpenings, fileCount,
                                progress_, getIfcProject(), showError_, &listener});
}

bool IfcDocument::MarkEntitiesAndChildrenToDelete(const std::vector<MarkerPair>& deletePairs) {
  corvel::MarkEntitiesAndChildrenToDelete(*mainContainer, deletePairs);
  return true;
}

void IfcDocument::MarkEntitiesAndChildrenAndParentsToSave(
    const std::vector<MarkerPair>& savePairs, const std::vector<MarkerPair>& deletePairs) {
  corvel::MarkEntitiesAndChildrenAndParentsToSave(*mainContainer, savePairs, deletePairs);
}

bool IfcDocument::DeleteParentsOfDeleted(int share, const WideString& prefix) {
  Deletion deletion(*mainContainer);
  return corvel::DeleteParentsOfDeleted(*mainContainer, deletion, {progress_, share, &prefix});
}

void IfcDocument::RemoveOpeningsFromDeleteList(std::vector<MarkerPair>& deletePairs) const {
  corvel::RemoveOpeningsFromDeleteList(*mainContainer, deletePairs);
}

bool IfcDocument::MarkDependentsToDelete(const std::vector<MarkerPair>& deletePairs, int share,
                                         const WideString& prefix) {
  Deletion deletion(*mainContainer);
  return corvel::MarkDependentsToDelete(*mainContainer, deletion, deletePairs,
                                        {progress_, share, &prefix});
}

bool IfcDocument::RemoveUnsavedEntities(ProgressCallback progress, int share,
                                        const WideString& prefix) {
  return corvel::RemoveUnsavedEntities(*mainContainer, {progress, share, &prefix});
}

bool IfcDocument::DeleteUnrelatedObjects() {
  if (mainContainer == nullptr) {
    showError_("", u"Unable to delete unrelated objects because parser is NULL", kReportShow);
    return false;
  }
  return corvel::DeleteUnrelatedObjects(*mainContainer, getIfcProject(), showError_);
}

void IfcDocument::VisitParentsAndSave(IFC::IfcEntity* entity) {
  corvel::VisitParentsAndSave(*mainContainer, *entity);
}

void IfcDocument::VisitChildrenAndSave(IFC::IfcEntity* entity) {
  corvel::VisitChildrenAndSave(*mainContainer, *entity);
}

WideString IfcDocument::getFilePath() const { return parser_->filePath; }

HeaderToken* IfcDocument::getHeader() const { return parser_->headerToken.get(); }

IFC::IfcEntity* IfcDocument::getIfcUnitAssignment() const { return parser_->ifcUnitAssignment; }

IFC::IfcEntity* IfcDocument::getIfcProject() const { return parser_->ifcProject; }

WideString IfcDocument::getSchemaIdentifier() const {
  if (parser_->headerToken == nullptr) {
    showError_("", u"HeaderToken is NULL.", kReportShow);
    return {};
  }
  return parser_->headerToken->schemaIdentifier;
}

WideString IfcDocument::getISO() const { return parser_->isoLine; }

bool IfcDocument::IsParsed() const { return parser_->state == ParserState::kParsed; }

const std::vector<WideString>& IfcDocument::Remarks() const { return parser_->remarks; }

bool IfcDocument::IsCancelled() const { return parser_->IsStopped(); }

}  // namespace corvel
