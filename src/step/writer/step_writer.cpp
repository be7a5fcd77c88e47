#include "step/writer/step_writer.h"

#include <new>
#include <optional>
#include <stdexcept>

#include "core/ticker.h"
#include "step/log/ifc_log.h"
#include "step/reader/token.h"
#include "step/streams/open_output.h"
#include "step/writer/lines_in_order.h"
#include "step/writer/unfinished_output.h"

namespace corvel {

namespace {

constexpr std::size_t kTicks = 100;  // at most

}  // namespace

StepWriter::StepWriter(ErrorReporter showError, ProgressCallback progress, ModelToWrite model,
                       WideString path)
    : showError_(showError),
      progress_(progress),
      model_(std::move(model)),
      path_(std::move(path)) {}

StepWriter::StepWriter(FileStream::OutpoutStream& stream, NumberForm numbers, Carried carried)
    : stream_(&stream), carried_(carried) {
  model_.numbers = numbers;
}

StepWriter::~StepWriter() = default;

Outcome StepWriter::WriteFile() {
  if (!OpenStream()) return Outcome::kFailed;
  try {
    return WriteAll();
  } catch (const std::exception& error) {
    showError_("", Widen(error.what()), kReportShow);
    // A file that is at its place is one, even if the cleaning behind it has failed.
    return output_->IsComplete() ? Outcome::kComplete : EndEarly(Outcome::kFailed);
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
  if (ownStream_->IsOpen() && model_.container != nullptr && model_.header != nullptr) return true;
  showError_("could_not_open_file_write", u"File path: " + path_, kReportShow);
  // The output could be made, and there is no model to write: it goes again.
  if (ownStream_->IsOpen()) EndEarly(Outcome::kFailed);
  return false;
}

Outcome StepWriter::WriteAll() {
  const std::string iso = Narrow(model_.isoLine);
  stream_->WriteNarrowString(iso + ";\n");
  WriteHeader();
  Put("\nDATA;\n");
  if (const Outcome data = WriteData(); data != Outcome::kComplete) return EndEarly(data);
  stream_->WriteNarrowString("ENDSEC;\nEND-" + iso + ";\n");
  return Finish();
}

// Every byte has to have reached the disk before the file takes its place.
Outcome StepWriter::Finish() {
  if (!ownStream_->CommitAndClose()) return EndEarly(Outcome::kFailed);
  if (!output_->Complete()) {
    showError_("",
               u"The output is complete, but it could not be put at its place: " + path_ +
                   u". It lies here: " + output_->KeptAt(),
               kReportShow);
    return Outcome::kFailed;
  }
  CleanUp();
  return Outcome::kComplete;
}

Outcome StepWriter::EndEarly(Outcome outcome) {
  ownStream_->Close();
  output_->Discard();
  return outcome;
}

void StepWriter::WriteHeader() {
  HeaderToken& header = *model_.header;
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

// The first tick asks nobody.
Outcome StepWriter::WriteData() {
  IFC::MainContainer& container = *model_.container;
  Ticker ticker({.callback = progress_}, {.block = container.entities.Size() / kTicks + 1});
  ticker.Show(0);
  // References are written by the markers of what they lead to, so all of them are set before.
  std::optional<LinesInOrder> lines;
  try {
    // A number that no object may have is told of, which one thread does.
    const bool isTogether = model_.threads > 1 && !container.entities.Contains(IFC::kUnfiled);
    if (isTogether) lines.emplace(model_.threads, container.entities, model_.numbers);
  } catch (const std::bad_alloc&) {
    // One thread needs no memory for this.
  }
  if (lines) return WriteTogether(*lines, ticker);
  container.RefreshMarkers();
  return WriteEach(ticker);
}

Outcome StepWriter::WriteEach(Ticker& ticker) {
  for (const auto& [number, entity] : model_.container->entities) {
    if (!WriteGuarded(*entity)) return Outcome::kFailed;
    if (!ticker.Advance()) return Outcome::kCancelled;
  }
  return Outcome::kComplete;
}

Outcome StepWriter::WriteTogether(LinesInOrder& lines, Ticker& ticker) {
  while (const LinesOfRange* const range = lines.Next()) {
    const Outcome outcome = WriteLines(*range, ticker);
    if (outcome != Outcome::kComplete) return outcome;
  }
  return Outcome::kComplete;
}

// What WriteEach does for these objects: the stream stands at the same byte behind each of them,
// and is written out, which may fail, while the same object is written.
Outcome StepWriter::WriteLines(const LinesOfRange& lines, Ticker& ticker) {
  const std::size_t count = lines.ObjectCount();
  if (lines.IsComplete() && count < ticker.Left() && HasRoomFor(lines.Text())) {
    stream_->Append(lines.Text());
    ticker.Advance(count);
    return Outcome::kComplete;
  }
  for (std::size_t i = 0; i < count; ++i) {
    const std::string_view line = lines.LineOf(i);
    if (!line.empty() && HasRoomFor(line)) {
      stream_->Append(line);
    } else if (!WriteGuarded(*lines.Objects()[i])) {
      return Outcome::kFailed;
    }
    if (!ticker.Advance()) return Outcome::kCancelled;
  }
  return Outcome::kComplete;
}

// Whoever makes the text value by value would not write out either. He reserves room for more than
// he then uses, and takes a few signs back.
bool StepWriter::HasRoomFor(std::string_view text) const {
  return stream_->HasRoom(text.size() + 2 * FileStream::OutpoutStream::kMaxReserve);
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

// The units that were kept become the ones that their numbers find, and all markers go to 0 if
// somebody may see them.
void StepWriter::CleanUp() {
  IfcLog& log = IfcLog::Instance();
  log.LogText(u"END write output file");
  log.LogText(u"############# CLEANING #############");
  IFC::MainContainer& container = *model_.container;
  if (IFC::IfcEntity* const assignment = model_.unitAssignment) {
    IFC::ChildQueue units;
    assignment->CollectAllChildren(units);
    log.LogText(u"Childrens: " + Widen(std::to_string(units.Size())));
    while (!units.IsEmpty()) {
      IFC::IfcEntity* const unit = units.TakeBack().entity;
      if (unit != nullptr) container.originalEntities.Set(unit->marker, unit);
    }
    log.LogText(u"Processing ReplaceEntityInOrginalMap");
    container.originalEntities.Set(assignment->marker, assignment);
  }
  log.LogText(u"ResetAllMarkers: " + Widen(std::to_string(container.entities.Size())));
  if (!model_.isReleasedNext) container.ResetAllMarkers();
  log.LogText(u"############# DONE #############");
}

}  // namespace corvel
