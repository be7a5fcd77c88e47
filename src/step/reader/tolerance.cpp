#include "step/reader/tolerance.h"

#include <algorithm>

#include "step/streams/line_numbers.h"

namespace corvel {

namespace {

// Behind the classes that are told apart.
constexpr char kOtherClasses[] = "~";

const char16_t* SentenceOf(Misfit kind) {
  switch (kind) {
    case Misfit::kUnknownClass: return u"The release has no such class, carried as it stands";
    case Misfit::kArgumentCount: return u"Another number of arguments, carried as it stands";
    case Misfit::kComplexInstance: return u"Complex instance, carried as it stands";
    case Misfit::kNoClass: return u"A record without a class, carried as it stands";
    case Misfit::kUnknownEnumValue: return u"Unknown enumeration value, kept as it stands";
    case Misfit::kWrongValue: return u"A value that its attribute does not take, kept as it stands";
    case Misfit::kRefusedReference:
      return u"A reference that its attribute does not take, kept as it stands";
    case Misfit::kDanglingReference: return u"A reference to no record, kept as it stands";
    case Misfit::kOpenString: return u"A string without its end, closed at the end of its line";
    case Misfit::kOpenEnumeration: return u"An enumeration value without its end, closed";
    case Misfit::kOpenBracket: return u"A record without its closing bracket, closed";
    case Misfit::kOpenComment: return u"A comment without its end, left out up to its line's end";
    case Misfit::kNoSemicolon: return u"A record without its \";\", ended";
    case Misfit::kStrayBytes: return u"Bytes that mean nothing in a record, left out";
    case Misfit::kDuplicatedNumber:
      return u"A number that an earlier record has: this one has got a new number, references go "
             u"to the first";
    case Misfit::kNumberlessRecord: return u"A record without a number, which has got one";
    case Misfit::kNoEnd: return u"The file ends inside of the record, which was closed";
  }
  return u"";
}

WideString Digits(std::uint64_t number) { return Widen(std::to_string(number)); }

}  // namespace

Tolerance::Group& Tolerance::GroupOf(Misfit kind, std::string_view className) {
  const auto found = groups_.find(Key(kind, className));
  if (found != groups_.end()) return found->second;
  const bool isNew = classes_[kind] < kClassesKept;
  if (isNew) ++classes_[kind];
  return groups_[Key(kind, isNew ? className : kOtherClasses)];
}

void Tolerance::Note(Misfit kind, std::string_view className, std::string_view what,
                     std::uint32_t number, std::int64_t offset) {
  Group& group = GroupOf(kind, className);
  if (number != 0 && !group.numbers.insert(number).second) return;
  ++group.count;
  if (group.places.size() < kPlacesKept)
    group.places.push_back({std::string(what), number, offset});
}

std::vector<MisfitGroup> Tolerance::Groups() const {
  std::vector<MisfitGroup> groups;
  groups.reserve(groups_.size());
  for (const auto& [key, group] : groups_) {
    const std::string className = key.second == kOtherClasses ? std::string() : key.second;
    std::vector<std::uint32_t> numbers(group.numbers.begin(), group.numbers.end());
    std::sort(numbers.begin(), numbers.end());
    groups.push_back({key.first, className, group.count, group.places, std::move(numbers)});
  }
  return groups;
}

std::vector<WideString> Tolerance::TakeTexts(const WideString& path) {
  std::vector<std::int64_t> offsets;
  for (const auto& [key, group] : groups_) {
    for (const MisfitPlace& place : group.places) {
      if (place.offset != kNowhere) offsets.push_back(place.offset);
    }
  }
  std::map<std::int64_t, std::uint64_t> lines;
  if (!offsets.empty()) {
    const std::vector<std::uint64_t> found = FileStream::LinesOf(path, offsets);
    for (std::size_t i = 0; i < offsets.size(); ++i) lines[offsets[i]] = found[i];
  }
  std::vector<WideString> texts = std::move(texts_);
  for (const auto& [key, group] : groups_) texts.push_back(TextOf(key, group, lines));
  *this = {};
  return texts;
}

// "Unknown enumeration value, kept as it stands: IFCWALL. Records: 12, the first: #34 in line 56
// (.X.), #57 in line 80 (.Y.)."
WideString Tolerance::TextOf(const Key& key, const Group& group,
                             const std::map<std::int64_t, std::uint64_t>& lines) {
  WideString text = SentenceOf(key.first);
  if (key.second == kOtherClasses) {
    text += u": other classes";
  } else if (!key.second.empty()) {
    text += u": " + Widen(key.second);
  }
  text += u". Records: " + Digits(group.count) + u", the first:";
  const char16_t* before = u" ";
  for (const MisfitPlace& place : group.places) {
    text += before;
    before = u", ";
    if (place.number != 0) text += u"#" + ToWide(place.number);
    const auto line = lines.find(place.offset);
    if (line != lines.end()) {
      if (place.number != 0) text += u" in ";
      text += line->second != 0 ? u"line " + Digits(line->second)
                                : u"byte " + Digits(static_cast<std::uint64_t>(line->first));
    }
    if (!place.what.empty()) text += u" (" + FromUtf8(place.what) + u")";
  }
  return text + u".";
}

}  // namespace corvel
