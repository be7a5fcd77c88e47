// Runs over parts of a record without making tokens of them.
#pragma once

#include <cstdint>
#include <optional>

#include "core/entity.h"
#include "step/reader/byte_kinds.h"
#include "step/streams/input_stream.h"

namespace corvel {

// Moves to the ";" that ends the record at hand, past strings and comments; the next byte of the
// stream is then the ";". False when the input ends before; `endsInString` is set when it does so
// inside of a string. As for the scanner, a byte of 255 outside of strings and comments ends the
// input; it stays. Throws away what the stream keeps of the statement; call with no token looked
// ahead.
bool SkipToSemicolon(FileStream::InputStream& stream, bool* endsInString = nullptr);

// Moves to the next byte that is neither white space nor "_" nor part of a comment, nor a "/" that
// begins none. False when the input ends before. Otherwise as SkipToSemicolon.
bool SkipBlanks(FileStream::InputStream& stream);

// Call behind a "/*". Moves behind the "*/"; false when the input ends before. take(before, byte)
// is told of each byte and the one before it, more() brings the next window.
template <class More, class Take>
bool PassComment(FileStream::InputStream& stream, More more, Take take) {
  for (char before = 0;;) {
    if (stream.Cursor() == stream.WindowEnd() && !more()) return false;
    const char byte = *stream.Cursor();
    stream.SetCursor(stream.Cursor() + 1);
    take(before, byte);
    if (before == '*' && byte == '/') return true;
    before = byte;
  }
}

// Takes the digits behind a "#". Nothing when there are none; of a number that no record can have
// any value above IFC::kLargestNumber.
inline std::optional<std::uint64_t> TakeDigits(FileStream::InputStream& stream) {
  std::uint64_t number = 0;
  bool isThere = false;
  for (; stream.HasByte() && IsDigit(*stream.Cursor()); stream.SetCursor(stream.Cursor() + 1)) {
    isThere = true;
    if (number <= IFC::kLargestNumber) {
      number = number * 10 + static_cast<unsigned>(*stream.Cursor() - '0');
    }
  }
  return isThere ? std::optional(number) : std::nullopt;
}

}  // namespace corvel
