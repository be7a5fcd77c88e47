#include "host/diff/diff_text.h"

#include <algorithm>
#include <string>

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

// The beginning of a line that is too long.
WideString CutToColumns(const std::string& text) {
  constexpr WideView kMore = u"...";
  WideString line = Printable(FromUtf8(text));
  if (ColumnsOf(line) <= kColumns) return line;
  std::size_t length = 0;
  // Two units may be one character.
  for (std::size_t next = 1; next <= line.size(); ++next) {
    const bool isHalf = next < line.size() && line[next] >= 0xDC00 && line[next] <= 0xDFFF;
    if (isHalf) continue;
    if (ColumnsOf(WideView(line).substr(0, next)) > kColumns - kMore.size()) break;
    length = next;
  }
  return line.substr(0, length).append(kMore);
}

// Of a long path what it begins and ends with.
std::string WithoutMiddle(const std::string& path) {
  constexpr std::size_t kHead = 36;
  constexpr WideView kMore = u"...";
  const WideString line = Printable(FromUtf8(path));
  if (ColumnsOf(line) <= kColumns || line.size() != ColumnsOf(line)) return path;
  const std::size_t tail = kColumns - kHead - kMore.size();
  return ToUtf8(line.substr(0, kHead).append(kMore) + line.substr(line.size() - tail));
}

std::string TextOf(const ObjectLabel& label) {
  std::string text = label.className;
  if (!label.guid.empty()) text += " " + label.guid;
  if (!label.name.empty()) text += " '" + label.name + "'";
  return text + " #" + std::to_string(label.number);
}

std::string Count(std::size_t count, const char* noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

class DiffWriter {
 public:
  DiffWriter(const ModelDiff& diff, bool inColours, const TextSink& sink)
      : diff_(diff), told_(FindCommonChanges(diff)), inColours_(inColours), sink_(sink) {}

  bool Run() {
    WriteHead();
    for (const CommonChange& common : told_.common) Write(common);
    for (const ObjectLabel& label : diff_.removed) Line("- " + TextOf(label), Colour::kRed);
    for (const ObjectLabel& label : diff_.added) Line("+ " + TextOf(label), Colour::kGreen);
    for (const auto& [before, after] : diff_.renamed) {
      Line("= " + TextOf(after), Colour::kYellow);
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
    std::string line = "* " + Count(common.objects.size(), "object") + " (";
    bool isFirst = true;
    for (const auto& [name, count] : common.classes) {
      line += std::string(isFirst ? "" : ", ") + name + " " + std::to_string(count);
      isFirst = false;
    }
    Line(line + ")", Colour::kYellow);
    Write(common.change, true);
  }

  void Write(std::size_t index) {
    const ChangedObject& object = diff_.changed[index];
    const std::vector<bool>& isTold = told_.isCommon[index];
    const bool allTold = std::find(isTold.begin(), isTold.end(), false) == isTold.end();
    if (allTold && object.omitted == 0) return;
    Line("~ " + TextOf(object.after), Colour::kYellow);
    for (std::size_t i = 0; i < object.changes.size(); ++i) {
      if (!isTold[i]) Write(object.changes[i], false);
    }
    if (object.omitted != 0) Line("    and " + Count(object.omitted, "change") + " more");
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
    if (ColumnsOf(Printable(FromUtf8(line))) <= kColumns) return Line(line);
    Line(WithoutMiddle(path));
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
