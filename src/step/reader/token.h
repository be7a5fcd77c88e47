// The pieces that a STEP file is read in.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/text.h"
#include "step/reader/decoded_text.h"

namespace corvel {

// The numbers are fixed; the gaps are kinds that no longer exist.
enum class TokenType : std::uint32_t {
  EndsecToken = 0,            // ENDSEC
  OpenBracketToken = 1,       // (
  CloseBracketToken = 2,      // )
  EqualToken = 3,             // =
  SemicolonToken = 4,         // ;
  UnknownSignToken = 5,       // any other byte
  DataToken = 7,              // DATA
  EndOfFileToken = 8,         // end of input, or the scanner has stopped
  EmptyParameterToken = 10,   // $ or *
  NewLineToken = 12,          // never made: line ends are blanks
  IdentifierToken = 14,       // #12: `number`
  EntityNameToken = 15,       // any other word: `text`
  WstringToken = 16,          // a quoted string: `decoded`
  RealDataTypeToken = 17,     // a number with a point, or the word inf: `real`
  IntegerDataTypeToken = 18,  // a number without a point: `integer`, and `real` in full range
  EnumerationToken = 19,      // .WORD.: `text`
  IsoToken = 20,              // the word ISO and all up to ";": `text`
  EndIsoToken = 21,           // the word END and all up to ";": `text`
  HeaderToken = 24,           // the word HEADER and the whole section: `header`
};

// The name of a kind as messages use it: "WStringToken".
const char16_t* NameOf(TokenType type);

// The HEADER section. What a file lacks is empty.
struct HeaderToken {
  std::vector<WideString> fileDescription;
  WideString implementationLevel;
  WideString name;
  WideString timeStamp;
  std::vector<WideString> author;
  std::vector<WideString> organization;
  WideString preprocessorVersion;
  WideString originatingSystem;
  WideString authorization;
  WideString schemaIdentifier;  // the first string of FILE_SCHEMA
};

// One token. The scanner uses its tokens again, with the storage of their texts.
struct Token {
  TokenType type = TokenType::EndOfFileToken;
  std::uint32_t number = 0;
  std::int32_t integer = 0;  // cut to the range of 32 bits
  double real = 0.0;
  std::string text;  // bytes as they stand in the file
  DecodedText decoded;
  std::unique_ptr<HeaderToken> header;  // whoever takes the token may move it out

  TokenType getType() const { return type; }
  const char16_t* getName() const { return NameOf(type); }
  bool Is(TokenType kind) const { return type == kind; }
  // `END-ISO...`: all records of the file have been met.
  bool IsClosingLine() const { return Is(TokenType::EndIsoToken) && text.starts_with("END-ISO"); }
};

}  // namespace corvel
