#include "step/reader/skipped_input.h"

#include <algorithm>

#include "step/streams/line_numbers.h"

namespace corvel {

namespace {

using Kind = SkippedInput::Kind;

const char16_t* SentenceOf(Kind kind) {
  switch (kind) {
    case Kind::kInHeader: return u"The HEADER section does not end before the records";
    case Kind::kText: return u"Text between records was left out";
    case Kind::kNoNumber: return u"A record without a number was left out";
    case Kind::kSurplus: return u"What stands behind the arguments of a record was left out";
    case Kind::kNoSemicolon:
      return u"A record has no \";\" at its end: what follows was left out up to the next one";
    case Kind::kRunOnNumber:
      return u"A number has no end: what follows was left out up to the next \",\" or \")\"";
    case Kind::kRunOnString: return u"A string holds what looks like records";
    case Kind::kComment: return u"A comment holds what looks like records";
    case Kind::kEndlessComment: return u"A comment has no end: all that follows was left out";
  }
  return u"";
}

// What the kind is about stands behind the record at hand, not in it.
bool IsBetweenRecords(Kind kind) { return kind == Kind::kText || kind == Kind::kNoNumber; }

WideString Digits(std::uint64_t number) { return Widen(std::to_string(number)); }

WideString PlaceText(std::uint64_t line, std::int64_t offset) {
  return line != 0 ? u"line " + Digits(line)
                   : u"byte " + Digits(static_cast<std::uint64_t>(offset));
}

}  // namespace

void SkippedInput::Note(Kind kind, std::int64_t offset, std::uint64_t records) {
  isEmpty_ = false;
  Finding& finding = findings_[static_cast<std::size_t>(kind)];
  if (finding.places++ == 0) finding.first = {offset, record_};
  finding.records += records;
}

void SkippedInput::NoteSection(std::string_view name, std::int64_t offset) {
  isEmpty_ = false;
  const bool known = std::any_of(sections_.begin(), sections_.end(),
                                 [name](const Section& section) { return section.name == name; });
  if (!known) sections_.push_back({std::string(name), offset});
}

// Those of the kinds that were met, then those of the sections.
std::vector<std::int64_t> SkippedInput::Offsets() const {
  std::vector<std::int64_t> offsets;
  for (const Finding& finding : findings_) {
    if (finding.places != 0) offsets.push_back(finding.first.offset);
  }
  for (const Section& section : sections_) offsets.push_back(section.offset);
  return offsets;
}

std::vector<SkippedPart> SkippedInput::Parts() const {
  std::vector<SkippedPart> parts;
  for (std::size_t kind = 0; kind < kKinds; ++kind) {
    const Finding& finding = findings_[kind];
    if (finding.places == 0) continue;
    parts.push_back({static_cast<Kind>(kind),
                     {},
                     finding.first.offset,
                     finding.first.record,
                     finding.places,
                     finding.records});
  }
  for (const Section& section : sections_) {
    parts.push_back({.section = section.name, .offset = section.offset});
  }
  return parts;
}

std::vector<WideString> SkippedInput::TakeTexts(const WideString& path) {
  std::vector<WideString> texts;
  const std::vector<std::int64_t> offsets = Offsets();
  if (offsets.empty()) return texts;
  const std::vector<std::uint64_t> lines = FileStream::LinesOf(path, offsets);
  std::size_t i = 0;
  for (std::size_t kind = 0; kind < kKinds; ++kind) {
    const Finding& finding = findings_[kind];
    if (finding.places == 0) continue;
    const WideString place = PlaceText(lines[i], offsets[i]);
    ++i;
    texts.push_back(TextOf(static_cast<Kind>(kind), finding, place));
  }
  for (const Section& section : sections_) {
    const WideString place = PlaceText(lines[i], offsets[i]);
    ++i;
    texts.push_back(u"The section " + Widen(section.name) + u" in " + place + u" is not read.");
  }
  *this = {};
  return texts;
}

WideString SkippedInput::TextOf(Kind kind, const Finding& finding, const WideString& place) {
  WideString text = SentenceOf(kind);
  text += u". Places: " + Digits(finding.places) + u", the first in " + place;
  if (finding.first.record != 0) {
    text += IsBetweenRecords(kind) ? u" behind #" : u" at #";
    text += Digits(finding.first.record);
  }
  text += u".";
  if (finding.records != 0) text += u" Records in them: " + Digits(finding.records) + u".";
  return text;
}

WideString PlaceInFile(const WideString& path, std::int64_t offset) {
  return PlaceText(FileStream::LinesOf(path, {offset}).front(), offset);
}

WideString ClosingLineIsMissing(const WideString& path, std::int64_t offset) {
  return u"The closing line END-ISO-10303-21; is missing: the file seems to be cut short. The "
         u"reading ended in " +
         PlaceInFile(path, offset) + u".";
}

}  // namespace corvel
