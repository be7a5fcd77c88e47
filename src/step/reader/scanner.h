// From bytes to tokens, with one token of look-ahead.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "core/reporting.h"
#include "core/text.h"
#include "step/reader/byte_kinds.h"
#include "step/reader/token.h"
#include "step/streams/input_stream.h"

namespace corvel {

class SkippedInput;

// Reads loosely: a subset of ISO 10303-21 with shortcuts. Commas never reach a caller, a strange
// byte becomes an UnknownSignToken, and the whole HEADER section comes as one token. End of input
// inside anything ends that thing there.
//
// A token stays good until kTokensKept - 1 further ones have been made or ClearTokens is called.
class Scanner {
 public:
  static constexpr std::size_t kTokensKept = 8;
  // Bytes of blanks and comments that are kept as the text before a record.
  static constexpr std::size_t kLongestLeadIn = 0xA00000;

  // Chooses the stream by the extension of `path`. An unknown one is reported with the key
  // "could_not_open_file_extension" and stops the scanner; `Stream()` is then null.
  Scanner(const WideString& path, std::size_t bufferSize, ErrorReporter showError);
  // For a stream that the caller has made.
  Scanner(std::unique_ptr<FileStream::InputStream> stream, ErrorReporter showError);
  ~Scanner();
  Scanner(const Scanner&) = delete;
  Scanner& operator=(const Scanner&) = delete;

  // Never null. EndOfFileToken for ever once stopped.
  Token* NextToken() {
    if (stopped_) return StoppedToken();
    if (Token* const peeked = lookAhead_) {
      lookAhead_ = nullptr;
      return peeked;
    }
    return MakeToken();
  }
  // The next token without taking it.
  Token* PeekToken() {
    if (stopped_) return StoppedToken();
    if (lookAhead_ == nullptr) lookAhead_ = MakeToken();
    return lookAhead_;
  }
  // Gives up all tokens, the look-ahead included.
  void ClearTokens() { lookAhead_ = nullptr; }

  // --- Plain tokens -----------------------------------------------------------------------------
  // Nearly all tokens of a model are plain: they stand whole in the stream's window, together with
  // the byte behind them, and need no decoding. These take one straight from there. False: the next
  // token is not of this kind or not plain; blanks and commas before it may be taken, nothing else,
  // and NextToken and PeekToken give it as ever. Texts are good until the stream moves on.

  // Behind a ";" the statement text starts anew with the next token. Tokens see to that
  // themselves; call it before the first plain one.
  void StartStatement() {
    if (!afterSemicolon_ || stopped_ || lookAhead_ != nullptr) return;
    afterSemicolon_ = false;
    stream_->ClearStatementText();
  }
  // The first byte of the next token; 0 when that takes more than a look at the window.
  char PeekSign() {
    if (stopped_ || lookAhead_ != nullptr || afterSemicolon_) return 0;
    const char* at = stream_->Cursor();
    const char* const end = stream_->WindowEnd();
    for (; at != end && IsOfKind(*at, kBlankByte | kCommaByte); ++at) {
      if (*at == ',') ++argument_;
      if (*at == '\n') ++line_;
    }
    stream_->SetCursor(at);
    return at != end ? *at : '\0';
  }
  // Whether the very next byte of the window is this one. Call behind a token, with none looked
  // ahead.
  bool StandsAt(char sign) const {
    return stream_->Cursor() != stream_->WindowEnd() && *stream_->Cursor() == sign;
  }
  // One of = ( ) $ *
  bool TakeSign(char sign) {
    if (PeekSign() != sign) return false;
    TakeByte();
    return true;
  }
  bool TakeSemicolon();
  // ")" and ";" with nothing between them, or nothing.
  bool TakeRecordEnd();
  bool TakeIdentifier(std::uint32_t& number);
  // Any number, with a point or without.
  bool TakeNumber(double& value);
  // A number without a point.
  bool TakeInteger(std::int32_t& value);
  // ASCII without a quote or "\" in it.
  bool TakeString(std::string_view& text);
  bool TakeEnumeration(std::string_view& name);
  // A word that begins with "IFC".
  bool TakeClassName(std::string_view& name);

  // What stands between the next token and a "(" in the window. Empty: that takes more than a look.
  // Nothing but blanks and commas before the token is taken.
  std::string_view PeekCall();
  // Takes what PeekCall gave, and the "(".
  void TakeCall(std::string_view call) { stream_->SetCursor(call.data() + call.size() + 1); }

  // Null when the extension was not known.
  FileStream::InputStream* Stream() { return stream_.get(); }
  bool IsOpen() const { return stream_ != nullptr && stream_->IsOpen(); }

  bool IsStopped() const { return stopped_; }
  // From now on only EndOfFileToken is given.
  void Stop() { stopped_ = true; }

  // Words and numbers within records take nothing along that stands behind them, and a "#" that is
  // no number throws MisfitInRecord. If `suspicious`, so do strings and comments that may hold
  // records, up to TrustRecord.
  void ReadTolerantly(bool suspicious) {
    tolerant_ = true;
    suspicious_ = suspicious;
  }
  // The record that has been entered holds what it seems to hold.
  void TrustRecord() { trusted_ = true; }
  // Where comments, strings and numbers that swallow records are noted. Borrowed; null: nowhere.
  void NoteIn(SkippedInput* skipped) { skipped_ = skipped; }

  // The statement text matters inside of records only, and begins with the blanks and comments
  // before them. Outside it is given up when it gets long, and then begins somewhere outside of
  // comments.
  void EnterRecord() {
    inRecord_ = true;
    trusted_ = false;
  }
  void LeaveRecord() { inRecord_ = false; }
  void DropLongLeadIn() {
    if (!inRecord_ && stream_->StatementSize() > kLongestLeadIn) stream_->ClearStatementText();
  }
  // Where the last token begins that NextToken or PeekToken made outside of a record.
  std::int64_t TokenOffset() const { return tokenOffset_; }
  // Moves back behind the first `kept` bytes of the statement text, whatever tokens were made of
  // the others.
  void Rewind(std::size_t kept) {
    ClearTokens();
    afterSemicolon_ = false;
    argument_ = 0;
    stream_->Rewind(kept);
  }
  // Behind the ";" of a record that somebody else has read, which ends in this line.
  void GoOnInLine(std::uint32_t line) {
    ClearTokens();
    line_ = line;
    argument_ = 0;
  }
  // Takes everything up to and including the next statement that ends with ENDSEC, whatever it is.
  // Call with no token looked ahead.
  void SkipSection();
  // As a number is refused that is too large to be one: reports it and stops.
  void RefuseNumber();
  // `END-ISO...;` has been met, whole and outside of strings and comments.
  bool MetClosingLine() const { return metClosingLine_; }

  // Line feeds met between tokens, plus 1.
  std::uint32_t Line() const { return line_; }
  // Commas and # of the current record.
  std::uint32_t Argument() const { return argument_; }

 private:
  friend class HeaderReader;

  // As those without Any, whatever stands in the window.
  bool TakeAnyIdentifier(std::uint32_t& number);
  bool TakeAnyNumber(double& value);

  Token* StoppedToken();
  Token* MakeToken();
  Token* ScanToken();
  Token* Make(TokenType type);
  Token* StopWith(const WideString& message);

  bool HasByte() { return stream_->HasByte(); }
  char Byte() const { return *stream_->Cursor(); }
  void TakeByte() { stream_->SetCursor(stream_->Cursor() + 1); }
  // The next byte, taken; -1 at the end.
  int NextByte();

  bool SkipBlanks();
  bool SkipComment(std::int64_t start);
  std::uint32_t RecordsInLastString(std::size_t start);
  bool GoesOn(const std::string& number) const;
  void Suspect() const;
  template <class Accept>
  void AppendWhile(std::string& text, Accept accept);

  Token* Sign(TokenType type);
  Token* ReadWord();
  Token* ReadNumber();
  Token* ReadIdentifier();
  Token* ReadEnumeration();
  Token* ReadSlash();
  Token* ReadString();

  std::unique_ptr<FileStream::InputStream> stream_;
  std::array<Token, kTokensKept> tokens_;
  std::size_t next_ = 0;
  Token* lookAhead_ = nullptr;
  std::uint32_t line_ = 1;
  std::uint32_t argument_ = 0;
  ErrorReporter showError_;
  SkippedInput* skipped_ = nullptr;
  std::int64_t tokenOffset_ = 0;
  bool stopped_ = false;
  bool afterSemicolon_ = false;
  bool inHeader_ = false;
  bool inRecord_ = false;
  bool metClosingLine_ = false;
  bool tolerant_ = false;
  bool suspicious_ = false;
  bool trusted_ = false;
};

}  // namespace corvel

#include "step/reader/plain_tokens.h"  // IWYU pragma: export
