#include "step/reader/stream_bytes.h"

namespace corvel {

bool StreamBytes::AtRecord() {
  if (Peek() != '#') return false;
  const std::size_t mark = Mark();
  Take();
  bool hasDigits = false;
  for (; Peek() != kEnd && IsDigit(static_cast<char>(Peek())); Take()) hasDigits = true;
  TakeBlanks();
  const bool found = hasDigits && Peek() == '=';
  GoBack(mark);
  return found;
}

bool StreamBytes::AtEndOfRecords() {
  if (Peek() != 'E') return false;
  const std::size_t mark = Mark();
  bool found = TakeText("END");
  if (found && Peek() == 'S') {
    found = TakeText("SEC");
    TakeBlanks();
    found = found && (Peek() == ';' || Peek() == kEnd);
  } else {
    found = found && TakeText("-ISO");
  }
  GoBack(mark);
  return found;
}

// False somewhere within the text, or without it.
bool StreamBytes::TakeText(std::string_view text) {
  for (const char c : text) {
    if (Peek() != c) return false;
    Take();
  }
  return true;
}

}  // namespace corvel
