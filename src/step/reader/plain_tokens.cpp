// The tokens that a scanner takes straight from the window of its stream.
#include <algorithm>

#include "step/numbers/number_text.h"
#include "step/reader/scanner.h"
#include "step/reader/string_decoder.h"

namespace corvel {

namespace {

constexpr std::ptrdiff_t kSafeDigits = 9;  // so many always fit 32 bits

const char* EndOfDigits(const char* at, const char* end) {
  while (at != end && IsDigit(*at)) ++at;
  return at;
}

std::int64_t ValueOfDigits(const char* at, const char* end) {
  std::int64_t value = 0;
  for (; at != end; ++at) value = value * 10 + (*at - '0');
  return value;
}

std::string_view Between(const char* begin, const char* end) {
  return {begin, static_cast<std::size_t>(end - begin)};
}

bool StartsNumber(char sign) { return IsDigit(sign) || sign == '-'; }

}  // namespace

bool Scanner::TakeAnyIdentifier(std::uint32_t& number) {
  if (PeekSign() != '#') return false;
  const char* const begin = stream_->Cursor() + 1;
  const char* const end = stream_->WindowEnd();
  const char* const at = EndOfDigits(begin, end);
  if (at == end || at == begin || at - begin > kSafeDigits) return false;
  number = static_cast<std::uint32_t>(ValueOfDigits(begin, at));
  ++argument_;
  stream_->SetCursor(at);
  return true;
}

bool Scanner::TakeAnyNumber(double& value) {
  if (!StartsNumber(PeekSign())) return false;
  const char* const begin = stream_->Cursor();
  const char* const end = stream_->WindowEnd();
  const char* at = EndOfDigits(begin + 1, end);
  if (at != end && *at == '.') {
    while (at != end && IsOfKind(*at, kNumberByte)) ++at;
    // Whatever else goes on up to the end of the value is left to a closer look.
    if (at == end || (*at != ',' && *at != ')')) return false;
  }
  if (at == end) return false;
  value = ParseReal(Between(begin, at));
  stream_->SetCursor(at);
  return true;
}

bool Scanner::TakeInteger(std::int32_t& value) {
  const char sign = PeekSign();
  if (!StartsNumber(sign)) return false;
  const char* const begin = stream_->Cursor() + (sign == '-' ? 1 : 0);
  const char* const end = stream_->WindowEnd();
  const char* const at = EndOfDigits(begin, end);
  if (at == end || *at == '.' || at - begin > kSafeDigits) return false;
  const auto magnitude = static_cast<std::int32_t>(ValueOfDigits(begin, at));
  value = sign == '-' ? -magnitude : magnitude;
  stream_->SetCursor(at);
  return true;
}

bool Scanner::TakeString(std::string_view& text) {
  if (PeekSign() != '\'') return false;
  const char* const begin = stream_->Cursor() + 1;
  const char* const end = stream_->WindowEnd();
  const char* const at = EndOfPlainText(begin, end);
  // Of two quotes the first does not end the text.
  if (at == end || *at != '\'' || at + 1 == end || at[1] == '\'') return false;
  text = Between(begin, at);
  stream_->SetCursor(at + 1);
  return true;
}

bool Scanner::TakeEnumeration(std::string_view& name) {
  if (PeekSign() != '.') return false;
  const char* const begin = stream_->Cursor() + 1;
  const char* const end = stream_->WindowEnd();
  const char* const at = std::find(begin, end, '.');
  if (at == end) return false;
  name = Between(begin, at);
  stream_->SetCursor(at + 1);
  return true;
}

bool Scanner::TakeClassName(std::string_view& name) {
  if (PeekSign() != 'I') return false;
  const char* const begin = stream_->Cursor();
  const char* const end = stream_->WindowEnd();
  const char* at = begin;
  unsigned run = kRunRoom;
  while (run == kRunRoom && end - at > kRunRoom) at += run = LettersAndDigitsAt(at);
  while (at != end && IsOfKind(*at, kLetterByte | kDigitByte)) ++at;
  // An underscore vanishes from a name, which then is no piece of the window.
  if (at == end || *at == '_' || !Between(begin, at).starts_with("IFC")) return false;
  name = Between(begin, at);
  stream_->SetCursor(at);
  return true;
}

}  // namespace corvel
