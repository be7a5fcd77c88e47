#include "step/writer/step_writer.h"

#include <stdexcept>

#include "core/document.h"
#include "core/main_container.h"
#include "step/log/ifc_log.h"
#include "step/reader/token.h"
#include "step/streams/open_output.h"
#include "step/writer/unfinished_output.h"

namespace corvel {

StepWriter::StepWriter(ErrorReporter showError, ProgressCallback progress, IfcDocument& document,
                       WideString path)
    : showError_(showError),
      progress_(progress),
      cancelTexts_(&SharedCancelTexts()),
      document_(&document),
      path_(std::move(path)) {}

StepWriter::StepWriter(FileStream::OutpoutStream& stream) : stream_(&stream) {}

StepWriter::~StepWriter() = default;

int StepWriter::WriteFile() {
  if (!OpenStream()) return 0;
  try {
    return WriteAll();
  } catch (const std::exception& error) {
    showError_("", Widen(error.what()), kReportShow);
    return output_->IsComplete() ? 1 : EndEarly(0);
  }
}

WideString StepWriter::KeptAt() const { return output_ == nullptr ? u"" : output_->KeptAt(); }

bool StepWriter::OpenStream() {
  if (!FileStream::IsOutputName(path_)) {
    showError_("could_not_open_file_extension", u" " + path_, kReportShow);
    return false;
  }
  output_ = std::make_unique<UnfinishedOutput>(path_);
  ownStream_ = FileStream::OpenOutput(path_, output_->Open(), showError_);
  stream_ = ownStream_.get();
  if (ownStream_->IsOpen() && document_->mainContainer != nullptr &&
      document_->getHeader() != nullptr) {
    return true;
  }
  showError_("could_not_open_file_write", u"File path: " + path_, kReportShow);
  if (ownStream_->IsOpen()) EndEarly(0);
  return false;
}

int StepWriter::WriteAll() {
  const std::string iso = Narrow(document_->getISO());
  stream_->WriteNarrowString(iso + ";\n");
  WriteHeader();
  Put("\nDATA;\n");
  if (const int result = WriteData(); result != 1) return EndEarly(result);
  stream_->WriteNarrowString("ENDSEC;\nEND-" + iso + ";\n");
  return Finish();
}

// Every byte has to have reached the disk before the file takes its place.
int StepWriter::Finish() {
  if (!ownStream_->CommitAndClose()) return EndEarly(0);
  if (!output_->Complete()) {
    showError_("",
               u"The output is complete, but it could not be put at its place: " + path_ +
                   u". It lies here: " + output_->KeptAt(),
               kReportShow);
    return 0;
  }
  CleanUp();
  return 1;
}

int StepWriter::EndEarly(int result) {
  ownStream_->Close();
  output_->Discard();
  return result;
}

void StepWriter::WriteHeader() {
  HeaderToken& header = *document_->getHeader();
  Put("HEADER;\nFILE_DESCRIPTION (");
  WriteHeaderList(header.fileDescription);
  WriteText(header.implementationLevel.c_str());
  stream_->StepBack(1);
  Put(");\nFILE_NAME (");
  WriteText(header.name.c_str());
  WriteText(header.timeStamp.c_str());
  WriteHeaderList(header.author);
  WriteHeaderList(header.organization);
  WriteText(header.preprocessorVersion.c_str());
  WriteText(header.originatingSystem.c_str());
  WriteText(header.authorization.c_str());
  stream_->StepBack(1);
  Put(");\nFILE_SCHEMA ((");
  WriteText(header.schemaIdentifier.c_str());
  stream_->StepBack(1);
  Put("));\nENDSEC;\n");
}

// Empties the list: a second save of the document writes `()`.
void StepWriter::WriteHeaderList(std::vector<WideString>& texts) {
  Put("(");
  for (const WideString& text : texts) WriteText(text.c_str());
  if (!texts.empty()) stream_->StepBack(1);
  Put("),");
  texts.clear();
}

// 1: all entities are written. 0: one failed. 2: the user cancelled.
int StepWriter::WriteData() {
  IFC::MainContainer& container = *document_->mainContainer;
  const std::size_t step = container.entities.Size() / 100;
  std::size_t sinceTick = 0;
  int percent = 0;
  if (progress_ != nullptr) progress_(0, 0, nullptr, false, 100);
  container.FillMarkers();
  for (const auto& [number, entity] : container.entities) {
    if (!WriteGuarded(*entity)) return 0;
    if (++sinceTick <= step) continue;
    sinceTick = 0;
    if (percent < 100) ++percent;
    if (progress_ != nullptr && !progress_(percent, 0, nullptr, false, 100) &&
        AskCancelQuestion(*cancelTexts_)) {
      return 2;
    }
  }
  return 1;
}

bool StepWriter::WriteGuarded(const IFC::IfcEntity& entity) {
  try {
    WriteEntityLine(entity);
    return true;
  } catch (const std::runtime_error& error) {
    const std::string_view what = error.what();
    showError_("",
               u"Error occurred while writing entity: #" + ToWide(entity.marker) + u"." +
                   (what.empty() ? WideString(u"Unknown exception") : Widen(what)),
               kReportShow);
  } catch (...) {
    showError_("", u"Unknown error occurred while reading entity: #" + ToWide(entity.marker),
               kReportShow);
  }
  return false;
}

// The units that were kept become the ones that their numbers find, and all markers go to 0.
void StepWriter::CleanUp() {
  IfcLog& log = IfcLog::Instance();
  log.LogText(u"END write output file");
  log.LogText(u"############# CLEANING #############");
  IFC::MainContainer& container = *document_->mainContainer;
  if (IFC::IfcEntity* const assignment = document_->getIfcUnitAssignment()) {
    IFC::ChildQueue units;
    assignment->collectChildren(units);
    log.LogText(u"Childrens: " + Widen(std::to_string(units.Size())));
    while (!units.IsEmpty()) {
      IFC::IfcEntity* const unit = units.TakeBack().entity;
      if (unit != nullptr) container.originalEntities.Set(unit->marker, unit);
    }
    log.LogText(u"Processing ReplaceEntityInOrginalMap");
    container.originalEntities.Set(assignment->marker, assignment);
  }
  log.LogText(u"ResetAllMarkers: " + Widen(std::to_string(container.entities.Size())));
  container.ResetAllMarkers();
  log.LogText(u"############# DONE #############");
}

}  // namespace corvel
