#include "step/reader/scanner.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

#include "step/numbers/number_text.h"
#include "step/reader/header_reader.h"
#include "step/reader/record_lines.h"
#include "step/reader/record_skipper.h"
#include "step/reader/skipped_input.h"
#include "step/reader/string_decoder.h"
#include "step/reader/tolerance.h"
#include "step/streams/open_input.h"

namespace corvel {

namespace {

constexpr int kEnd = -1;
// Behind what makes a number stands more than blanks and comments.
bool HoldsMore(std::string_view number) {
  const std::size_t end = number.find_first_not_of("0123456789.+-eE");
  if (end == std::string_view::npos) return false;
  const std::size_t next = number.find_first_not_of("_ \t\r\n\v\f", end);
  return next != std::string_view::npos && !number.substr(next).starts_with(kCommentStart);
}

constexpr char16_t kOutOfRange[] = u"stoul argument out of range";

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
    DropLongLeadIn();
    if (!stream_->Refill()) return false;
  }
}

Token* Scanner::ScanToken() {
  for (;;) {
    if (std::exchange(afterSemicolon_, false)) stream_->ClearStatementText();
    if (!SkipBlanks()) return Make(TokenType::EndOfFileToken);
    if (!inRecord_) tokenOffset_ = stream_->Position();
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
    Token* const unknown = Sign(TokenType::UnknownSignToken);
    unknown->text.assign(1, c);
    return unknown;
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
    metClosingLine_ = metClosingLine_ || (token->IsClosingLine() && HasByte());
  } else if (word == "HEADER" && !inHeader_ && !(tolerant_ && inRecord_)) {
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
    const std::int64_t offset = skipped_ == nullptr ? 0 : stream_->Position();
    AppendWhile(text, [this](char c) { return c != ',' && c != ')' && (c != ';' || !tolerant_); });
    if (tolerant_ && inRecord_ && HoldsMore(text)) throw MisfitInRecord();
    if (skipped_ != nullptr && inRecord_ && GoesOn(text)) {
      skipped_->Note(SkippedInput::Kind::kRunOnNumber, offset, RecordsIn(text));
    }
    token->type = TokenType::RealDataTypeToken;
    token->real = ParseReal(text);
    return token;
  }
  token->integer = ParseInteger(text);
  // Up to nine digits the 32 bits hold all of it.
  token->real = text.size() < 10 ? token->integer : ParseReal(text);
  return token;
}

// Signs that no number has, however it is written: it goes on over something else.
bool Scanner::GoesOn(const std::string& number) const {
  return number.find_first_of(";#='(") != std::string::npos ||
         number.find(kCommentStart) != std::string::npos;
}

Token* Scanner::ReadIdentifier() {
  ++argument_;
  TakeByte();
  Token* const token = Make(TokenType::IdentifierToken);
  const std::optional<std::uint64_t> number = TakeDigits(*stream_);
  if (tolerant_ && (!number || *number > IFC::kLargestNumber)) throw MisfitInRecord();
  if (!number) return StopWith(u"invalid stoul argument");
  if (*number > IFC::kLargestNumber) return StopWith(kOutOfRange);
  token->number = static_cast<std::uint32_t>(*number);
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
  const std::int64_t start = stream_->Position();
  TakeByte();
  const int second = NextByte();
  if (second == '*') {
    return SkipComment(start) ? nullptr : Make(TokenType::EndOfFileToken);
  }
  if (second == kEnd || second == static_cast<unsigned char>(kLastByte)) {
    return Make(TokenType::EndOfFileToken);
  }
  Token* const unknown = Make(TokenType::UnknownSignToken);
  unknown->text.assign(1, '/');
  return unknown;
}

// Behind the "/*" at `start`. False when the input ends inside the comment.
bool Scanner::SkipComment(std::int64_t start) {
  RecordLines lines(RecordLines::Text::kComment);
  RecordLines places;
  bool holdsComment = false;
  bool dropped = false;
  const auto more = [&] {
    const std::size_t kept = stream_->StatementSize();
    DropLongLeadIn();
    dropped = dropped || stream_->StatementSize() < kept;
    return stream_->Refill();
  };
  const bool closed = PassComment(*stream_, more, [&](char before, char byte) {
    holdsComment = holdsComment || (before == '/' && byte == '*');
    lines.Take(byte);
    places.Take(byte);
  });
  // One without an end, or that another begins in, was not meant to go that far: then a record
  // counts wherever it stands.
  const std::uint32_t records = holdsComment || !closed ? places.Count() : lines.Count();
  // What is left of the text would begin inside of the comment.
  if (dropped) stream_->ClearStatementText();
  if (records != 0 || !closed) Suspect();
  if (skipped_ != nullptr && !closed) {
    skipped_->Note(SkippedInput::Kind::kEndlessComment, start, records);
  } else if (skipped_ != nullptr && records != 0) {
    skipped_->Note(SkippedInput::Kind::kComment, start, records);
  }
  return closed;
}

Token* Scanner::ReadString() {
  const std::int64_t offset = skipped_ == nullptr ? 0 : stream_->Position();
  TakeByte();
  const std::size_t start = stream_->StatementSize();
  Token* const token = Make(TokenType::WstringToken);
  token->decoded.Clear();
  DecodeString(*stream_, token->decoded);
  token->number = skipped_ == nullptr && !suspicious_ ? 0 : RecordsInLastString(start);
  if (token->number != 0) Suspect();
  if (token->number != 0 && inRecord_ && skipped_ != nullptr) {
    skipped_->Note(SkippedInput::Kind::kRunOnString, offset, token->number);
  }
  return token;
}

// In its bytes, which begin at `start` of the statement text: what a directive swallows never gets
// into the decoded text. A value may well begin with "#12=", but text between records may not.
std::uint32_t Scanner::RecordsInLastString(std::size_t start) {
  const std::string_view bytes = stream_->StatementView().substr(start);
  if (bytes.find('#') == std::string_view::npos) return 0;
  RecordLines lines(inRecord_ ? RecordLines::Text::kInsideRecord
                              : RecordLines::Text::kBetweenRecords);
  lines.Take(bytes);
  return lines.Count();
}

void Scanner::Suspect() const {
  if (suspicious_ && inRecord_ && !trusted_) throw MisfitInRecord();
}

void Scanner::RefuseNumber() { StopWith(kOutOfRange); }

void Scanner::SkipSection() {
  constexpr std::string_view kLastWord = "ENDSEC";
  constexpr std::size_t kMostKept = 64;
  std::string end;  // of the statement at hand, without the blanks behind it
  for (int byte = NextByte(); byte != kEnd; byte = NextByte()) {
    const char c = static_cast<char>(byte);
    if (c == ';') {
      stream_->ClearStatementText();
      while (!end.empty() && IsBlank(end.back())) end.pop_back();
      if (end.ends_with(kLastWord)) {
        const std::size_t before = end.size() - kLastWord.size();
        if (before == 0 || !IsOfKind(end[before - 1], kLetterByte | kDigitByte)) return;
      }
      end.clear();
    } else {
      DropLongLeadIn();
      if (!IsBlank(c) || end.empty() || !IsBlank(end.back())) end.push_back(c);
      if (end.size() > kMostKept) end.erase(0, kMostKept / 2);
    }
  }
}

}  // namespace corvel
