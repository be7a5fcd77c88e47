#include "step/reader/record_notes.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <tuple>
#include <utility>

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

// In the order of what `key` gives, which tells items apart.
template <class Item, class Key>
std::vector<Item> EachOnce(std::vector<Item> items, Key key) {
  const auto isBefore = [key](const Item& a, const Item& b) { return key(a) < key(b); };
  const auto isSame = [key](const Item& a, const Item& b) { return key(a) == key(b); };
  std::sort(items.begin(), items.end(), isBefore);
  items.erase(std::unique(items.begin(), items.end(), isSame), items.end());
  return items;
}

}  // namespace

std::vector<AbsentNumber> RecordNotes::Absent() const {
  return EachOnce(absent_, [](const AbsentNumber& absent) {
    return std::pair(absent.record, absent.argument);
  });
}

std::vector<HiddenRecords> RecordNotes::Hidden() const {
  return EachOnce(hidden_, [](const HiddenRecords& hidden) {
    return std::tuple(hidden.offset, hidden.record, hidden.isInText);
  });
}

std::vector<LargeInteger> RecordNotes::Large() const {
  return EachOnce(
      large_, [](const LargeInteger& large) { return std::tuple(large.record, large.attribute); });
}

void NoteAbsentNumber(Parser& parser) {
  const auto argument = LastArgumentOf(parser.scanner->Stream()->StatementView());
  if (argument) parser.notes.records->NoteAbsent(parser.carrying.object->marker, *argument);
}

}  // namespace corvel
