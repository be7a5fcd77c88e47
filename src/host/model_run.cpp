#include "host/model_run.h"

#include <exception>
#include <new>
#include <string>
#include <utility>

#include "core/main_container.h"
#include "host/display_text.h"
#include "host/run_checks.h"
#include "host/texts.h"
#include "host/unfinished_output.h"
#include "merge/merge_documents.h"
#include "platform/file.h"
#include "step/log/ifc_log.h"
#include "step/log/utilities.h"
#include "step/reader/parser.h"
#include "step/reader/schema_identifier.h"

namespace corvel::host {

namespace {

// Percent of the overall bar. Writing has the rest.
constexpr int kReadingWeight = 30;
constexpr int kMergingWeight = 15;

void Log(WideView text) { IfcLog::Instance().LogText(text); }

WideString Step(std::string_view key, const WideString& path) {
  return TextOf(key) + u": " + FileNameOf(path);
}

int Overlook(const char* /*key*/, const WideString& /*message*/, int /*mode*/) { return 0; }

// The process-wide values of a run.
void StartAnew() {
  CancelMode() = 0;
  RememberedGuidChoice() = kAskAboutGuids;
  IFC::MainContainer::ResetUniqueMarker();
  MemoryReportOutput() = nullptr;  // the log has the figures
}

}  // namespace

ModelRun::ModelRun(ModelOrder order, RunConsole& console)
    : order_(std::move(order)), console_(console) {}

ExitStatus ModelRun::Run() {
  bool written = false;
  if (PathsAreGood()) {
    OpenLog();
    try {
      StartAnew();
      written = Write();
    } catch (const std::bad_alloc&) {
      documents_.clear();
      console_.Report("", u"Not enough memory for these models.", kReportShow);
    } catch (const std::exception& error) {
      console_.Report("", Widen(error.what()), kReportShow);
    }
    console_.SetFileAtWork({});
    documents_.clear();
    console_.EraseBars();
  }
  const ExitStatus status = Conclude(written);
  CloseLog();
  return status;
}

// All that is wrong is told, not the first alone.
bool ModelRun::PathsAreGood() {
  bool good = true;
  const auto tell = [&](const WideString& path, const std::optional<WideString>& trouble) {
    if (!trouble) return;
    console_.Say(path + u": " + *trouble);
    good = false;
  };
  for (const WideString& input : order_.inputs) tell(input, TroubleWithInput(input));
  tell(order_.output, TroubleWithOutput(order_.output, order_.inputs));
  return good;
}

void ModelRun::OpenLog() {
  IfcLog& log = IfcLog::Instance();
  log.Open(order_.inputs.front());
  logOpened_ = log.HasStream();
}

bool ModelRun::Write() {
  if (!ReleasesAgree() || !ReadAll()) return false;
  if (order_.inputs.size() > 1 && !Fold()) return false;
  const bool saved = Save();
  console_.Progress().SetTexts(TextOf("progress_bar_overall_progress"), TextOf("finalizing"));
  console_.Tick(100, 0, nullptr, false, 100);
  return saved;
}

// The headers alone: minutes of reading are not spent on a run that cannot end well.
bool ModelRun::ReleasesAgree() {
  std::optional<SchemaNamespace> first;
  bool good = true;
  for (const WideString& input : order_.inputs) {
    console_.SetFileAtWork(input);
    const std::optional<SchemaNamespace> release = ReleaseOf(input);
    if (!release) {
      good = false;
    } else if (!first) {
      first = release;
    } else if (release != first) {
      console_.SetFileAtWork({});
      console_.Report("",
                      u"Models of different releases cannot be merged: " + order_.inputs.front() +
                          u" is " + Widen(NameOf(*first)) + u", " + input + u" is " +
                          Widen(NameOf(*release)) + u".",
                      kReportShow);
      good = false;
    }
  }
  return good;
}

// Nothing (reported) for a file of none. Remarks are kept back: the reading makes them again.
std::optional<SchemaNamespace> ModelRun::ReleaseOf(const WideString& path) {
  IfcLog& log = IfcLog::Instance();
  log.SetMuted(true);
  const SchemaOfFile schema = ReadSchemaOfFile(path, Overlook);
  log.SetMuted(false);
  const auto release = ChooseSchemaNamespace(schema.identifier, Overlook);
  if (release) return release;
  const SchemaOfFile reported = ReadSchemaOfFile(path, RunConsole::Reporter);
  if (reported.opened) {
    console_.Report("unknown_schema_identifier", u": " + reported.identifier, kReportShow);
  }
  return {};
}

bool ModelRun::ReadAll() {
  for (const WideString& input : order_.inputs) {
    if (!Read(input)) return false;
  }
  return true;
}

bool ModelRun::Read(const WideString& path) {
  const int fileCount = static_cast<int>(order_.inputs.size());
  console_.SetFileAtWork(path);
  console_.Progress().StartStage(kReadingWeight / fileCount);
  console_.Progress().SetTexts(TextOf("progress_bar_overall_progress"), Step("reading_file", path));
  Log(u"Reading file: " + path);
  documents_.push_back(std::make_unique<IfcDocument>(order_.ignoreEnumErrors, RunConsole::Reporter,
                                                     RunConsole::Ticks));
  IfcDocument& document = *documents_.back();
  std::vector<WideString> reserved = order_.inputs;
  reserved.push_back(order_.output);
  document.ReservePaths(std::move(reserved));
  if (!HasClosingLine(path)) console_.Report("", TextOf("file_was_cut_short"), kReportShow);
  document.OpenFile(path, fileCount);
  document.mergeable = document.IsParsed();
  if (document.IsCancelled()) Log(u"Reading file cancelled.");
  return document.IsParsed();
}

bool ModelRun::Fold() {
  console_.Progress().StartStage(kMergingWeight);
  Log(u"Merging files...");
  std::vector<IfcDocument*> documents;
  for (const auto& document : documents_) documents.push_back(document.get());
  const auto announce = [this](const IfcDocument& source) {
    console_.SetFileAtWork(source.getFilePath());
    console_.Progress().SetTexts(TextOf("progress_bar_overall_progress"),
                                 Step("btn_merge", source.getFilePath()));
  };
  const bool merged = MergeDocuments(documents, {}, announce) != nullptr;
  // A fold that was stopped half way through has a model too, but not the one that was wanted.
  if (console_.CancelIsConfirmed()) return false;
  console_.SetFileAtWork({});
  if (merged) return true;
  console_.Report("", u"Error occurred while merging files. Merging will be terminated.",
                  kReportShow);
  return false;
}

bool ModelRun::Save() {
  console_.SetFileAtWork(order_.output);
  console_.Progress().StartLastStage();
  console_.Progress().SetTexts(TextOf("progress_bar_overall_progress"),
                               Step("exporting_file_as", order_.output));
  Log(u"Saving to output file ...");
  UnfinishedOutput output(order_.output);
  constexpr int kComplete = 1;
  if (documents_.front()->SaveFile(order_.output) != kComplete) return false;
  output.Complete();
  Log(u"Saving DONE");
  return true;
}

ExitStatus ModelRun::Conclude(bool written) {
  const unsigned reports = console_.ReportCount();
  if (written && reports == 0) return ExitStatus::kDone;
  WideString line;
  if (written) {
    line = order_.output + u" was written, but there " +
           (reports == 1 ? WideString(u"is 1 report.") : u"are " + ToWide(reports) + u" reports.");
  } else {
    line = console_.WasCancelled() ? u"Cancelled, nothing was written." : u"Nothing was written.";
  }
  if (logOpened_ && reports != 0) {
    line += u" " + TextOf("merge_combine_log") + u" " + IfcLog::Instance().Path();
  }
  console_.Say(line);
  if (written) return ExitStatus::kWrittenWithReports;
  return console_.WasCancelled() ? ExitStatus::kCancelled : ExitStatus::kNothingWritten;
}

// Kept only when there is something to look up in it.
void ModelRun::CloseLog() {
  IfcLog& log = IfcLog::Instance();
  log.Close();
  if (logOpened_ && console_.ReportCount() == 0) platform::RemoveFile(log.Path());
}

}  // namespace corvel::host
