#include "step/reader/record_walker.h"

#include "step/numbers/byte_runs.h"
#include "step/reader/string_decoder.h"

namespace corvel {

// `;` and line ends, then `#12=` with a byte behind it that is neither a blank nor a comment: all
// of it stands in the window in most cases.
bool RecordWalker::TakePlainHead(std::uint32_t& number) {
  constexpr std::ptrdiff_t kRoom = 3 + 1 + kRunRoom + 2;
  const char* at = stream_.Cursor();
  if (stream_.WindowEnd() - at < kRoom) return false;
  if (*at == ';') ++at;
  if (*at == '\r') ++at;
  if (*at == '\n') ++at;
  if (*at != '#') return false;
  const DigitRun run = DigitsAt(++at);
  at += run.count;
  if (run.value == 0 || run.count == kRunRoom || *at != '=' || !IsLetter(at[1])) return false;
  number = run.value;
  stream_.SetCursor(at + 1);
  return true;
}

bool RecordWalker::FindRecord(std::uint32_t& number) {
  if (!endsInString_ && TakePlainHead(number)) return true;
  while (!endsInString_ && SkipBlanks(stream_)) {
    const char byte = Byte();
    if (byte == '#') {
      TakeByte();
      number = TakeNumber();
      if (number != 0 && TakeEqual()) return true;
      FinishRecord();
    } else if (byte == ';') {
      TakeByte();
    } else if (byte == '\'') {
      TakeByte();
      TakeString();
    } else if (scanner_.NextToken()->Is(TokenType::EndOfFileToken)) {
      return false;
    }
  }
  return false;
}

bool RecordWalker::TakeEqual() {
  if (!SkipBlanks(stream_) || Byte() != '=') return false;
  TakeByte();
  return SkipBlanks(stream_);
}

std::string_view RecordWalker::TakeClassName() {
  scanner_.StartStatement();
  std::string_view name;
  if (scanner_.TakeClassName(name) || !stream_.HasByte() || !IsLetter(Byte())) return name;
  const Token& token = *scanner_.NextToken();
  return token.Is(TokenType::EntityNameToken) ? token.text : name;
}

std::uint32_t RecordWalker::TakeNumber() {
  const std::uint64_t number = TakeDigits(stream_).value_or(0);
  return number > IFC::kLargestNumber ? 0 : static_cast<std::uint32_t>(number);
}

bool RecordWalker::TakeString(WideString* text) {
  if (text == nullptr) {
    endsInString_ = !SkipString(stream_);
  } else {
    stream_.ClearStatementText();
    endsInString_ = !DecodeString(stream_, *text);
  }
  return !endsInString_;
}

}  // namespace corvel
