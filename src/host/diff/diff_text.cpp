#include "host/diff/diff_text.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "host/diff/common_changes.h"
#include "host/diff/movement.h"
#include "host/display_text.h"

namespace corvel::host::diff {

namespace {

constexpr std::size_t kColumns = 80;

enum class Colour { kNone, kRed, kGreen, kYellow, kBold };

const char16_t* SequenceOf(Colour colour) {
  switch (colour) {
    case Colour::kNone: break;
    case Colour::kRed: return u"\x1b[31m";
    case Colour::kGreen: return u"\x1b[32m";
    case Colour::kYellow: return u"\x1b[33m";
    case Colour::kBold: return u"\x1b[1m";
  }
  return u"";
}

constexpr WideView kMore = u"...";

// Each unit is a character of one column that shows as it is, as in nearly all lines.
bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= 0x20 && c < 0x7F; });
}
bool IsAscii(WideView text) {
  return std::all_of(text.begin(), text.end(), [](char16_t c) { return c >= 0x20 && c < 0x7F; });
}

std::size_t ColumnsOfText(const std::string& text) {
  return IsAscii(text) ? text.size() : ColumnsOf(Printable(FromUtf8(text)));
}

// Two units may be one character, which no cut goes through.
bool IsWithinCharacter(WideView text, std::size_t at) {
  return at < text.size() && text[at] >= 0xDC00 && text[at] <= 0xDFFF;
}

// As much of the beginning as has room.
WideView HeadOf(WideView text, std::size_t columns) {
  if (IsAscii(text)) return text.substr(0, columns);
  std::size_t length = 0;
  for (std::size_t next = 1; next <= text.size(); ++next) {
    if (IsWithinCharacter(text, next)) continue;
    if (ColumnsOf(text.substr(0, next)) > columns) break;
    length = next;
  }
  return text.substr(0, length);
}

// As much of the end.
WideView TailOf(WideView text, std::size_t columns) {
  if (IsAscii(text)) return text.substr(text.size() - std::min(columns, text.size()));
  std::size_t first = text.size();
  for (std::size_t next = text.size(); next-- > 0;) {
    if (IsWithinCharacter(text, next)) continue;
    if (ColumnsOf(text.substr(next)) > columns) break;
    first = next;
  }
  return text.substr(first);
}

// The beginning of a line that is too long.
WideString CutToColumns(const std::string& text) {
  if (text.size() <= kColumns && IsAscii(text)) return Widen(text);
  WideString line = Printable(FromUtf8(text));
  if (ColumnsOf(line) <= kColumns) return line;
  return WideString(HeadOf(line, kColumns - kMore.size())).append(kMore);
}

// Of a long path or name what it begins and ends with.
std::string WithoutMiddle(const std::string& text, std::size_t columns) {
  if (ColumnsOfText(text) <= columns) return text;
  const WideString line = Printable(FromUtf8(text));
  const std::size_t room = columns > kMore.size() ? columns - kMore.size() : 0;
  const WideView tail = TailOf(line, room * 8 / 15);  // it says more than the head
  return ToUtf8(WideString(HeadOf(line, room - ColumnsOf(tail))).append(kMore).append(tail));
}

// Names that programs make end with what tells them apart, as does the number.
std::string TextOf(const ObjectLabel& label, const char* sign) {
  std::string text = sign + label.className;
  if (!label.guid.empty()) text += " " + label.guid;
  const std::string number = " #" + std::to_string(label.number);
  if (label.name.empty()) return text + number;
  constexpr std::size_t kQuotes = 3;
  constexpr std::size_t kShortest = 12;
  const std::size_t taken = ColumnsOfText(text + number) + kQuotes;
  const std::size_t room = taken + kShortest < kColumns ? kColumns - taken : kShortest;
  return text + " '" + WithoutMiddle(label.name, room) + "'" + number;
}

std::string Count(std::size_t count, const char* noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

// As many as have room beside the count.
std::string TextOf(const std::map<std::string, std::size_t>& classes) {
  constexpr std::size_t kRoom = 60;
  std::string text;
  for (const auto& [name, count] : classes) {
    const std::string next = name + " " + std::to_string(count);
    if (text.size() + next.size() > kRoom) return text + ", ...";
    text += (text.empty() ? "" : ", ") + next;
  }
  return text;
}

class DiffWriter {
 public:
  DiffWriter(const ModelDiff& diff, bool inColours, const TextSink& sink)
      : diff_(diff), told_(FindCommonChanges(diff)), inColours_(inColours), sink_(sink) {}

  bool Run() {
    WriteHead();
    for (const CommonChange& common : told_.common) Write(common);
    for (const ObjectLabel& label : diff_.removed) Line(TextOf(label, "- "), Colour::kRed);
    for (const ObjectLabel& label : diff_.added) Line(TextOf(label, "+ "), Colour::kGreen);
    for (const auto& [before, after] : diff_.renamed) {
      Line(TextOf(after, "= "), Colour::kYellow);
      Line("    GUID: " + before.guid + " -> " + after.guid);
    }
    for (std::size_t i = 0; i < diff_.changed.size(); ++i) Write(i);
    return good_;
  }

 private:
  void WriteHead() {
    for (const ComparedFile* const file : {&diff_.before, &diff_.after}) {
      const bool isBefore = file == &diff_.before;
      Line((isBefore ? "--- " : "+++ ") + file->path + " (" + file->schema + ", " +
               Count(file->objects, "object") + ")",
           Colour::kBold);
    }
    if (diff_.IsEmpty()) return Line("no difference");
    Line(std::to_string(diff_.removed.size()) + " removed, " + std::to_string(diff_.added.size()) +
         " added, " + std::to_string(diff_.changed.size()) + " changed, " +
         std::to_string(diff_.renamed.size()) + " under another GUID, " +
         std::to_string(diff_.same) + " the same");
    if (diff_.before.schema != diff_.after.schema) {
      Line("schema: " + diff_.before.schema + " -> " + diff_.after.schema);
    }
  }

  void Write(const CommonChange& common) {
    Line("* " + Count(common.objects.size(), "object") + " (" + TextOf(common.classes) + ")",
         Colour::kYellow);
    Write(common.change, true);
  }

  void Write(std::size_t index) {
    const ChangedObject& object = diff_.changed[index];
    const std::vector<bool>& isTold = told_.isCommon[index];
    const bool allTold = std::find(isTold.begin(), isTold.end(), false) == isTold.end();
    if (allTold && object.omitted == 0) return;
    Line(TextOf(object.after, "~ "), Colour::kYellow);
    for (std::size_t i = 0; i < object.changes.size();) {
      std::size_t next = i + 1;
      while (next < object.changes.size() && isTold[next] == isTold[i] &&
             SayTheSame(object.changes[i], object.changes[next])) {
        ++next;
      }
      if (!isTold[i]) Write(object.changes[i], false);
      if (!isTold[i] && next != i + 1) Line("      (" + std::to_string(next - i) + " times)");
      i = next;
    }
    if (object.omitted != 0) Line("    and " + Count(object.omitted, "change") + " more");
  }

  // As several relations of one kind do to objects that have no names.
  static bool SayTheSame(const Change& one, const Change& other) {
    return one.path == other.path && one.before == other.before && one.after == other.after &&
           !one.movement && !other.movement;
  }

  // In one line where it fits, or else in one for each value.
  void Write(const Change& change, bool isCommon) {
    if (change.movement) {
      const Movement& movement = *change.movement;
      Line("    " + (isCommon ? TextOfCommonMovement(movement) : TextOfMovement(movement)));
      return;
    }
    const std::string path = "    " + change.path + ": ";
    const std::string before = change.before.value_or("(none)");
    const std::string after = change.after.value_or("(none)");
    const std::string line = std::string(path).append(before).append(" -> ").append(after);
    if (ColumnsOfText(line) <= kColumns) return Line(line);
    Line(WithoutMiddle(path, kColumns));
    Line("      - " + before, Colour::kRed);
    Line("      + " + after, Colour::kGreen);
  }

  void Line(const std::string& text, Colour colour = Colour::kNone) {
    if (!good_) return;
    WideString line = CutToColumns(text);
    while (line.ends_with(u' ')) line.pop_back();
    if (inColours_ && colour != Colour::kNone) {
      line.insert(0, SequenceOf(colour));
      line += u"\x1b[0m";
    }
    good_ = sink_(line + u"\n");
  }

  const ModelDiff& diff_;
  ChangesTold told_;
  bool inColours_;
  const TextSink& sink_;
  bool good_ = true;
};

}  // namespace

bool WriteDiffText(const ModelDiff& diff, bool inColours, const TextSink& sink) {
  return DiffWriter(diff, inColours, sink).Run();
}

}  // namespace corvel::host::diff
