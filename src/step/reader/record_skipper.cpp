#include "step/reader/record_skipper.h"

#include <bit>

#include "step/numbers/byte_runs.h"
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

bool IsNotable(char c) { return c == ';' || c == '\'' || c == '/' || c == kLastByte; }

// The first byte that ends a record, begins something inside of it, or is above 127.
const char* FindNotable(const char* at, const char* end) {
  using bytes::All;
  // Of all bytes these two alone become the same with that bit.
  constexpr unsigned kBetween = '\'' ^ '/';
  static_assert(std::has_single_bit(kBetween));
  for (; end - at >= kRunRoom; at += kRunRoom) {
    const std::uint64_t word = bytes::EightAt(at);
    const std::uint64_t semicolons = word ^ All(';');
    const std::uint64_t starts = (word | All(kBetween)) ^ All('/');
    const std::uint64_t found =
        (((semicolons - All(1)) & ~semicolons) | ((starts - All(1)) & ~starts) | word) & All(0x80);
    if (found != 0) return at + bytes::BytesBefore(found);
  }
  return at;
}

}  // namespace

bool SkipToSemicolon(InputStream& stream, bool* endsInString) {
  while (HasByte(stream)) {
    const char* at = stream.Cursor();
    const char* const end = stream.WindowEnd();
    // Most records of a model have at most a string in them.
    at = FindNotable(at, end);
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
