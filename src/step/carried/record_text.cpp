#include "step/carried/record_text.h"

#include <algorithm>

#include "step/reader/byte_kinds.h"

namespace corvel {

namespace {

constexpr auto kAll = std::string_view::npos;

bool IsWhite(char c) { return IsBlank(c) && c != '_'; }

bool StartsComment(std::string_view text, std::size_t at) {
  return text.substr(at, kCommentStart.size()) == kCommentStart;
}

std::size_t BehindBlanks(std::string_view text, std::size_t at) {
  while (at < text.size() && (IsWhite(text[at]) || StartsComment(text, at))) {
    at = BehindPiece(text, at);
  }
  return at;
}

std::string_view Between(std::string_view text, std::size_t begin, std::size_t end) {
  return text.substr(begin, end - begin);
}

// Collects the arguments one after the other.
class Cutter {
 public:
  Cutter(std::string_view text, std::size_t at) : text_(text), at_(at), glueBegin_(at) {}

  void CutInto(RecordText& record) {
    record.hasBrackets = true;
    bool foundComma = false;
    do {
      foundComma = CutArgument(record, foundComma);
    } while (foundComma);
    record.glue.push_back(Between(text_, glueBegin_, at_));
  }

 private:
  // False at the closing bracket, where the cutting ends. `isDue`: behind a comma.
  bool CutArgument(RecordText& record, bool isDue) {
    at_ = BehindBlanks(text_, at_);
    const std::size_t begin = at_;
    std::size_t end = at_;
    int depth = 0;
    while (at_ < text_.size() && !EndsArgument(depth)) {
      const char c = text_[at_];
      if (c == '(') ++depth;
      if (c == ')') --depth;
      const bool isBlank = IsWhite(c) || StartsComment(text_, at_);
      at_ = BehindPiece(text_, at_);
      if (!isBlank) end = at_;
    }
    const bool foundComma = at_ < text_.size() && text_[at_] == ',';
    if (end != begin || isDue || foundComma) {
      record.glue.push_back(Between(text_, glueBegin_, begin));
      record.arguments.push_back(Between(text_, begin, end));
      glueBegin_ = end;
    }
    if (foundComma) ++at_;
    return foundComma;
  }

  bool EndsArgument(int depth) const {
    const char c = text_[at_];
    return c == ';' || (depth == 0 && (c == ',' || c == ')'));
  }

  std::string_view text_;
  std::size_t at_;
  std::size_t glueBegin_;
};

// An underscore is a blank where no name stands.
std::size_t BehindUnderscores(std::string_view text, std::size_t at) {
  while ((at = BehindBlanks(text, at)) < text.size() && text[at] == '_') ++at;
  return at;
}

// Behind `#12=`, as far as it is there.
std::size_t BehindNumber(std::string_view text) {
  const std::size_t begin = BehindBlanks(text, 0);
  std::size_t at = BehindUnderscores(text, begin);
  if (at == text.size() || text[at] != '#') return begin;
  do {
    ++at;
  } while (at < text.size() && IsDigit(text[at]));
  at = BehindUnderscores(text, at);
  if (at < text.size() && text[at] == '=') ++at;
  return BehindBlanks(text, at);
}

std::string_view WithoutEnd(std::string_view text) {
  if (!text.empty() && text.back() == ';') text.remove_suffix(1);
  while (!text.empty() && IsWhite(text.back())) text.remove_suffix(1);
  return text;
}

}  // namespace

namespace {

// A quote may stand behind `\S\` as any other letter.
std::size_t BehindString(std::string_view text, std::size_t at) {
  constexpr std::string_view kShift = "\\S\\";
  for (++at; at < text.size() && text[at] != '\'';) {
    if (text[at] != '\\') {
      ++at;
    } else if (text.substr(at, kShift.size()) == kShift) {
      at += kShift.size();
      if (at < text.size() && text[at] != '\n') ++at;
    } else {
      at += text.substr(at + 1, 1) == "\\" ? 2 : 1;
    }
  }
  return at < text.size() ? at + 1 : kAll;
}

}  // namespace

std::size_t BehindPiece(std::string_view text, std::size_t at) {
  std::size_t end = kAll;
  if (text[at] == '\'') {
    end = BehindString(text, at);
  } else if (StartsComment(text, at)) {
    end = text.find("*/", at + kCommentStart.size());
    if (end != kAll) end += 2;
  } else {
    end = at + 1;
  }
  return end == kAll ? text.size() : end;
}

bool RecordText::IsPlain() const {
  for (std::size_t i = 0; i < glue.size(); ++i) {
    const bool isInner = i != 0 && i + 1 != glue.size();
    if (glue[i] != (isInner ? "," : "")) return false;
  }
  return true;
}

RecordText CutRecord(std::string_view text) {
  RecordText record;
  const std::size_t begin = BehindNumber(text);
  std::size_t at = begin;
  while (at < text.size() && (IsOfKind(text[at], kLetterByte | kDigitByte) || text[at] == '_')) {
    ++at;
  }
  record.name = Between(text, begin, at);
  at = BehindBlanks(text, at);
  if (at < text.size() && text[at] == '(') {
    Cutter(text, at + 1).CutInto(record);
  } else {
    record.name = WithoutEnd(text.substr(begin));
  }
  return record;
}

RecordText CutArguments(std::string_view text) {
  RecordText record;
  Cutter(text, 0).CutInto(record);
  return record;
}

}  // namespace corvel
