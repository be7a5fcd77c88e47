#include "step/reader/record_skipper.h"

#include <cstring>

#include "step/reader/string_decoder.h"

namespace corvel {

namespace {

using FileStream::InputStream;

// The text of a statement that is passed over may be longer than memory.
bool Refill(InputStream& stream) {
  stream.ClearStatementText();
  return stream.Refill();
}

bool HasByte(InputStream& stream) {
  return stream.Cursor() != stream.WindowEnd() || Refill(stream);
}

// Takes a byte that is there.
void Take(InputStream& stream) { stream.SetCursor(stream.Cursor() + 1); }

// Behind a "/". A "*" there begins a comment. False when the input ends inside of it.
bool SkipIfComment(InputStream& stream) {
  if (!HasByte(stream) || *stream.Cursor() != '*') return true;
  Take(stream);
  return PassComment(
      stream, [&] { return Refill(stream); }, [](char, char) {});
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

}  // namespace corvel
