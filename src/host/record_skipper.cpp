#include "host/record_skipper.h"

#include <cstring>

namespace corvel::host {

namespace {

using FileStream::InputStream;

constexpr int kEnd = -1;
constexpr char kLastByte = '\xFF';

int Peek(InputStream& stream) {
  return HasByte(stream) ? static_cast<unsigned char>(*stream.Cursor()) : kEnd;
}

// Moves over a byte that is there.
void Take(InputStream& stream) { stream.SetCursor(stream.Cursor() + 1); }

bool TakeIf(InputStream& stream, char byte) {
  if (Peek(stream) != byte) return false;
  Take(stream);
  return true;
}

void TakeAny(InputStream& stream, int count) {
  for (; count > 0 && HasByte(stream); --count) Take(stream);
}

// Moves behind the next `byte`. False when there is none.
bool SkipPast(InputStream& stream, char byte) {
  while (HasByte(stream)) {
    const char* const at = stream.Cursor();
    const char* const end = stream.WindowEnd();
    const void* const found = std::memchr(at, byte, static_cast<std::size_t>(end - at));
    if (found != nullptr) {
      stream.SetCursor(static_cast<const char*>(found) + 1);
      return true;
    }
    stream.SetCursor(end);
  }
  return false;
}

// Behind a "/". A "*" there begins a comment.
bool SkipIfComment(InputStream& stream) {
  if (!TakeIf(stream, '*')) return true;
  while (SkipPast(stream, '*')) {
    while (TakeIf(stream, '*')) continue;
    if (!HasByte(stream)) return false;
    if (TakeIf(stream, '/')) return true;
  }
  return false;
}

// Behind the "\" of a string, which may hide an apostrophe: \S\' is a paragraph sign.
void SkipDirective(InputStream& stream) {
  if (TakeIf(stream, '\\')) return;
  if (TakeIf(stream, 'S')) {
    if (TakeIf(stream, '\\')) TakeAny(stream, 1);
  } else if (TakeIf(stream, 'P')) {
    const int page = Peek(stream);
    if (page == kEnd || page == '\'' || page == '\\') return;
    Take(stream);
    TakeIf(stream, '\\');
  } else if (TakeIf(stream, 'X')) {
    constexpr int kHexDigits = 2;
    constexpr int kEndOfUnits = 3;  // what stands behind the "\" of \X0\.
    if (TakeIf(stream, '\\')) {
      TakeAny(stream, kHexDigits);
    } else if (TakeIf(stream, '2') || TakeIf(stream, '4')) {
      TakeIf(stream, '\\');
      if (SkipPast(stream, '\\')) TakeAny(stream, kEndOfUnits);
    }
  }
}

// The ";" of a record whose rest stands in the window, with neither string nor comment nor the end
// of the input: of most records of a model. Null when a closer look is needed.
const char* PlainEnd(const char* at, const char* end) {
  const auto find = [at](char byte, const char* until) {
    return static_cast<const char*>(std::memchr(at, byte, static_cast<std::size_t>(until - at)));
  };
  const char* const semicolon = find(';', end);
  if (semicolon == nullptr || find('\'', semicolon) != nullptr) return nullptr;
  if (find(kLastByte, semicolon) != nullptr) return nullptr;
  return find('/', semicolon) == nullptr ? semicolon : nullptr;
}

bool IsNotable(char c) { return c == ';' || c == '\'' || c == '/' || c == kLastByte; }

bool IsBlank(char c) { return c == ' ' || (c >= 9 && c <= 13) || c == '_'; }

}  // namespace

bool SkipToSemicolon(InputStream& stream, bool* endsInString) {
  if (!HasByte(stream)) return false;
  if (const char* const semicolon = PlainEnd(stream.Cursor(), stream.WindowEnd())) {
    stream.SetCursor(semicolon);
    return true;
  }
  while (HasByte(stream)) {
    const char* at = stream.Cursor();
    const char* const end = stream.WindowEnd();
    while (at != end && !IsNotable(*at)) ++at;
    stream.SetCursor(at);
    if (at == end) continue;
    if (*at == ';') return true;
    if (*at == kLastByte) return false;
    const bool isString = *at == '\'';
    Take(stream);
    if (isString ? SkipString(stream) : SkipIfComment(stream)) continue;
    if (isString && endsInString != nullptr) *endsInString = true;
    return false;
  }
  return false;
}

// An apostrophe inside a string is doubled: for who skips, the string ends and another one begins.
bool SkipString(InputStream& stream) {
  while (HasByte(stream)) {
    const char* at = stream.Cursor();
    const char* const end = stream.WindowEnd();
    while (at != end && *at != '\'' && *at != '\\') ++at;
    stream.SetCursor(at);
    if (at == end) continue;
    Take(stream);
    if (*at != '\'') {
      SkipDirective(stream);
    } else if (!TakeIf(stream, '\'')) {
      return true;
    }
  }
  return false;
}

bool SkipBlanks(InputStream& stream) {
  while (HasByte(stream)) {
    const char* at = stream.Cursor();
    const char* const end = stream.WindowEnd();
    while (at != end && IsBlank(*at)) ++at;
    stream.SetCursor(at);
    if (at == end) continue;
    if (*at != '/') return *at != kLastByte;
    Take(stream);
    if (!SkipIfComment(stream)) return false;
  }
  return false;
}

}  // namespace corvel::host
