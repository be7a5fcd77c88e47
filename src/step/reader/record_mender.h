// Where a record ends whose file does not say so.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "step/reader/record_notes.h"
#include "step/reader/stream_bytes.h"
#include "step/reader/tolerance.h"

namespace corvel {

struct MendedRecord {
  // What stands behind the "=", up to the ";" and without it: the class and its arguments as they
  // stand, blanks and comments included, with everything closed.
  std::string text;
  std::string className;     // its first word, see TableName; empty when there is none
  std::int64_t offset = -1;  // of the byte behind the number
  bool isChanged = false;    // something was noted
};

// A class as tables of classes name it, whatever the letters and underscores are that a file has.
std::string TableName(std::string_view word);

// Looks at a record as text. What is left open is closed where it must have been meant to end: a
// string at the end of its line when a record begins behind that, a bracket and the record itself
// before the next record. What cannot be kept is passed over; all of it is noted.
class RecordMender {
 public:
  // Bytes of a comment that holds records; a longer one was not meant to be one.
  static constexpr std::size_t kLongestComment = 0xA00000;

  explicit RecordMender(Tolerance& tolerance) : tolerance_(tolerance) {}

  // Call before the first record of another input.
  void StartInput() { noCommentEnds_ = false; }
  // Where texts and comments are noted that are taken, records and all. Borrowed; null: nowhere.
  void NoteIn(RecordNotes* notes) { notes_ = notes; }

  // Call behind the number of a record. Takes everything up to and including its ";", or what else
  // its end is.
  MendedRecord Take(Scanner& scanner, std::uint32_t number);
  // Behind a "/*". Takes the comment, or nothing when it does not end before other records begin;
  // `text` (may be null) gets what was taken. `number`: of the record that it stands in.
  bool TakeComment(StreamBytes& bytes, std::string* text, std::uint32_t number = 0);
  // The same with its beginning, if a comment begins here.
  bool TakeWholeComment(StreamBytes& bytes, std::uint32_t number = 0);
  // Blanks and comments: what may stand between the words of a record.
  void TakeBetween(StreamBytes& bytes, std::uint32_t number = 0);

 private:
  class Mending;

  Tolerance& tolerance_;
  RecordNotes* notes_ = nullptr;
  bool noCommentEnds_ = false;  // up to the end of the input
};

}  // namespace corvel
