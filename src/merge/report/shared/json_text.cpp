#include "merge/report/shared/json_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace corvel {

namespace {

constexpr char16_t kReplacement = 0xFFFD;
// The first two bytes of U+2028 and U+2029.
constexpr std::string_view kLineSeparators = "\xE2\x80";

bool IsHighHalf(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowHalf(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

void AppendEscape(char16_t unit, std::string& bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  bytes += "\\u";
  for (int shift = 12; shift >= 0; shift -= 4) bytes += kDigits[(unit >> shift) & 0xF];
}

bool IsEscaped(char16_t unit) {
  return unit < 0x20 || unit == u'<' || unit == u'>' || unit == u'&' || unit == 0x7F ||
         unit == 0x2028 || unit == 0x2029;
}

void AppendUnit(char16_t unit, std::string& bytes) {
  if (unit == u'"' || unit == u'\\') {
    bytes += '\\';
    bytes += static_cast<char>(unit);
  } else if (IsEscaped(unit)) {
    AppendEscape(unit, bytes);
  } else if (unit < 0x80) {
    bytes += static_cast<char>(unit);
  } else {
    AppendUtf8(WideView(&unit, 1), bytes);
  }
}

}  // namespace

void JsonText::BeforeToken() {
  if (needsComma_) text_ += ',';
  if (newLine_) text_ += '\n';
  needsComma_ = newLine_ = false;
}

void JsonText::Put(std::string_view token) {
  BeforeToken();
  text_ += token;
  needsComma_ = true;
}

void JsonText::Begin(char bracket) {
  BeforeToken();
  text_ += bracket;
}

void JsonText::End(char bracket) {
  needsComma_ = false;
  BeforeToken();
  text_ += bracket;
  needsComma_ = true;
}

JsonText& JsonText::Key(std::string_view key) {
  Value(key);
  text_ += ':';
  needsComma_ = false;
  return *this;
}

// False where something of the text has to be looked at.
bool JsonText::PutPlain(std::string_view text) {
  const bool isPlain = std::all_of(text.begin(), text.end(), [](char c) {
    return c >= ' ' && c < '\x7F' && c != '"' && c != '\\' && c != '<' && c != '>' && c != '&';
  });
  if (!isPlain) return false;
  BeforeToken();
  text_ += '"';
  text_ += text;
  text_ += '"';
  needsComma_ = true;
  return true;
}

void JsonText::Value(std::string_view text) {
  if (!PutPlain(text)) Value(WideView(Widen(text)));
}

void JsonText::Utf8(std::string_view text) {
  if (!PutPlain(text)) Value(WideView(FromUtf8(text)));
}

void JsonText::Value(WideView text) {
  BeforeToken();
  text_ += '"';
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t unit = text[i];
    if (IsHighHalf(unit) && i + 1 < text.size() && IsLowHalf(text[i + 1])) {
      AppendUtf8(text.substr(i++, 2), text_);
    } else {
      AppendUnit(IsHighHalf(unit) || IsLowHalf(unit) ? kReplacement : unit, text_);
    }
  }
  text_ += '"';
  needsComma_ = true;
}

void JsonText::Value(double value) {
  if (!std::isfinite(value)) return Null();
  std::array<char, 40> digits;
  const auto written = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  Put({digits.data(), written.ptr});
}

// A whole number of ten-thousandths or so, as Value would put it: no other number of so few digits
// is as near, so that these are its fewest. False for what an exponent makes shorter, and for what
// is too large.
bool JsonText::PutDecimal(double scaled, int digits) {
  constexpr std::int64_t kLargest = 1'000'000'000'000;
  constexpr std::array<std::int64_t, 7> kPowers = {1, 10, 100, 1000, 10'000, 100'000, 1'000'000};
  constexpr std::int64_t kThousandth = 1000;
  constexpr std::int64_t kWholesWithoutExponent = 100'000;
  if (!(std::abs(scaled) < static_cast<double>(kLargest))) return false;
  const auto number = static_cast<std::int64_t>(std::abs(scaled));
  const std::int64_t factor = kPowers[static_cast<std::size_t>(digits)];
  std::int64_t rest = number % factor;
  const bool isSmall = number * kThousandth < factor && number != 0;
  if (isSmall || (rest == 0 && number / factor >= kWholesWithoutExponent)) return false;
  std::array<char, 40> text;
  char* at = text.data();
  if (scaled < 0.0) *at++ = '-';
  at = std::to_chars(at, text.data() + text.size(), number / factor).ptr;
  if (rest != 0) {
    *at++ = '.';
    for (std::int64_t power = factor / 10; rest != 0; power /= 10) {
      *at++ = static_cast<char>('0' + rest / power);
      rest %= power;
    }
  }
  Put({text.data(), at});
  return true;
}

void JsonText::Rounded(double value, int digits) {
  constexpr std::array<double, 7> kPowers = {1.0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6};
  const double factor = kPowers[static_cast<std::size_t>(digits)];
  const double scaled = std::round(value * factor);
  if (PutDecimal(scaled, digits)) return;
  const double rounded = scaled / factor;
  // Not the zero with a sign, and as it is where there is nothing to be rounded any more.
  Value(std::isfinite(rounded) ? rounded + 0.0 : value);
}

void JsonText::Made(std::string_view json) {
  BeforeToken();
  for (std::size_t i = 0; i < json.size(); ++i) {
    const char c = json[i];
    if (c == '<' || c == '>' || c == '&' || c == '\x7F') {
      AppendEscape(static_cast<char16_t>(c), text_);
    } else if (json.substr(i, 2) == kLineSeparators && i + 2 < json.size() &&
               (json[i + 2] == '\xA8' || json[i + 2] == '\xA9')) {
      AppendEscape(json[i + 2] == '\xA8' ? 0x2028 : 0x2029, text_);
      i += 2;
    } else {
      text_ += c;
    }
  }
  needsComma_ = true;
}

}  // namespace corvel
