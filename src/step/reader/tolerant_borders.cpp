#include "step/reader/tolerant_borders.h"

#include <string>

#include "core/entity.h"
#include "step/reader/byte_kinds.h"

namespace corvel {

namespace {

constexpr int kEnd = StreamBytes::kEnd;

bool IsLetterByte(int byte) { return byte != kEnd && IsLetter(static_cast<char>(byte)); }

// Letters, digits and what joins them; nothing of it for a very long one.
std::string TakeWholeWord(StreamBytes& bytes) {
  constexpr std::size_t kLongest = 200;
  std::string word;
  for (int c = bytes.Peek(); c != kEnd; c = bytes.Peek()) {
    const char byte = static_cast<char>(c);
    if (!IsOfKind(byte, kLetterByte | kDigitByte) && byte != '_' && byte != '-') break;
    if (word.size() < kLongest) word.push_back(byte);
    bytes.Take();
  }
  return word;
}

bool IsClassName(const std::string& word) {
  return word.size() > 3 && (word[0] | 0x20) == 'i' && (word[1] | 0x20) == 'f' &&
         (word[2] | 0x20) == 'c';
}

// What pads a file behind its end.
bool IsPadding(int byte) { return byte == 0 || byte == 0x1A; }

}  // namespace

TolerantBorders::Found TolerantBorders::FindRecord(Scanner& scanner, std::uint32_t& number) {
  StreamBytes bytes(scanner);
  isStray_ = false;
  number_ = 0;
  for (;;) {
    bytes.Forget();
    bytes.TakeBlanks();
    if (bytes.Peek() == kEnd) return Found::kEnd;
    if (!FindHere(scanner, bytes)) continue;
    inData_ = true;
    number = number_;
    return number == 0 ? Found::kNumberlessRecord : Found::kRecord;
  }
}

// True before or in a record; otherwise something has been taken.
bool TolerantBorders::FindHere(Scanner& scanner, StreamBytes& bytes) {
  const int c = bytes.Peek();
  if (c == '#') return TakeNumber(bytes);
  if (IsLetterByte(c)) return TakeWord(scanner, bytes);
  if (c == '=') {
    const std::size_t mark = bytes.Mark();
    bytes.Take();
    mender_.TakeBetween(bytes);
    const bool found = bytes.Peek() == '(' || IsLetterByte(bytes.Peek());
    bytes.GoBack(mark);
    if (found) return true;
  } else if (c == '/') {
    if (!mender_.TakeWholeComment(bytes)) TakeStray(bytes);
    return false;
  } else if (c == ';') {
    bytes.Take();
    isStray_ = false;
    return false;
  }
  if (isClosed_ && IsPadding(c)) {
    bytes.Take();
  } else {
    TakeStray(bytes);
  }
  return false;
}

// At a "#". What follows has to be a record, be it that its "=" is missing.
bool TolerantBorders::TakeNumber(StreamBytes& bytes) {
  const std::size_t start = bytes.Mark();
  bytes.Take();
  std::uint64_t number = 0;
  for (int c = bytes.Peek(); c != kEnd && IsDigit(static_cast<char>(c)); c = bytes.Peek()) {
    if (number <= IFC::kLargestNumber) number = number * 10 + static_cast<unsigned>(c - '0');
    bytes.Take();
  }
  const std::size_t behind = bytes.Mark();
  mender_.TakeBetween(bytes);
  bool found = bytes.Peek() == '=';
  if (!found && IsLetterByte(bytes.Peek())) {
    found = IsClassName(TakeWholeWord(bytes)) && BracketFollows(bytes);
  }
  bytes.GoBack(found ? behind : start);
  if (found && number <= IFC::kLargestNumber) number_ = static_cast<std::uint32_t>(number);
  if (!found) TakeStray(bytes);
  return found;
}

// At a letter. A class without "=" and number is a record as well.
bool TolerantBorders::TakeWord(Scanner& scanner, StreamBytes& bytes) {
  const std::size_t start = bytes.Mark();
  const std::int64_t offset = bytes.Position();
  const std::string word = TakeWholeWord(bytes);
  if (IsClassName(word) && BracketFollows(bytes)) {
    bytes.GoBack(start);
    return true;
  }
  if (word == "DATA") {
    inData_ = true;
    TakeDataHead(bytes);
  } else if (word == "ENDSEC") {
    inData_ = false;
  } else if (!inData_ && (word == "ANCHOR" || word == "REFERENCE" || word == "SIGNATURE")) {
    skipped_.NoteSection(word, offset);
    scanner.SkipSection();
  } else {
    bytes.GoBack(start);
    if (TakeClosingLine(scanner, bytes)) return false;
    TakeStray(bytes);
    while (IsLetterByte(bytes.Peek())) bytes.Take();
  }
  return false;
}

// `END-ISO-10303-21;` on one line.
bool TolerantBorders::TakeClosingLine(Scanner& scanner, StreamBytes& bytes) {
  if (!bytes.AtEndOfRecords()) return false;
  constexpr std::size_t kLongest = 80;
  const std::size_t start = bytes.Mark();
  while (bytes.Peek() != ';' && bytes.Peek() != '\n' && bytes.Peek() != kEnd &&
         bytes.Mark() - start < kLongest) {
    bytes.Take();
  }
  const bool isWhole = bytes.Peek() == ';';
  bytes.GoBack(start);
  if (!isWhole) return false;
  isClosed_ = scanner.NextToken()->IsClosingLine() || isClosed_;
  scanner.ClearTokens();
  return true;
}

// Behind the word DATA: its ";", and before that what brackets may stand there on the same line.
void TolerantBorders::TakeDataHead(StreamBytes& bytes) {
  if (!BracketFollows(bytes)) return;
  const std::size_t start = bytes.Mark();
  for (int c = bytes.Peek(); c != kEnd && c != '\n'; c = bytes.Peek()) {
    if (c == ';') return;
    bytes.Take();
  }
  bytes.GoBack(start);
}

bool TolerantBorders::BracketFollows(StreamBytes& bytes) {
  mender_.TakeBetween(bytes);
  return bytes.Peek() == '(';
}

void TolerantBorders::TakeStray(StreamBytes& bytes) {
  if (!isStray_) skipped_.Note(SkippedInput::Kind::kText, bytes.Position());
  isStray_ = true;
  bytes.Take();
}

}  // namespace corvel
