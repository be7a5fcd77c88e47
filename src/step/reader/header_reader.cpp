#include "step/reader/header_reader.h"

#include "step/reader/scanner.h"

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
  if (!AtEnd()) scanner_.NextToken();
  header->schemaIdentifier = ReadHeaderString();
  while (!AtEnd()) scanner_.NextToken();
  scanner_.NextToken();  // ENDSEC
  if (scanner_.PeekToken()->Is(TokenType::SemicolonToken)) scanner_.NextToken();
  return header;
}

bool HeaderReader::AtEnd() {
  const TokenType type = scanner_.PeekToken()->getType();
  return type == TokenType::EndsecToken || type == TokenType::EndOfFileToken;
}

void HeaderReader::SkipPastOpenBracket() {
  while (!AtEnd()) {
    if (scanner_.NextToken()->Is(TokenType::OpenBracketToken)) return;
  }
}

// Anything that is no string counts as the empty text.
WideString HeaderReader::ReadHeaderString() {
  if (AtEnd()) return {};
  const Token* const token = scanner_.NextToken();
  return token->Is(TokenType::WstringToken) ? token->wide : WideString();
}

// `('a','b')`; `$` in its place is an empty list.
std::vector<WideString> HeaderReader::ReadList() {
  std::vector<WideString> texts;
  if (AtEnd() || scanner_.NextToken()->Is(TokenType::EmptyParameterToken)) return texts;
  while (!AtEnd() && !scanner_.PeekToken()->Is(TokenType::CloseBracketToken)) {
    texts.push_back(ReadHeaderString());
  }
  if (!AtEnd()) scanner_.NextToken();
  return texts;
}

}  // namespace corvel
