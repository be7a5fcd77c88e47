#include "step/reader/record_borders.h"

#include "step/reader/byte_kinds.h"
#include "step/reader/record_lines.h"

namespace corvel {

namespace {

using Kind = SkippedInput::Kind;

// Tokens that may hold more than a value should.
std::uint32_t RecordsInside(const Token& token) {
  switch (token.getType()) {
    case TokenType::WstringToken: return token.number;
    case TokenType::EnumerationToken:
    case TokenType::IsoToken:
    case TokenType::EndIsoToken:
    case TokenType::RealDataTypeToken: return RecordsIn(token.text);
    default: return 0;
  }
}

// Where the last byte that is no blank has been taken. Looking for the ";" has gone over blanks.
std::int64_t EndOfText(FileStream::InputStream& stream) {
  std::string_view text = stream.StatementView();
  std::int64_t offset = stream.Position();
  for (; !text.empty() && IsBlank(text.back()); text.remove_suffix(1)) --offset;
  return offset;
}

// What pads a file behind its end.
bool IsPadding(const Token& token) {
  constexpr char kEndOfText = '\x1A';
  return token.Is(TokenType::UnknownSignToken) &&
         (token.text.front() == '\0' || token.text.front() == kEndOfText);
}

}  // namespace

void RecordBorders::TakeHead(Scanner& scanner) {
  const Token& token = *scanner.NextToken();
  if (!token.Is(TokenType::EndOfFileToken)) Pass(scanner, token);
}

bool RecordBorders::FindRecord(Scanner& scanner, std::uint32_t& number) {
  for (;;) {
    const Token& token = *scanner.NextToken();
    const bool found = token.Is(TokenType::IdentifierToken);
    if (found || token.Is(TokenType::EndOfFileToken)) {
      const bool commasOnly = found && run_.offset < 0 && scanner.Argument() != 1;
      if (commasOnly) NoteCommas(scanner);
      EndRun();
      if (found) inData_ = true;
      number = token.number;
      return found;
    }
    Pass(scanner, token);
    scanner.DropLongLeadIn();
  }
}

void RecordBorders::NoteCommas(Scanner& scanner) {
  skipped_.Note(Kind::kText, scanner.Stream()->Position());
}

void RecordBorders::Pass(Scanner& scanner, const Token& token) {
  if (token.Is(TokenType::SemicolonToken)) {
    EndRun();
    inDataHead_ = false;
  } else if (IsUnreadSection(token)) {
    EndRun();
    skipped_.NoteSection(token.text, scanner.TokenOffset());
    scanner.SkipSection();
  } else if (!IsExpected(token)) {
    AddToRun(token, scanner.TokenOffset());
  }
}

bool RecordBorders::IsExpected(const Token& token) {
  switch (token.getType()) {
    case TokenType::DataToken: inData_ = inDataHead_ = true; return true;
    case TokenType::EndsecToken: inData_ = false; return true;
    case TokenType::EndIsoToken:
      if (!token.IsClosingLine()) return false;
      isClosed_ = true;
      return RecordsInside(token) == 0;
    case TokenType::OpenBracketToken:
    case TokenType::CloseBracketToken: return inDataHead_;
    case TokenType::WstringToken: return inDataHead_ && token.number == 0;
    case TokenType::UnknownSignToken: return isClosed_ && IsPadding(token);
    default: return false;
  }
}

bool RecordBorders::IsUnreadSection(const Token& token) const {
  if (inData_ || run_.offset >= 0 || !token.Is(TokenType::EntityNameToken)) return false;
  return token.text == "ANCHOR" || token.text == "REFERENCE" || token.text == "SIGNATURE";
}

void RecordBorders::AddToRun(const Token& token, std::int64_t offset) {
  if (run_.offset < 0) run_.offset = offset;
  run_.records += RecordsInside(token);
  if (run_.behindEqual && token.Is(TokenType::EntityNameToken)) run_.hasName = true;
  run_.behindEqual = token.Is(TokenType::EqualToken);
}

void RecordBorders::EndRun() {
  if (run_.offset < 0) return;
  skipped_.Note(run_.hasName ? Kind::kNoNumber : Kind::kText, run_.offset, run_.records);
  run_ = {};
}

// A number with a "=" behind it begins a record. The words of the file's end are no arguments
// either.
void RecordBorders::FinishRecord(Scanner& scanner) {
  const std::int64_t offset = EndOfText(*scanner.Stream());
  std::uint64_t records = 0;
  bool surplus = false;
  bool passedBorder = false;
  bool behindNumber = false;
  for (;;) {
    const Token& token = *scanner.NextToken();
    if (token.Is(TokenType::SemicolonToken) || token.Is(TokenType::EndOfFileToken)) break;
    // Brackets alone hold nothing that could be lost, and the writer leaves one behind null styles.
    surplus = surplus || !token.Is(TokenType::CloseBracketToken);
    if (behindNumber && token.Is(TokenType::EqualToken)) ++records;
    behindNumber = token.Is(TokenType::IdentifierToken);
    records += RecordsInside(token);
    if (token.Is(TokenType::EndsecToken)) inData_ = false;
    if (token.IsClosingLine()) isClosed_ = true;
    passedBorder = passedBorder || token.Is(TokenType::EndsecToken) || token.IsClosingLine();
  }
  if (!surplus) return;
  skipped_.Note(records != 0 || passedBorder ? Kind::kNoSemicolon : Kind::kSurplus, offset,
                records);
}

}  // namespace corvel
