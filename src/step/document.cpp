#include "core/document.h"

#include "platform/platform.h"
#include "step/reader/parser.h"
#include "step/reader/schema_identifier.h"
#include "step/writer/step_writer.h"

namespace corvel {

IfcDocument::IfcDocument(bool ignoreEnumErrors, ErrorReporter showError, ProgressCallback progress)
    : showError_(showError),
      progress_(progress),
      parser_(std::make_unique<Parser>(ignoreEnumErrors, showError, progress)) {}

// Absorbed containers hold objects that this document's own container refers to. A viewer lives on
// after a run, and has better use for the memory of its models.
IfcDocument::~IfcDocument() {
  parser_.reset();
  mainContainer.reset();
  absorbedContainers.clear();
  platform::ReturnFreeMemory();
}

void IfcDocument::ReservePaths(std::vector<WideString> paths) {
  parser_->workFileRules.reserved = std::move(paths);
}

void IfcDocument::KeepWorkFileIn(WideString folder) {
  parser_->workFileRules.folder = std::move(folder);
}

int IfcDocument::OpenFile(const WideString& path, int share) {
  parser_->filePath = path;
  const SchemaOfFile schema = ReadSchemaOfFile(path, showError_);
  if (schema.damaged) parser_->state = ParserState::kFailed;
  if (!schema.opened) return 0;
  knownSchemaIdentifier_ = schema.identifier;
  if (!parser_->SelectSchema(schema.identifier)) {
    showError_("unknown_schema_identifier", u": " + schema.identifier, kReportShow);
    return 0;
  }
  const bool parsed = parser_->ParseFile(path, share);
  mainContainer = std::move(parser_->mainContainer);
  return parsed ? 1 : 0;
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
    StepWriter writer(showError_, progress_, *this, path);
    const int result = writer.WriteFile();
    outputKeptAt = writer.KeptAt();
    return result;
  } catch (...) {
    return 0;
  }
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
