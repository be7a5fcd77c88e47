// Tokens as texts that a test can compare: one line of words for each token of an input.
#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/reporting.h"
#include "step/reader/scanner.h"
#include "support/memory_streams.h"

namespace corvel::test {

// ASCII as it stands, every other unit as <00E4>.
inline std::string Visible(WideView text) {
  std::string shown;
  for (const char16_t unit : text) {
    if (unit >= 32 && unit < 127) {
      shown.push_back(static_cast<char>(unit));
    } else {
      char hex[8];
      std::snprintf(hex, sizeof hex, "<%04X>", static_cast<unsigned>(unit));
      shown += hex;
    }
  }
  return shown;
}

// `'a','b'`
inline std::string Visible(const std::vector<WideString>& texts) {
  std::string shown;
  for (const WideString& text : texts) {
    shown += (shown.empty() ? "'" : ",'") + Visible(text) + "'";
  }
  return shown;
}

inline std::string Visible(double value) {
  char text[64];
  std::snprintf(text, sizeof text, "%.17g", value);
  return text;
}

inline std::string Visible(const HeaderToken& header) {
  return "header [" + Visible(header.fileDescription) + "] [" +
         Visible(header.implementationLevel) + "] [" + Visible(header.name) + "] [" +
         Visible(header.timeStamp) + "] [" + Visible(header.author) + "] [" +
         Visible(header.organization) + "] [" + Visible(header.preprocessorVersion) + "] [" +
         Visible(header.originatingSystem) + "] [" + Visible(header.authorization) + "] [" +
         Visible(header.schemaIdentifier) + "]";
}

inline std::string Visible(const Token& token) {
  switch (token.type) {
    case TokenType::OpenBracketToken: return "(";
    case TokenType::CloseBracketToken: return ")";
    case TokenType::EqualToken: return "=";
    case TokenType::SemicolonToken: return ";";
    case TokenType::EmptyParameterToken: return "$";
    case TokenType::EndOfFileToken: return "end";
    case TokenType::IdentifierToken: return "#" + std::to_string(token.number);
    case TokenType::EntityNameToken: return "word " + token.text;
    case TokenType::WstringToken: return "'" + Visible(token.decoded.Wide()) + "'";
    case TokenType::RealDataTypeToken: return "real " + Visible(token.real);
    case TokenType::IntegerDataTypeToken: return "integer " + std::to_string(token.integer);
    case TokenType::EnumerationToken: return "enumeration " + token.text;
    case TokenType::IsoToken: return "iso " + token.text;
    case TokenType::EndIsoToken: return "end iso " + token.text;
    case TokenType::HeaderToken:
      return token.header == nullptr ? "header without content" : Visible(*token.header);
    default: return Narrow(token.getName());
  }
}

using TokenList = std::vector<std::string>;

// Everything up to the end of the input, without the token that tells of it. An input gives at most
// one token a byte: whatever gives more does not end, and the list tells so.
inline TokenList TokensOf(Scanner& scanner, std::size_t most) {
  TokenList tokens;
  for (const Token* token = scanner.NextToken(); !token->Is(TokenType::EndOfFileToken);
       token = scanner.NextToken()) {
    if (tokens.size() == most) {
      tokens.push_back("this never ends");
      break;
    }
    tokens.push_back(Visible(*token));
  }
  return tokens;
}

// A scanner on a text that comes in windows of `windowSize` bytes.
inline std::unique_ptr<Scanner> ScannerOn(
    std::string text, ErrorReporter showError = nullptr,
    std::size_t windowSize = std::numeric_limits<std::size_t>::max()) {
  return std::make_unique<Scanner>(std::make_unique<MemoryInputStream>(std::move(text), windowSize),
                                   showError);
}

inline TokenList TokensOf(const std::string& text, ErrorReporter showError = nullptr,
                          std::size_t windowSize = std::numeric_limits<std::size_t>::max()) {
  return TokensOf(*ScannerOn(text, showError, windowSize), text.size());
}

}  // namespace corvel::test
