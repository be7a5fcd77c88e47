#include "step/reader/record_notes.h"

#include <algorithm>
#include <cstddef>
#include <optional>

#include "step/carried/record_text.h"
#include "step/reader/parser.h"

namespace corvel {

namespace {

// Which argument of the record the text ends in. Nothing within inner brackets.
std::optional<std::uint32_t> LastArgumentOf(std::string_view text) {
  int depth = 0;
  std::uint32_t argument = 0;
  for (std::size_t at = 0; at < text.size(); at = BehindPiece(text, at)) {
    if (text[at] == '(') ++depth;
    if (text[at] == ')') --depth;
    if (text[at] == ',' && depth == 1) ++argument;
  }
  return depth == 1 ? std::optional(argument) : std::nullopt;
}

template <class Item>
std::vector<Item> EachOnce(std::vector<Item> items) {
  std::sort(items.begin(), items.end());
  items.erase(std::unique(items.begin(), items.end()), items.end());
  return items;
}

}  // namespace

std::vector<AbsentNumber> RecordNotes::Absent() const { return EachOnce(absent_); }

std::vector<HiddenRecords> RecordNotes::Hidden() const { return EachOnce(hidden_); }

void NoteAbsentNumber(Parser& parser) {
  const auto argument = LastArgumentOf(parser.scanner->Stream()->StatementView());
  if (argument) parser.notes.records->NoteAbsent(parser.carrying.object->marker, *argument);
}

}  // namespace corvel
