// Turns one STEP physical file into a populated container, in two passes.
//
// The first pass makes every object and reads its attributes; references to records further down
// stay open, and the text of such records goes to a work file. The second pass reads those records
// again, on the same objects. Nothing of the file is held whole.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/entity.h"
#include "core/list.h"
#include "core/main_container.h"
#include "core/reporting.h"
#include "core/text.h"
#include "step/carried/carrying_reader.h"
#include "step/factories.h"
#include "step/reader/parallel/ahead_references.h"
#include "step/reader/reading_notes.h"
#include "step/reader/reading_progress.h"
#include "step/reader/record_borders.h"
#include "step/reader/saved_records.h"
#include "step/reader/scanner.h"
#include "step/reader/skipped_input.h"
#include "step/reader/tolerance.h"
#include "step/reader/work_file.h"

namespace corvel {

enum class ParserState : std::uint32_t {
  kNotFinished = 0,
  kParsed = 1,
  kFailed = 3,
  kCancelled = 4
};

// Ends the reading of a record whose value has no meaning at all; the guard around `read` reports
// "Unknown error occurred while reading entity".
struct UnreadableRecord {};

struct TolerantReading;

// How a parser shares its work among threads.
struct AheadRules {
  unsigned threads = 1;  // the caller's among them; 1: it does everything alone
  std::size_t batchSize = std::size_t{256} << 10;      // bytes that a thread reads at a time
  std::int64_t smallestInput = std::int64_t{2} << 20;  // of a pass that others help with
};

class Parser {
 public:
  // One parser reads one file. `ignoreEnumErrorsOption`: an unknown enumeration value is logged and
  // replaced by the fallback. `reporter` is not null; `ticks` may be.
  Parser(bool ignoreEnumErrorsOption, ErrorReporter reporter, ProgressCallback ticks);
  ~Parser();
  Parser(const Parser&) = delete;
  Parser& operator=(const Parser&) = delete;

  // Chooses the classes of the file; borrowed. Call before ParseFile.
  void SelectSchema(const FactoryTable& classes);
  // The whole read. `fileCount`: files of the running merge, at least 1, for the progress. The
  // result tells whether parsing finished; `state` tells failure from cancellation. Failures have
  // been reported; the container, if there is one, has what was read by then.
  bool ParseFile(const WideString& path, int fileCount);

  // Failed, cancelled, or the scanner has been stopped: every reader returns at once.
  bool IsStopped() const {
    return state >= ParserState::kFailed || (scanner != nullptr && scanner->IsStopped());
  }
  // A look tells that the next token is neither an absent value nor the end of anything. False: it
  // may be one all the same.
  bool StandsAtValue() const { return !IsStopped() && IsOfKind(scanner->PeekSign(), kValueByte); }
  // A reader gives up: asks whether to stop (unless nobody is to be asked, or the input has ended
  // anyway) and stops the scanner. True when the cancellation went ahead.
  bool Cancel();
  // Reports "Expected: ... Got: ..." with the names of tokens as users see them. `mode`: one of
  // those of a report. Gives what the reporter gives.
  int ExpectedArgumentError(const char16_t* expected, const char16_t* got, int mode);

  // For what a strict reading reports: a tolerant one looks at the record as text from here on, and
  // one ahead of its turn leaves it.
  void RaiseMisfit() const {
    if (tolerance != nullptr || ahead != nullptr) throw MisfitInRecord();
  }

  // Reads the attributes of `entity` behind its "(" under the guard that turns whatever goes wrong
  // into a report. Null when it did.
  IFC::IfcEntity* ReadArguments(IFC::IfcEntity* entity);

  // In tolerant readings: moves before the ";" of the record at hand, whose statement text is then
  // that of a mended record (see RecordMender), whatever the file has.
  void PassMendedRecord();
  // Where in the file that record stands; Tolerance::kNowhere when it comes from elsewhere.
  std::int64_t RecordOffset() const;

  MemoryPool& Pool() { return ahead == nullptr ? mainContainer->Pool() : ahead->Pool(); }

  // Where list readers gather their items, as a stack: whoever takes it puts its size back. What an
  // exception left there goes with the next record.
  template <class Item>
  std::vector<Item>& Scratch() {
    return std::get<std::vector<Item>>(scratch_);
  }

  ParserState state = ParserState::kNotFinished;
  bool ignoreEnumErrors;
  // Not null: the reading is tolerant, and what does not fit is carried and noted here. Null, as it
  // is at first: strict. Set before ParseFile.
  std::unique_ptr<Tolerance> tolerance;
  CarryingState carrying;
  // Not null: the parser reads records before their turn, and whatever a strict reading would
  // report raises MisfitInRecord. Borrowed.
  AheadReferences* ahead = nullptr;
  AheadRules aheadRules;  // what ParseFile goes by
  // Set by the attribute readers when a referenced number is not filed yet.
  bool forwardReference = false;
  // How many typed values the current one stands in.
  unsigned valueDepth = 0;
  const FactoryTable* factories = nullptr;            // null until SelectSchema
  std::unique_ptr<Scanner> scanner;                   // null between the passes
  std::unique_ptr<HeaderToken> headerToken;           // null if the file has no HEADER in its place
  std::unique_ptr<IFC::MainContainer> mainContainer;  // handed to the document after ParseFile
  WideString filePath;
  WideString isoLine;           // "ISO-10303-21"
  WorkFileRules workFileRules;  // what ParseFile goes by
  WideString tempPath;          // of the work file; its folder when it has no name
  // What the first pass could not take in, and that the input lacks its closing line. All of it has
  // been reported in mode kReportLog.
  std::vector<WideString> remarks;
  ReadingNotes notes;  // the same, not yet in words
  ErrorReporter showError;
  ProgressCallback progress;

  // The first of each class; null if there is none.
  IFC::IfcEntity* ifcUnitAssignment = nullptr;
  IFC::IfcEntity* ifcProject = nullptr;
  IFC::IfcEntity* ifcSite = nullptr;
  IFC::IfcEntity* ifcOwnerHistory = nullptr;
  std::uint32_t unitAssignmentMarker = 0;

  // GUID to entity. Empty after parsing; looked at by the merge only.
  std::unordered_map<std::string, IFC::IfcEntity*> guidIndex;

 private:
  void Stop();
  bool OpenInput(const WideString& path);
  void ReportUnopened(const WideString& path);
  void ReadHead();
  bool CheckTempFile();
  bool ReadFile(int fileCount);
  bool ReadFirstPart();
  bool ReadRecords();
  bool ReadsInParallel() const;
  bool FindRecord(std::uint32_t& number);
  void TellSkipped(std::int64_t end);
  TokenType TakeToken(std::uint32_t& number);
  bool ReadRecord(std::uint32_t number);
  IFC::IfcEntity* ReadNewEntity(std::uint32_t marker);
  IFC::IfcEntity* MakeEntity(std::uint32_t marker);
  bool FileEntity(IFC::IfcEntity* entity, std::uint32_t marker);
  std::ptrdiff_t SortOf(IFC::IfcEntity* entity);
  void FailRecord(std::uint32_t marker);
  bool CheckResources();
  // What a record leaves behind. `filed`: its object, null when it is not filed; `text`: of one
  // with forward references, otherwise empty. False ends the pass.
  bool NoteRead(std::uint32_t marker, IFC::IfcEntity* filed, std::string_view text);
  bool TickFirstPass(std::int64_t position);
  void CancelSecondPass();
  void AssignSpecIE(IFC::IfcEntity* entity);
  bool ReadSecondPart(int fileCount);
  bool ReadNextAgain();
  bool ReadRecordAgain(std::uint32_t marker);
  bool PassHundredths(std::uint32_t marker);
  void TakeEqualSign();
  void TakeOpenBracket();
  void TakeRestOfRecord();
  void StartPass(std::unique_ptr<Scanner> passScanner, int share);
  std::int64_t Position() const;
  bool ReportProgress(std::int64_t position);

  friend class CarryingReader;
  friend class BatchReader;
  friend class ParallelReading;
  void ClearScratch();

  // --- Tolerant readings alone, in tolerant_parser.cpp -------------------------------------------
  void StartTolerantReading();
  void StartSecondPassTolerantly();
  void ReadHeadTolerantly();
  bool FindRecordTolerantly(std::uint32_t& number);
  bool HasRecord(std::uint32_t number);
  IFC::IfcEntity* ReadArgumentsTolerantly(IFC::IfcEntity* entity);
  IFC::IfcEntity* ReadEntityTolerantly(std::uint32_t number);
  IFC::IfcEntity* ReadMisfitRecord(std::uint32_t number);
  IFC::IfcEntity* ReadUnknownRecord(std::uint32_t number);
  bool TakeCloseBrackets();
  void MendRecord();
  void PutAside(std::uint32_t number);
  bool ReadPutAside();
  void TellMisfits();

  std::tuple<std::vector<IFC::IfcEntity*>, std::vector<double>, std::vector<std::int32_t>,
             std::vector<ModelText>, std::vector<EntityList>, std::vector<List<double>>,
             std::vector<List<std::int32_t>>>
      scratch_;
  SkippedInput skipped_;  // by the first pass
  RecordBorders borders_{skipped_};
  const FactoryRow* row_ = nullptr;  // of the record that is read for the first time
  std::vector<std::optional<std::ptrdiff_t>> sorts_;  // by row
  // The classes whose first object is remembered. Null until SelectSchema, as in a release without.
  const FactoryRow* unitAssignmentRow_ = nullptr;
  const FactoryRow* ownerHistoryRow_ = nullptr;
  const FactoryRow* projectRow_ = nullptr;
  const FactoryRow* siteRow_ = nullptr;
  std::unique_ptr<TolerantReading> tolerant_;  // null in strict readings
  bool looksAtText_ = false;                   // at that of a record whose values do not fit
  std::unique_ptr<SavedRecords> saved_;        // null before the first pass and after the second
  ReadingProgress readingProgress_;
  std::int64_t passBytes_ = -1;   // of the input of the pass; below 1: not known
  std::uint64_t lastMarker_ = 0;  // of the first pass
  std::uint64_t hundredth_ = 1;   // of the number range, second pass
};

}  // namespace corvel
