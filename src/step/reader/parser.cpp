#include "step/reader/parser.h"

#include <algorithm>
#include <new>
#include <stdexcept>
#include <tuple>
#include <utility>

#include "core/cancellation.h"
#include "platform/file.h"
#include "platform/platform.h"
#include "step/log/ifc_log.h"
#include "step/log/utilities.h"
#include "step/reader/class_sort.h"
#include "step/reader/parallel/parallel_reading.h"
#include "step/reader/tolerant_reading.h"

namespace corvel {

namespace {

// Of the input and the work file: what is read next is still in the processor's cache.
constexpr std::size_t kBufferSize = std::size_t{256} << 10;
constexpr std::size_t kPoolBlockSize = 0xA00000;
constexpr std::uint32_t kResourceCheckStep = 500000;  // markers

// Lines of each record, whose lengths are not to be counted each time.
constexpr WideView kSavingLine = u"SaveLineFSI";
constexpr WideView kAssigning = u"AssignSpecIE.";

// Also what lies behind a byte that ends the input: only a whole archive can be checked.
bool CameWhole(FileStream::InputStream& stream) {
  do {
    stream.SetCursor(stream.WindowEnd());
    stream.ClearStatementText();
  } while (stream.Refill());
  return !stream.IsDamaged();
}

void KeepFirst(IFC::IfcEntity*& kept, IFC::IfcEntity* entity) {
  if (kept == nullptr) kept = entity;
}

const char16_t* ShownName(WideView token) {
  if (token == u"EmptyParameterToken") return u"empty argument";
  if (token == u"EnumerationToken") return u"enumeration value";
  if (token == u"EntityNameToken") return u"entity name";
  if (token == u"CloseBracketToken") return u"closing bracket";
  return nullptr;
}

WideString Shown(const char16_t* token) {
  const char16_t* const shown = ShownName(token);
  return shown != nullptr ? shown : token;
}

}  // namespace

Parser::Parser(bool ignoreEnumErrorsOption, ErrorReporter reporter, ProgressCallback ticks)
    : ignoreEnumErrors(ignoreEnumErrorsOption), showError(reporter), progress(ticks) {}

// The work file of a read that failed stays beside the input, where the next read overwrites it.
Parser::~Parser() = default;

void Parser::SelectSchema(const FactoryTable& classes) {
  factories = &classes;
  unitAssignmentRow_ = factories->FindRow("IFCUNITASSIGNMENT");
  ownerHistoryRow_ = factories->FindRow("IFCOWNERHISTORY");
  projectRow_ = factories->FindRow("IFCPROJECT");
  siteRow_ = factories->FindRow("IFCSITE");
}

bool Parser::ParseFile(const WideString& path, int fileCount) {
  readingProgress_.Start();
  forwardReference = false;
  StartTolerantReading();
  if (!OpenInput(path) || !CheckTempFile()) {
    state = ParserState::kFailed;
    saved_.reset();
    return false;
  }
  IfcLog& log = IfcLog::Instance();
  log.SetFlushEveryLine(false);
  ReportMemory();
  bool done = false;
  try {
    done = ReadFile(fileCount);
  } catch (const std::exception& error) {
    showError("", Widen(error.what()), kReportShow);
    state = ParserState::kFailed;
    scanner.reset();  // in the second pass it reads what is saved
    saved_->Remove();
  }
  saved_.reset();
  log.SetMuted(false);
  return done;
}

bool Parser::OpenInput(const WideString& path) {
  auto opened = std::make_unique<Scanner>(path, kBufferSize, showError);
  if (!opened->IsOpen()) {
    if (opened->Stream() != nullptr) ReportUnopened(path);
    return false;
  }
  filePath = path;
  // Without its buffer it would pass for an empty model. That has been reported.
  if (opened->Stream()->IsDamaged()) return false;
  saved_ = std::make_unique<SavedRecords>(OpenWorkFile(path, *opened->Stream(), workFileRules),
                                          showError, kBufferSize);
  tempPath = saved_->Path();
  mainContainer = std::make_unique<IFC::MainContainer>(showError, progress, kPoolBlockSize);
  mainContainer->productsAreListed = tolerance == nullptr;
  StartPass(std::move(opened), 0);
  ReadHead();
  return true;
}

// ISO line, ";", HEADER section, DATA. Nothing of the header is checked here.
void Parser::ReadHead() {
  if (tolerance != nullptr) {
    ReadHeadTolerantly();
    return;
  }
  scanner->NoteIn(&skipped_);
  isoLine = Widen(scanner->NextToken()->text);
  scanner->NextToken();
  headerToken = std::move(scanner->NextToken()->header);
  borders_.TakeHead(*scanner);
}

bool Parser::CheckTempFile() {
  if (saved_->IsReady()) return true;
  showError("", u"Unable to create copy of file: \"" + tempPath + u"\"", kReportShow);
  scanner->ClearTokens();
  return false;
}

void Parser::ReportUnopened(const WideString& path) {
  showError("could_not_open_file", u". File path: " + path, kReportShow);
}

// `share`: see Stage.
void Parser::StartPass(std::unique_ptr<Scanner> passScanner, int share) {
  scanner = std::move(passScanner);
  const Stage stage{.callback = progress, .share = share, .exactMode = share >= 1};
  passBytes_ = scanner->Stream() == nullptr ? -1 : scanner->Stream()->TotalSize();
  readingProgress_.StartPass(stage, passBytes_);
}

bool Parser::ReadFile(int fileCount) {
  IfcLog& log = IfcLog::Instance();
  log.LogText(u"Parsing file...");
  if (!ReadFirstPart()) return false;
  log.LogText(u"Done.\n");
  log.Flush();
  scanner.reset();  // the input and its buffer, before the second pass takes one
  if (!ReadSecondPart(fileCount)) {
    if (state != ParserState::kFailed) state = ParserState::kCancelled;
    return false;
  }
  log.LogText(u"Done.\n");
  state = ParserState::kParsed;
  if (tolerance != nullptr) TellMisfits();
  return true;
}

bool Parser::ReadFirstPart() {
  IfcLog& log = IfcLog::Instance();
  log.LogText(u"Reading first part of file...");
  log.SetMuted(true);
  log.SetFlushEveryLine(true);
  if (!ReadRecords()) {
    TellSkipped(scanner->Stream()->Position());
    return false;
  }
  if (tolerance != nullptr && !ReadPutAside()) return false;
  // Half a model is worse than none.
  FileStream::InputStream& stream = *scanner->Stream();
  const std::int64_t end = stream.Position();
  const bool damaged = IsStopped() ? stream.IsDamaged() : !CameWhole(stream);
  if (!saved_->Finish() || damaged) {
    state = ParserState::kFailed;
    saved_->Discard();
    return false;
  }
  TellSkipped(end);
  return !IsStopped();
}

// Behind the first record all that makes the head of a file is over. False ends the pass.
bool Parser::ReadRecords() {
  std::uint32_t number = 0;
  if (!FindRecord(number)) return true;
  sorts_.assign(factories->mask + std::size_t{1}, {});
  if (!ReadRecord(number)) return false;
  if (ReadsInParallel() && !ParallelReading(*this, ParallelReading::Pass::kFirst).Run()) {
    return false;
  }
  while (FindRecord(number)) {
    if (!ReadRecord(number)) return false;
  }
  return true;
}

bool Parser::ReadsInParallel() const {
  return aheadRules.threads > 1 && tolerance == nullptr && passBytes_ >= aheadRules.smallestInput &&
         !IsStopped();
}

// The number of the next record. False at the end of the input.
bool Parser::FindRecord(std::uint32_t& number) {
  scanner->StartStatement();
  const bool isNumber = scanner->TakeIdentifier(number);
  if (tolerance != nullptr) {
    const bool isPlain = isNumber && scanner->Argument() == 1 && number != 0;
    return (isPlain && scanner->StandsAt('=')) || FindRecordTolerantly(number);
  }
  if (!isNumber) {
    if (!borders_.FindRecord(*scanner, number)) return false;
  } else if (scanner->Argument() != 1) {
    borders_.NoteCommas(*scanner);
  }
  if (number != 0) return true;
  scanner->RefuseNumber();
  return false;
}

// What the first pass has passed over up to `end`, and that the input has no closing line.
void Parser::TellSkipped(std::int64_t end) {
  if (state == ParserState::kCancelled) return;
  notes.skipped = skipped_.Parts();
  remarks = skipped_.TakeTexts(filePath);
  if (!IsStopped() && !scanner->MetClosingLine()) {
    notes.endWithoutClosingLine = end;
    remarks.push_back(ClosingLineIsMissing(filePath, end));
  }
  for (const WideString& remark : remarks) showError("", remark + u"\n", kReportLog);
}

// What stands between records, or the number that a record begins with.
TokenType Parser::TakeToken(std::uint32_t& number) {
  scanner->StartStatement();
  if (scanner->TakeIdentifier(number)) return TokenType::IdentifierToken;
  const Token* const token = scanner->NextToken();
  number = token->number;
  return token->type;
}

// False ends the pass.
bool Parser::ReadRecord(std::uint32_t number) {
  if (tolerance != nullptr && !tolerant_->CountsUp(number) && HasRecord(number)) {
    PutAside(number);
    return true;
  }
  scanner->EnterRecord();
  skipped_.AtRecord(number);
  IFC::IfcEntity* const entity =
      tolerance == nullptr ? ReadNewEntity(number) : ReadEntityTolerantly(number);
  if (entity == nullptr || IsStopped()) {
    FailRecord(number);
    return false;
  }
  IFC::IfcEntity* const filed = FileEntity(entity, number) ? entity : nullptr;
  if (tolerance == nullptr) TakeRestOfRecord();
  const auto text = forwardReference ? scanner->Stream()->StatementView() : std::string_view();
  if (!NoteRead(entity->marker, filed, text)) return false;
  scanner->LeaveRecord();
  // Before the progress: a cancellation that the user declines has looked at the next record.
  scanner->ClearTokens();
  return TickFirstPass(Position());
}

bool Parser::NoteRead(std::uint32_t marker, IFC::IfcEntity* filed, std::string_view text) {
  if (marker % kResourceCheckStep == 0 && !CheckResources()) return false;
  IfcLog& log = IfcLog::Instance();
  log.LogText(kSavingLine);
  if (filed != nullptr) {
    if (!text.empty()) saved_->Append(text);
    log.LogText(kAssigning);
    AssignSpecIE(filed);
  }
  forwardReference = false;
  lastMarker_ = marker;
  return true;
}

bool Parser::TickFirstPass(std::int64_t position) {
  if (ReportProgress(position)) return true;
  state = ParserState::kCancelled;
  return false;
}

IFC::IfcEntity* Parser::ReadNewEntity(std::uint32_t marker) {
  TakeEqualSign();
  // The name of a class in front of a bracket needs no other look.
  const std::string_view call = scanner->PeekCall();
  row_ = call.empty() ? nullptr : factories->FindRow(call);
  if (row_ != nullptr) {
    scanner->TakeCall(call);
    return ReadArguments(MakeEntity(marker));
  }
  std::string_view name;
  if (!scanner->TakeClassName(name)) {
    const Token* const token = scanner->NextToken();
    if (!token->Is(TokenType::EntityNameToken)) {
      if (tolerance != nullptr) return ReadUnknownRecord(marker);
      ExpectedArgumentError(u"EntityNameToken", token->getName(), kReportShow);
      return nullptr;
    }
    name = token->text;
  }
  row_ = factories->FindRow(name);
  if (row_ == nullptr && tolerance != nullptr) row_ = factories->FindRow(TableName(name));
  if (row_ == nullptr) {
    if (tolerance != nullptr) return ReadUnknownRecord(marker);
    showError("", u"Entity named: " + Widen(name) + u" not found.", kReportShow);
    return nullptr;
  }
  IFC::IfcEntity* const entity = MakeEntity(marker);
  TakeOpenBracket();
  return ReadArguments(entity);
}

IFC::IfcEntity* Parser::MakeEntity(std::uint32_t marker) {
  IFC::IfcEntity* const entity = row_->create(mainContainer->Pool());
  entity->SetMarker(marker);
  return entity;
}

IFC::IfcEntity* Parser::ReadArguments(IFC::IfcEntity* entity) {
  WideString message;
  carrying.object = entity;
  try {
    if (looksAtText_) return ReadArgumentsTolerantly(entity);
    entity->read(*this);
    return entity;
  } catch (const MisfitInRecord&) {
    throw;
  } catch (const std::bad_alloc&) {
    message = u"Not enough memory space. Try to run 64-bit Orlenta";
  } catch (const std::exception& error) {
    const std::string_view what = error.what();
    message = u"Error occurred while reading entity: #" + ToWide(entity->marker) + u".\n" +
              (what.empty() ? WideString(u"Unknown exception") : Widen(what));
  } catch (...) {
    message = u"Unknown error occurred while reading entity: #" + ToWide(entity->marker);
  }
  state = ParserState::kFailed;
  showError("", message, kReportShow);
  ClearScratch();
  return nullptr;
}

void Parser::ClearScratch() {
  std::apply([](auto&... stacks) { (stacks.clear(), ...); }, scratch_);
}

bool Parser::FileEntity(IFC::IfcEntity* entity, std::uint32_t marker) {
  if (tolerance == nullptr && mainContainer->AddUnseen(entity, marker, SortOf(entity))) return true;
  mainContainer->productsAreListed = false;
  if (mainContainer->AddEntityByOrginalNumber(entity, marker)) return true;
  showError("", u"Entity duplicated: #" + ToWide(marker), kReportShow);
  Cancel();
  return false;
}

// Of an object of the class of `row_`, as the container sorts it.
std::ptrdiff_t Parser::SortOf(IFC::IfcEntity* entity) {
  auto& sort = sorts_[static_cast<std::size_t>(row_ - factories->slots)];
  if (!sort) sort = SortOfClass(*factories, row_->name, entity);
  return *sort;
}

// Whatever stands in its place is taken too.
void Parser::TakeEqualSign() {
  if (!scanner->TakeSign('=')) scanner->NextToken();
}

// A record without one ends at its ";" all the same, which stays in place.
void Parser::TakeOpenBracket() {
  if (scanner->TakeSign('(')) return;
  const TokenType type = scanner->PeekToken()->getType();
  if (type != TokenType::SemicolonToken && type != TokenType::EndOfFileToken) scanner->NextToken();
}

// Takes the ")" and ";" of the record, and arguments that its class does not have. A record that
// was left in the middle of a string or bracket ends at its ";" all the same.
void Parser::TakeRestOfRecord() {
  if (scanner->TakeRecordEnd()) [[likely]]
    return;
  scanner->TakeSign(')');
  if (!scanner->TakeSemicolon()) borders_.FinishRecord(*scanner);
}

// One unreadable record ends the whole read of the file.
void Parser::FailRecord(std::uint32_t marker) {
  Stop();
  // Stop has set the mode of an ending reading. The next file is asked about as ever.
  Cancellation::OfProcess().mode = CancelMode::kAsk;
  showError("",
            u"Unable to read entity, marker #" + ToWide(marker) + u". Parsing will be terminate.\n",
            kReportShow);
  state = ParserState::kFailed;
}

bool Parser::CheckResources() {
  IfcLog& log = IfcLog::Instance();
  log.SetMuted(false);
  ReportMemory();
  log.LogText(u"System disk free space (GB): " + Widen(std::to_string(FreeDiskGB())));
  if (!CheckDiskSpace()) {
    Stop();
    return false;
  }
  log.SetMuted(true);
  return true;
}

void Parser::AssignSpecIE(IFC::IfcEntity* entity) {
  if (row_ == unitAssignmentRow_) {
    if (ifcUnitAssignment == nullptr) unitAssignmentMarker = entity->marker;
    KeepFirst(ifcUnitAssignment, entity);
  } else if (row_ == ownerHistoryRow_) {
    KeepFirst(ifcOwnerHistory, entity);
  } else if (row_ == projectRow_) {
    KeepFirst(ifcProject, entity);
  } else if (row_ == siteRow_) {
    KeepFirst(ifcSite, entity);
  }
}

std::int64_t Parser::Position() const {
  const FileStream::InputStream* const stream = scanner->Stream();
  return stream == nullptr ? -1 : stream->Position();
}

// A Yes ends the reading at once.
bool Parser::ReportProgress(std::int64_t position) {
  if (readingProgress_.Report(position)) return true;
  Stop();
  return false;
}

// At the end of the input nothing is left to go on with, whatever the answer would be.
bool Parser::Cancel() {
  Cancellation& cancellation = Cancellation::OfProcess();
  const bool isEnding = cancellation.mode == CancelMode::kEndUnasked;
  const bool inputHasEnded =
      !isEnding && scanner != nullptr && scanner->PeekToken()->Is(TokenType::EndOfFileToken);
  if (!isEnding && !inputHasEnded && !cancellation.Ask()) return false;
  Stop();
  return true;
}

// Whatever is on its way ends without a question.
void Parser::Stop() {
  Cancellation::OfProcess().mode = CancelMode::kEndUnasked;
  {
    const LogUnmuted unmuted(IfcLog::Instance());
    IfcLog::Instance().LogText(u"Parsing CANCELED");
  }
  if (scanner != nullptr) {
    scanner->Stop();
    scanner->ClearTokens();
  }
  if (saved_ != nullptr) saved_->Discard();
}

int Parser::ExpectedArgumentError(const char16_t* expected, const char16_t* got, int mode) {
  IfcLog& log = IfcLog::Instance();
  log.LogLine(u"", false);
  const int result =
      showError("", u"Expected: " + Shown(expected) + u". Got: " + Shown(got) + u".\n", mode);
  log.EndBlock();
  return result;
}

}  // namespace corvel
