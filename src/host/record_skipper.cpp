#include "host/record_skipper.h"

namespace corvel::host {

namespace {

// The stream keeps what it delivers as the text of the statement: nobody wants it here.
bool Refill(FileStream::InputStream& stream) {
  stream.ClearStatementText();
  return stream.Refill();
}

bool HasByte(FileStream::InputStream& stream) {
  return stream.Cursor() != stream.WindowEnd() || Refill(stream);
}

// Moves behind the next `byte`. False when there is none.
bool SkipPast(FileStream::InputStream& stream, char byte) {
  while (HasByte(stream)) {
    const char* at = stream.Cursor();
    const char* const end = stream.WindowEnd();
    while (at != end && *at != byte) ++at;
    if (at != end) {
      stream.SetCursor(at + 1);
      return true;
    }
    stream.SetCursor(end);
  }
  return false;
}

// Behind a "/". A "*" there begins a comment.
bool SkipIfComment(FileStream::InputStream& stream) {
  if (!HasByte(stream) || *stream.Cursor() != '*') return true;
  stream.SetCursor(stream.Cursor() + 1);
  while (SkipPast(stream, '*')) {
    while (HasByte(stream) && *stream.Cursor() == '*') stream.SetCursor(stream.Cursor() + 1);
    if (!HasByte(stream)) return false;
    if (*stream.Cursor() != '/') continue;
    stream.SetCursor(stream.Cursor() + 1);
    return true;
  }
  return false;
}

}  // namespace

bool SkipToSemicolon(FileStream::InputStream& stream) {
  while (HasByte(stream)) {
    const char* at = stream.Cursor();
    const char* const end = stream.WindowEnd();
    while (at != end && *at != ';' && *at != '\'' && *at != '/') ++at;
    stream.SetCursor(at);
    if (at == end) continue;
    if (*at == ';') return true;
    stream.SetCursor(at + 1);
    // An apostrophe inside a string is doubled: the string ends, and another one begins.
    const bool passed = *at == '\'' ? SkipPast(stream, '\'') : SkipIfComment(stream);
    if (!passed) return false;
  }
  return false;
}

}  // namespace corvel::host
