#include "step/reader/scanner.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

#include "core/entity.h"
#include "step/numbers/number_text.h"
#include "step/reader/header_reader.h"
#include "step/reader/string_decoder.h"
#include "step/streams/open_input.h"

namespace corvel {

namespace {

constexpr int kEnd = -1;
constexpr char kLastByte = '\xFF';  // looks like the end of the input

}  // namespace

Scanner::Scanner(const WideString& path, std::size_t bufferSize, ErrorReporter showError)
    : stream_(FileStream::OpenInput(path, bufferSize, showError)), showError_(showError) {
  if (stream_ != nullptr) return;
  showError_("could_not_open_file_extension", u" " + path, kReportShow);
  stopped_ = true;
}

Scanner::Scanner(std::unique_ptr<FileStream::InputStream> stream, ErrorReporter showError)
    : stream_(std::move(stream)), showError_(showError) {}

Scanner::~Scanner() = default;

Token* Scanner::Make(TokenType type) {
  Token& token = tokens_[next_];
  next_ = (next_ + 1) % kTokensKept;
  token.type = type;
  return &token;
}

Token* Scanner::StoppedToken() { return Make(TokenType::EndOfFileToken); }

Token* Scanner::StopWith(const WideString& message) {
  showError_("", message, kReportShow);
  stopped_ = true;
  return StoppedToken();
}

Token* Scanner::MakeToken() {
  try {
    return ScanToken();
  } catch (const std::bad_alloc&) {
    return StopWith(u"Not enough memory space. Try to run 64-bit Orlenta");
  } catch (const std::exception& error) {
    return StopWith(FromUtf8(error.what()));
  }
}

int Scanner::NextByte() {
  if (!HasByte()) return kEnd;
  const int byte = static_cast<unsigned char>(Byte());
  TakeByte();
  return byte;
}

// False at the end of the input, as a byte of 255 is.
bool Scanner::SkipBlanks() {
  for (;;) {
    const char* at = stream_->Cursor();
    const char* const end = stream_->WindowEnd();
    for (; at != end && IsBlank(*at); ++at) {
      if (*at == '\n') ++line_;
    }
    stream_->SetCursor(at);
    if (at != end) return *at != kLastByte;
    if (!stream_->Refill()) return false;
  }
}

Token* Scanner::ScanToken() {
  for (;;) {
    if (std::exchange(afterSemicolon_, false)) stream_->ClearStatementText();
    if (!SkipBlanks()) return Make(TokenType::EndOfFileToken);
    const char c = Byte();
    switch (c) {
      case ';':
        argument_ = 0;
        afterSemicolon_ = true;
        return Sign(TokenType::SemicolonToken);
      case '#': return ReadIdentifier();
      case '=': return Sign(TokenType::EqualToken);
      case '(': return Sign(TokenType::OpenBracketToken);
      case ')': return Sign(TokenType::CloseBracketToken);
      case '\'': return ReadString();
      case ',':
        ++argument_;
        TakeByte();
        continue;
      case '.': return ReadEnumeration();
      case '$':
      case '*': return Sign(TokenType::EmptyParameterToken);
      case '/':
        if (Token* const token = ReadSlash()) return token;
        continue;
      default: break;
    }
    if (IsLetter(c)) return ReadWord();
    if (IsDigit(c) || c == '-') return ReadNumber();
    return Sign(TokenType::UnknownSignToken);
  }
}

Token* Scanner::Sign(TokenType type) {
  TakeByte();
  return Make(type);
}

// Appends bytes to `text` as long as `accept` says yes, over any number of windows.
template <class Accept>
void Scanner::AppendWhile(std::string& text, Accept accept) {
  while (HasByte()) {
    const char* const begin = stream_->Cursor();
    const char* const end = stream_->WindowEnd();
    const char* at = begin;
    while (at != end && accept(*at)) ++at;
    text.append(begin, at);
    stream_->SetCursor(at);
    if (at != end) return;
  }
}

Token* Scanner::ReadWord() {
  Token* const token = Make(TokenType::EntityNameToken);
  std::string& word = token->text;
  word.clear();
  AppendWhile(word, [](char c) { return IsOfKind(c, kLetterByte | kDigitByte) || c == '_'; });
  std::erase(word, '_');
  if (word == "inf") {
    token->type = TokenType::RealDataTypeToken;
    token->real = std::numeric_limits<double>::infinity();
  } else if (word == "ISO" || word == "END") {
    token->type = word == "ISO" ? TokenType::IsoToken : TokenType::EndIsoToken;
    AppendWhile(word, [](char c) { return c != ';'; });
  } else if (word == "HEADER" && !inHeader_) {
    inHeader_ = true;
    auto header = HeaderReader(*this).Read();
    inHeader_ = false;
    Token* const headerToken = Make(TokenType::HeaderToken);
    headerToken->header = std::move(header);
    return headerToken;
  } else if (word == "ENDSEC") {
    token->type = TokenType::EndsecToken;
  } else if (word == "DATA") {
    token->type = TokenType::DataToken;
  }
  return token;
}

Token* Scanner::ReadNumber() {
  Token* const token = Make(TokenType::IntegerDataTypeToken);
  std::string& text = token->text;
  text.assign(1, Byte());
  TakeByte();
  AppendWhile(text, IsDigit);
  if (HasByte() && Byte() == '.') {
    // Everything up to the end of the value belongs to it, exponent and all.
    AppendWhile(text, [](char c) { return c != ',' && c != ')'; });
    token->type = TokenType::RealDataTypeToken;
    token->real = ParseReal(text);
    return token;
  }
  token->integer = ParseInteger(text);
  token->real = text.size() < 10 ? token->integer : ParseReal(text);
  return token;
}

Token* Scanner::ReadIdentifier() {
  ++argument_;
  TakeByte();
  Token* const token = Make(TokenType::IdentifierToken);
  std::uint64_t number = 0;
  bool anyDigit = false;
  while (HasByte() && IsDigit(Byte())) {
    anyDigit = true;
    if (number <= IFC::kLargestNumber) {
      number = number * 10 + static_cast<unsigned>(Byte() - '0');
    }
    TakeByte();
  }
  if (!anyDigit) return StopWith(u"invalid stoul argument");
  if (number > IFC::kLargestNumber) return StopWith(u"stoul argument out of range");
  token->number = static_cast<std::uint32_t>(number);
  return token;
}

Token* Scanner::ReadEnumeration() {
  Token* const token = Make(TokenType::EnumerationToken);
  token->text.clear();
  TakeByte();
  AppendWhile(token->text, [](char c) { return c != '.'; });
  if (HasByte()) TakeByte();
  return token;
}

// A comment gives null: the scan goes on behind it.
Token* Scanner::ReadSlash() {
  TakeByte();
  const int second = NextByte();
  if (second == '*') {
    return SkipComment() ? nullptr : Make(TokenType::EndOfFileToken);
  }
  return Make(second == kEnd || second == static_cast<unsigned char>(kLastByte)
                  ? TokenType::EndOfFileToken
                  : TokenType::UnknownSignToken);
}

// False when the input ends inside the comment.
bool Scanner::SkipComment() {
  int before = 0;
  for (int byte = NextByte(); byte != kEnd; byte = NextByte()) {
    if (before == '*' && byte == '/') return true;
    before = byte;
  }
  return false;
}

Token* Scanner::ReadString() {
  TakeByte();
  Token* const token = Make(TokenType::WstringToken);
  token->wide.clear();
  DecodeString(*stream_, token->wide);
  return token;
}

}  // namespace corvel
