// The second pass of the parser: records that met a forward reference are read again.
#include "core/cancellation.h"
#include "platform/platform.h"
#include "step/log/ifc_log.h"
#include "step/log/utilities.h"
#include "step/reader/parallel/parallel_reading.h"
#include "step/reader/parser.h"
#include "step/reader/tolerant_reading.h"

namespace corvel {

namespace {

constexpr double kSecondShare = 5.0;  // percent of the run, for all files

}  // namespace

bool Parser::ReadSecondPart(int fileCount) {
  IfcLog& log = IfcLog::Instance();
  log.LogText(u"Reading second part of file...");
  StartPass(std::make_unique<Scanner>(saved_->ReadAgain(), showError),
            static_cast<int>(kSecondShare / fileCount));
  hundredth_ = 1;
  carrying.allAreFiled = true;
  if (tolerance != nullptr) StartSecondPassTolerantly();
  if (!ReadsInParallel() || ParallelReading(*this, ParallelReading::Pass::kSecond).Run()) {
    while (ReadNextAgain()) {
    }
  }
  ReportProgress(Position());
  if (saved_->IsDamaged() || (!IsStopped() && !saved_->AllRecordsWereRead())) {
    state = ParserState::kFailed;
  }
  const bool done = !IsStopped();
  scanner.reset();
  log.SetMuted(false);
  return done;
}

// False ends the pass.
bool Parser::ReadNextAgain() {
  std::uint32_t number = 0;
  const TokenType type = TakeToken(number);
  if (type == TokenType::EndOfFileToken) return false;
  if (type == TokenType::IdentifierToken && !ReadRecordAgain(number)) return false;
  scanner->ClearTokens();
  if (ReportProgress(Position())) return true;
  CancelSecondPass();
  return false;
}

void Parser::CancelSecondPass() {
  Cancel();
  state = ParserState::kCancelled;
}

// The object of the first pass takes all its attributes anew. False ends the pass.
bool Parser::ReadRecordAgain(std::uint32_t marker) {
  if (!PassHundredths(marker)) return false;
  scanner->EnterRecord();
  saved_->CountReadRecord();
  if (tolerance != nullptr) tolerant_->Enter(marker, scanner->Stream()->StatementSize());
  TakeEqualSign();
  if (std::string_view name; !scanner->TakeClassName(name)) scanner->NextToken();
  IFC::IfcEntity* const entity = mainContainer->GetEntityByOrginalNumber(marker);
  TakeOpenBracket();
  if (entity != nullptr) ReadArguments(entity);
  TakeRestOfRecord();
  scanner->LeaveRecord();
  return !IsStopped();
}

// At each hundredth of the number range: a trace of where the reading is, and the disk guard.
bool Parser::PassHundredths(std::uint32_t marker) {
  IfcLog& log = IfcLog::Instance();
  // Rounded up: the number has come to that many hundredths, or beyond.
  while (hundredth_ < 101 && marker >= (hundredth_ * lastMarker_ + 99) / 100) {
    const LogUnmuted unmuted(log);
    log.LogReadingEntity(marker);
    ++hundredth_;
    if (CheckDiskSpace()) continue;
    Stop();
    break;
  }
  return !IsStopped();
}

}  // namespace corvel
