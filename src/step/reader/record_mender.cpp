#include "step/reader/record_mender.h"

#include <algorithm>
#include <bitset>
#include <optional>
#include <string_view>

namespace corvel {

namespace {

constexpr int kEnd = StreamBytes::kEnd;
constexpr std::string_view kEndOfUnits = "\\X0\\";

bool IsBlankByte(int byte) { return byte != kEnd && IsBlank(static_cast<char>(byte)); }
bool IsDigitByte(int byte) { return byte != kEnd && IsDigit(static_cast<char>(byte)); }
bool IsWordByte(int byte) {
  return byte == '_' ||
         (byte != kEnd && IsOfKind(static_cast<char>(byte), kLetterByte | kDigitByte));
}
bool IsHexByte(int byte) {
  return IsDigitByte(byte) || (byte >= 'A' && byte <= 'F') || (byte >= 'a' && byte <= 'f');
}
bool IsPrintable(int byte) { return byte > ' ' && byte < 0x7F; }

bool EndsInReference(std::string_view text) {
  while (!text.empty() && IsDigit(text.back())) text.remove_suffix(1);
  return text.ends_with('#');
}

void TrimBlanks(std::string& text) {
  while (!text.empty() && IsBlank(text.back())) text.pop_back();
}

}  // namespace

std::string TableName(std::string_view word) {
  std::string name;
  for (const char c : word) {
    if (c != '_') name.push_back(c >= 'a' && c <= 'z' ? static_cast<char>(c - 0x20) : c);
  }
  return name;
}

// One record on its way from the stream to its text.
class RecordMender::Mending {
 public:
  Mending(RecordMender& mender, Scanner& scanner, std::uint32_t number)
      : mender_(mender), bytes_(scanner), number_(number) {}

  MendedRecord Run() {
    record_.offset = bytes_.Position();
    mender_.TakeBetween(bytes_, number_);
    if (bytes_.Peek() == '=') {
      bytes_.Take();
    } else {
      Note(Misfit::kStrayBytes);
    }
    bytes_.TakeBlanks();
    while (!ended_) TakePiece();
    TrimBlanks(text_);
    text_.append(depth_, ')');
    if (hasSeveralClasses_) text_ = "(" + text_ + ")";
    FindClassName();
    for (std::size_t kind = 0; kind < kMisfits; ++kind) {
      if (!found_.test(kind)) continue;
      mender_.tolerance_.Note(static_cast<Misfit>(kind), record_.className, {}, number_,
                              record_.offset);
    }
    record_.isChanged = found_.any();
    record_.text = std::move(text_);
    return std::move(record_);
  }

 private:
  // The class is known at the end only.
  void Note(Misfit kind) { found_.set(static_cast<std::size_t>(kind)); }

  void Keep() { text_.push_back(static_cast<char>(bytes_.Take())); }
  // What goes must not make another reference of one, or a record of it with what stands behind.
  void Drop() {
    Note(Misfit::kStrayBytes);
    bytes_.Take();
    if (EndsInReference(text_)) text_.push_back(' ');
  }
  // The brackets of the record have been closed.
  bool IsWhole() const { return depth_ == 0 && lastBracket_ != 0; }

  void TakePiece() {
    const int c = bytes_.Peek();
    const std::size_t before = text_.size();
    if (depth_ != 0 && StartsValue(c) && EndsValue()) text_.push_back(',');
    TakePiece(c);
    const bool isComment = text_.compare(before, 2, "/*") == 0;
    if (text_.size() > before && !IsBlank(text_.back()) && !isComment) last_ = text_.back();
  }

  // Readers need no comma between two values, but whoever cuts a record into arguments does.
  bool StartsValue(int c) {
    if (c == '#') return !bytes_.AtRecord();
    return c == '\'' || c == '$' || c == '*' || (c == '(' && !IsWordByte(last_));
  }
  bool EndsValue() const {
    return last_ == ')' || last_ == '.' || last_ == '\'' || last_ == '$' || last_ == '*' ||
           IsWordByte(last_);
  }

  void TakePiece(int c) {
    switch (c) {
      case kEnd:
        Note(Misfit::kNoEnd);
        ended_ = true;
        return;
      case ';': TakeSemicolon(); return;
      case '\'': TakeString(); return;
      case '(': TakeOpenBracket(); return;
      case ')': TakeCloseBracket(); return;
      case ',':
        if (IsWhole()) Reopen();
        Keep();
        return;
      case '#': TakeReference(); return;
      case '.': IsWhole() ? Drop() : TakePoint(); return;
      case '/': TakeSlash(); return;
      default: break;
    }
    if (IsWordByte(c) && c != '_') {
      TakeWord();
    } else {
      TakeOther(c);
    }
  }

  void TakeReference() {
    if (bytes_.AtRecord()) {
      EndBeforeNext();
    } else if (IsWhole() || !DigitFollows()) {
      Drop();
    } else {
      Keep();
    }
  }

  bool DigitFollows() {
    const std::size_t mark = bytes_.Mark();
    bytes_.Take();
    const bool found = IsDigitByte(bytes_.Peek());
    bytes_.GoBack(mark);
    return found;
  }

  void TakeOther(int c) {
    if (IsBlankByte(c) || (IsPrintable(c) && c != '=' && !IsWhole())) {
      Keep();
    } else {
      Drop();
    }
  }

  // One within brackets ends the record if another one begins behind it, or nothing does.
  void TakeSemicolon() {
    if (depth_ == 0 || EndsBehindSemicolon()) {
      if (depth_ != 0) Note(Misfit::kOpenBracket);
      bytes_.Take();
      ended_ = true;
    } else {
      Drop();
      text_.push_back(',');
    }
  }

  bool EndsBehindSemicolon() {
    const std::size_t mark = bytes_.Mark();
    bytes_.Take();
    bytes_.TakeBlanks();
    const int next = bytes_.Peek();
    const bool ends = next == kEnd || next == '/' || bytes_.AtRecord() || bytes_.AtEndOfRecords();
    bytes_.GoBack(mark);
    return ends;
  }

  // Neither ";" nor, perhaps, its bracket stand before what comes next.
  void EndBeforeNext() {
    Note(Misfit::kNoSemicolon);
    if (depth_ != 0) Note(Misfit::kOpenBracket);
    ended_ = true;
  }

  // Behind the record it opens nothing, unless it is that of one class more.
  void TakeOpenBracket() {
    if (IsWhole() && !IsWordByte(last_)) {
      Drop();
      return;
    }
    ++depth_;
    Keep();
  }

  // One too many is left behind by writers, and means nothing.
  void TakeCloseBracket() {
    if (depth_ == 0) {
      bytes_.Take();
      return;
    }
    Keep();
    if (--depth_ == 0) lastBracket_ = text_.size();
  }

  // A comma behind the last bracket: the record was not over there.
  void Reopen() {
    Note(Misfit::kStrayBytes);
    text_.erase(lastBracket_ - 1, 1);
    depth_ = 1;
  }

  void TakeWord() {
    if (bytes_.AtEndOfRecords()) {
      EndBeforeNext();
      return;
    }
    const std::size_t before = text_.size();
    while (IsWordByte(bytes_.Peek())) Keep();
    if (before == 0 || !IsWhole()) return;
    // Of several classes, without the brackets around them; or else nothing that can be kept.
    if (BracketFollows() && StartsWithClass()) {
      hasSeveralClasses_ = true;
      return;
    }
    text_.resize(before);
    Note(Misfit::kStrayBytes);
  }

  // A class and its bracket.
  bool StartsWithClass() const {
    std::size_t at = 0;
    while (at < text_.size() && IsWordByte(static_cast<unsigned char>(text_[at]))) ++at;
    const bool hasName = at != 0;
    while (at < text_.size() && IsBlank(text_[at])) ++at;
    return hasName && at < text_.size() && text_[at] == '(';
  }

  bool BracketFollows() {
    const std::size_t mark = bytes_.Mark();
    bytes_.TakeBlanks();
    const bool found = bytes_.Peek() == '(';
    bytes_.GoBack(mark);
    return found;
  }

  // At a "/".
  bool CommentFollows() {
    const std::size_t mark = bytes_.Mark();
    bytes_.Take();
    const bool found = bytes_.Peek() == '*';
    bytes_.GoBack(mark);
    return found;
  }

  // Of a number, or the first of an enumeration value.
  void TakePoint() {
    const bool ofNumber = !text_.empty() && IsDigitByte(static_cast<unsigned char>(text_.back()));
    Keep();
    if (ofNumber || IsDigitByte(bytes_.Peek())) return;
    constexpr std::string_view kBehindValue = ",)(';#\r\n";
    for (int c = bytes_.Peek(); c != kEnd && c != '.'; c = bytes_.Peek()) {
      if (kBehindValue.find(static_cast<char>(c)) != std::string_view::npos) break;
      if (c == '/' && CommentFollows()) break;
      IsPrintable(c) || IsBlankByte(c) ? Keep() : Drop();
    }
    if (bytes_.Peek() == '.') {
      Keep();
      return;
    }
    Note(Misfit::kOpenEnumeration);
    text_.push_back('.');
  }

  void TakeSlash() {
    if (!CommentFollows()) {
      TakeOther('/');
      return;
    }
    bytes_.Take();
    bytes_.Take();
    std::string comment = "/*";
    if (mender_.TakeComment(bytes_, &comment, number_)) {
      text_ += comment;
    } else {
      Note(Misfit::kOpenComment);
    }
  }

  // --- Strings
  // ------------------------------------------------------------------------------------

  void TakeString() {
    const bool keeps = !IsWhole();
    if (!keeps) Note(Misfit::kStrayBytes);
    const std::size_t before = text_.size();
    Keep();
    start_ = bytes_.Mark();
    textStart_ = text_.size();
    lineEnd_.reset();
    while (!TakePieceOfString()) {
    }
    if (!keeps) text_.resize(before);
  }

  // True at the end of the string.
  bool TakePieceOfString() {
    const int c = bytes_.Peek();
    if (c == kEnd) {
      CloseString();
      return true;
    }
    if (c == '\n' && !lineEnd_) {
      LookBehindLine();
      return false;
    }
    Keep();
    if (c == '\\') TakeDirective();
    if (c != '\'') return false;
    if (bytes_.Peek() == '\'') {
      Keep();
      return false;
    }
    // What begins a record may stand in a text as well, if that is closed as it should be.
    if (!lineEnd_) return true;
    if (!ValueEndsHere()) {
      CloseString();
    } else if (mender_.notes_ != nullptr) {
      const std::size_t behind = bytes_.Mark() - start_;
      mender_.notes_->NoteHidden({.offset = bytes_.Position() - static_cast<std::int64_t>(behind),
                                  .record = number_,
                                  .isInText = true});
    }
    return true;
  }

  bool ValueEndsHere() {
    const std::size_t mark = bytes_.Mark();
    bytes_.TakeBlanks();
    const int next = bytes_.Peek();
    bytes_.GoBack(mark);
    return next == ',' || (next == ')' && depth_ != 0);
  }

  // At a line feed.
  void LookBehindLine() {
    const std::size_t here = bytes_.Mark();
    bytes_.TakeBlanks();
    if (bytes_.AtRecord() || bytes_.AtEndOfRecords()) lineEnd_ = here;
    bytes_.GoBack(here);
    Keep();
  }

  // Behind a "\\".
  void TakeDirective() {
    const int c = bytes_.Peek();
    if (c == '\\') {
      Keep();
    } else if (c == 'S') {
      Keep();
      if (bytes_.Peek() != '\\') return;
      Keep();
      if (const int shifted = bytes_.Peek(); shifted != kEnd && shifted != '\n') Keep();
    } else if (c == 'X') {
      Keep();
      if (bytes_.Peek() == '2' || bytes_.Peek() == '4') TakeUnits();
    }
  }

  // Behind `\X`: digits up to `\X0\`, which is put in its place when it is not there.
  void TakeUnits() {
    Keep();
    if (bytes_.Peek() == '\\') Keep();
    while (IsHexByte(bytes_.Peek())) Keep();
    if (bytes_.Peek() != '\\') {
      Note(Misfit::kOpenString);
      text_ += kEndOfUnits;
      return;
    }
    for (const char expected : kEndOfUnits) {
      if (bytes_.Peek() != expected) {
        text_.push_back(expected);
        continue;
      }
      Keep();
    }
  }

  // The string ends with its line. What closes the record there is not part of it.
  void CloseString() {
    Note(Misfit::kOpenString);
    std::string line = TakeLine();
    if (Cut(line, ';')) {
      for (std::size_t i = 0; i < depth_ && Cut(line, ')'); ++i) {
      }
    }
    while (line.ends_with('\r')) line.pop_back();
    bytes_.GoBack(start_ + line.size());
    text_.resize(textStart_);
    text_ += line;
    EndDirective(line);
    text_.push_back('\'');
  }

  // From the start of the string.
  std::string TakeLine() {
    std::string line;
    bytes_.GoBack(start_);
    for (int c = bytes_.Peek(); c != kEnd; c = bytes_.Peek()) {
      if (lineEnd_ ? bytes_.Mark() == *lineEnd_ : c == '\n') break;
      line.push_back(static_cast<char>(bytes_.Take()));
    }
    return line;
  }

  // Takes `byte` from the end of `line`, and blanks behind it.
  static bool Cut(std::string& line, char byte) {
    std::size_t end = line.size();
    while (end != 0 && IsBlank(line[end - 1])) --end;
    if (end == 0 || line[end - 1] != byte) return false;
    line.resize(end - 1);
    return true;
  }

  // One that goes on up to the end of `line`, the end of the text, would take the closing quote
  // for its own.
  void EndDirective(std::string_view line) {
    const std::size_t units = std::max(line.rfind("\\X2\\") + 1, line.rfind("\\X4\\") + 1);
    if (units != 0 && line.find(kEndOfUnits, units) == std::string_view::npos) {
      text_ += kEndOfUnits;
    } else if (line.ends_with("\\S\\")) {
      const std::size_t behind = line.find_last_not_of('\\', line.size() - 3) + 1;
      if ((line.size() - 2 - behind) % 2 == 1) text_.resize(text_.size() - 3);
    }
  }

  void FindClassName() {
    const auto end = std::find_if_not(text_.begin(), text_.end(), [](char c) {
      return IsWordByte(static_cast<unsigned char>(c));
    });
    record_.className = TableName({text_.begin(), end});
  }

  RecordMender& mender_;
  StreamBytes bytes_;
  std::uint32_t number_;
  MendedRecord record_;
  std::string text_;
  char last_ = 0;                // of the text, blanks and comments left out
  std::size_t depth_ = 0;        // of brackets
  std::size_t lastBracket_ = 0;  // behind the one that has closed the record; 0: none has
  bool ended_ = false;
  bool hasSeveralClasses_ = false;      // without the brackets around them
  std::size_t start_ = 0;               // of the string at hand, a mark
  std::size_t textStart_ = 0;           // the same in the text
  std::optional<std::size_t> lineEnd_;  // a mark: a record begins behind it
  std::bitset<kMisfits> found_;
};

MendedRecord RecordMender::Take(Scanner& scanner, std::uint32_t number) {
  return Mending(*this, scanner, number).Run();
}

bool RecordMender::TakeComment(StreamBytes& bytes, std::string* text, std::uint32_t number) {
  const std::size_t start = bytes.Mark();
  const std::size_t kept = text == nullptr ? 0 : text->size();
  bool holdsRecord = false;
  for (int before = 0; !noCommentEnds_;) {
    const int c = bytes.Take();
    if (c == kEnd) noCommentEnds_ = true;
    if (c == kEnd || (holdsRecord && before == '/' && c == '*')) break;
    if (bytes.Mark() - start > kLongestComment) break;
    if (text != nullptr) text->push_back(static_cast<char>(c));
    if (before == '*' && c == '/') {
      if (holdsRecord && notes_ != nullptr) {
        const auto size = static_cast<std::int64_t>(bytes.Mark() - start);
        notes_->NoteHidden(
            {.offset = bytes.Position() - size, .record = number, .isInText = false});
      }
      return true;
    }
    before = c;
    if (c != '\n' || holdsRecord) continue;
    const std::size_t line = bytes.Mark();
    bytes.TakeBlanks();
    holdsRecord = bytes.AtRecord();
    bytes.GoBack(line);
  }
  bytes.GoBack(start);
  if (text != nullptr) text->resize(kept);
  return false;
}

bool RecordMender::TakeWholeComment(StreamBytes& bytes, std::uint32_t number) {
  if (bytes.Peek() != '/') return false;
  const std::size_t start = bytes.Mark();
  bytes.Take();
  if (bytes.Peek() == '*') {
    bytes.Take();
    if (TakeComment(bytes, nullptr, number)) return true;
  }
  bytes.GoBack(start);
  return false;
}

void RecordMender::TakeBetween(StreamBytes& bytes, std::uint32_t number) {
  do {
    bytes.TakeBlanks();
  } while (TakeWholeComment(bytes, number));
}

}  // namespace corvel
