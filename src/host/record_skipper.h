// Runs over parts of a record without making tokens of them.
#pragma once

#include "step/streams/input_stream.h"

namespace corvel::host {

// As for the scanner, a byte of 255 outside of strings and comments ends the input; it stays.
//
// Each of these throws away what the stream keeps of the statement at hand. Call with no token
// looked ahead.

// True when there is a next byte, which then stands in the window.
inline bool HasByte(FileStream::InputStream& stream) {
  if (stream.Cursor() != stream.WindowEnd()) return true;
  stream.ClearStatementText();
  return stream.Refill();
}

// Moves to the ";" that ends the record at hand, past strings and comments; the next byte of the
// stream is then the ";". False when the input ends before; `endsInString` is set when it does so
// inside of a string.
bool SkipToSemicolon(FileStream::InputStream& stream, bool* endsInString = nullptr);

// Call behind the opening apostrophe of a string. Moves behind the closing one, which is the one
// that the decoder of strings takes for it. False when the input ends before.
bool SkipString(FileStream::InputStream& stream);

// Moves to the next byte that is neither white space nor "_" nor part of a comment, nor a "/" that
// begins none. False when the input ends before.
bool SkipBlanks(FileStream::InputStream& stream);

}  // namespace corvel::host
