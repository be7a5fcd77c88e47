#include "step/reader/header_reader.h"

#include "step/reader/scanner.h"
#include "step/reader/skipped_input.h"

namespace corvel {

std::unique_ptr<HeaderToken> HeaderReader::Read() {
  auto header = std::make_unique<HeaderToken>();
  SkipPastOpenBracket();  // FILE_DESCRIPTION(
  header->fileDescription = ReadList();
  header->implementationLevel = ReadHeaderString();
  SkipPastOpenBracket();  // FILE_NAME(
  header->name = ReadHeaderString();
  header->timeStamp = ReadHeaderString();
  header->author = ReadList();
  header->organization = ReadList();
  header->preprocessorVersion = ReadHeaderString();
  header->originatingSystem = ReadHeaderString();
  header->authorization = ReadHeaderString();
  SkipPastOpenBracket();  // FILE_SCHEMA(
  if (!AtEnd()) Take();   // the second bracket
  header->schemaIdentifier = ReadHeaderString();
  while (!AtEnd()) Take();
  Take();  // ENDSEC
  if (scanner_.PeekToken()->Is(TokenType::SemicolonToken)) Take();
  if (records_ != 0 && scanner_.skipped_ != nullptr) {
    scanner_.skipped_->Note(SkippedInput::Kind::kInHeader, firstRecord_, records_);
  }
  return header;
}

// A number with a "=" behind it begins a record, which no header has. Strings swallow them as well.
const Token& HeaderReader::Take() {
  const Token& token = *scanner_.NextToken();
  const bool isString = token.Is(TokenType::WstringToken);
  std::uint64_t records = isString ? token.number : 0;
  if (behindNumber_ && token.Is(TokenType::EqualToken)) records = 1;
  if (records_ == 0 && records != 0) firstRecord_ = isString ? scanner_.TokenOffset() : number_;
  records_ += records;
  behindNumber_ = token.Is(TokenType::IdentifierToken);
  if (behindNumber_) number_ = scanner_.TokenOffset();
  return token;
}

bool HeaderReader::AtEnd() {
  const TokenType type = scanner_.PeekToken()->getType();
  return type == TokenType::EndsecToken || type == TokenType::EndOfFileToken;
}

void HeaderReader::SkipPastOpenBracket() {
  while (!AtEnd()) {
    if (Take().Is(TokenType::OpenBracketToken)) return;
  }
}

// Anything that is no string counts as the empty text.
WideString HeaderReader::ReadHeaderString() {
  if (AtEnd()) return {};
  const Token& token = Take();
  return token.Is(TokenType::WstringToken) ? token.decoded.Wide() : WideString();
}

// `('a','b')`; `$` in its place is an empty list.
std::vector<WideString> HeaderReader::ReadList() {
  std::vector<WideString> texts;
  if (AtEnd() || Take().Is(TokenType::EmptyParameterToken)) return texts;
  while (!AtEnd() && !scanner_.PeekToken()->Is(TokenType::CloseBracketToken)) {
    texts.push_back(ReadHeaderString());
  }
  if (!AtEnd()) Take();
  return texts;
}

}  // namespace corvel
