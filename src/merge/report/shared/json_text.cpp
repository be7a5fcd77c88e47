#include "merge/report/shared/json_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "merge/report/shared/plain_runs.h"

namespace corvel {

namespace {

// The first two bytes of U+2028 and U+2029.
constexpr std::string_view kLineSeparators = "\xE2\x80";

void AppendEscape(char16_t unit, std::string& bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  bytes += "\\u";
  for (int shift = 12; shift >= 0; shift -= 4) bytes += kDigits[(unit >> shift) & 0xF];
}

constexpr PlainCharacters kPlain("\"\\<>&");

bool IsEscaped(char16_t unit) {
  return unit < 0x20 || unit == u'<' || unit == u'>' || unit == u'&' || unit == 0x7F ||
         unit == 0x2028 || unit == 0x2029;
}

void AppendSpecial(char16_t unit, std::string& bytes) {
  if (unit == u'"' || unit == u'\\') {
    bytes += '\\';
    bytes += static_cast<char>(unit);
  } else if (IsEscaped(unit)) {
    AppendEscape(unit, bytes);
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
  if (!kPlain.AreAll(text)) return false;
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
  kPlain.AppendText(text, text_, AppendSpecial);
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
  constexpr std::uint64_t kLargest = 1'000'000'000'000;
  constexpr std::array<std::uint64_t, 7> kThousandths = {0, 0, 0, 1, 10, 100, 1000};
  constexpr std::uint64_t kWholesWithoutExponent = 100'000;
  if (!(std::abs(scaled) < static_cast<double>(kLargest))) return false;
  auto number = static_cast<std::uint64_t>(std::abs(scaled));
  if (number != 0 && number < kThousandths[static_cast<std::size_t>(digits)]) return false;
  std::array<char, 40> text;
  char* const end = text.data() + text.size();
  char* at = end;
  for (int i = 0; i < digits; ++i, number /= 10) {
    if (number % 10 != 0 || at != end) *--at = static_cast<char>('0' + number % 10);
  }
  if (at != end) {
    *--at = '.';
  } else if (number >= kWholesWithoutExponent) {
    return false;
  }
  do {
    *--at = static_cast<char>('0' + number % 10);
    number /= 10;
  } while (number != 0);
  if (scaled < 0.0) *--at = '-';
  if (newLine_) *--at = '\n';
  if (needsComma_) *--at = ',';
  text_.append(at, end);
  newLine_ = false;
  needsComma_ = true;
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
