// Any bytes, in windows of any size: the scanner ends, and the borders of its windows do not show
// in the tokens. The first byte of the input is the size of the windows.
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "step/reader/scanner.h"
#include "support/memory_streams.h"

namespace {

using corvel::Scanner;
using corvel::Token;
using corvel::TokenType;

int IgnoreReport(const char*, const corvel::WideString&, int) { return 0; }

// What can be told of a token, as one text.
std::string Describe(const Token& token) {
  std::string text = std::to_string(static_cast<unsigned>(token.type)) + ":";
  switch (token.type) {
    case TokenType::IdentifierToken: return text + std::to_string(token.number);
    case TokenType::WstringToken: return text + corvel::ToUtf8(token.decoded.Wide());
    case TokenType::IntegerDataTypeToken: return text + std::to_string(token.integer);
    case TokenType::RealDataTypeToken: return text + std::to_string(token.real);
    case TokenType::EntityNameToken:
    case TokenType::EnumerationToken:
    case TokenType::IsoToken:
    case TokenType::EndIsoToken: return text + token.text;
    case TokenType::HeaderToken: return text + corvel::ToUtf8(token.header->schemaIdentifier);
    default: return text;
  }
}

std::vector<std::string> TokensOf(const std::string& bytes, std::size_t windowSize) {
  Scanner scanner(std::make_unique<corvel::test::MemoryInputStream>(bytes, windowSize),
                  IgnoreReport);
  std::vector<std::string> tokens;
  // Each token takes at least a byte, so there cannot be more.
  for (std::size_t i = 0; i <= bytes.size() + 1; ++i) {
    const Token& token = *scanner.NextToken();
    if (token.Is(TokenType::EndOfFileToken)) {
      tokens.push_back(scanner.Stream()->StatementText());
      return tokens;
    }
    tokens.push_back(Describe(token));
  }
  std::abort();  // more tokens than bytes
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  const std::size_t windowSize = data[0] % 64 + 1u;
  if (TokensOf(bytes, windowSize) != TokensOf(bytes, size)) std::abort();
  return 0;
}
