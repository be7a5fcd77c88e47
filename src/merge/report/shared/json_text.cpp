#include "merge/report/shared/json_text.h"

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

void JsonText::Rounded(double value, int digits) {
  constexpr std::array<double, 7> kPowers = {1.0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6};
  const double factor = kPowers[static_cast<std::size_t>(digits)];
  const double rounded = std::round(value * factor) / factor;
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
