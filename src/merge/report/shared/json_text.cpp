#include "merge/report/shared/json_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "merge/report/shared/plain_runs.h"
#include "step/numbers/number_text.h"

namespace corvel {

namespace {

// The first two bytes of U+2028 and U+2029.
constexpr std::string_view kLineSeparators = "\xE2\x80";

void AppendEscape(char16_t unit, ByteText& bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  bytes.Append("\\u");
  for (int shift = 12; shift >= 0; shift -= 4) bytes.Append(kDigits[(unit >> shift) & 0xF]);
}

constexpr PlainCharacters kPlain("\"\\<>&");

bool IsEscaped(char16_t unit) {
  return unit < 0x20 || unit == u'<' || unit == u'>' || unit == u'&' || unit == 0x7F ||
         unit == 0x2028 || unit == 0x2029;
}

void AppendSpecial(char16_t unit, ByteText& bytes) {
  if (unit == u'"' || unit == u'\\') {
    bytes.Append('\\');
    bytes.Append(static_cast<char>(unit));
  } else if (IsEscaped(unit)) {
    AppendEscape(unit, bytes);
  } else {
    bytes.Append(ToUtf8(WideView(&unit, 1)));
  }
}

// As std::round, which is a call.
double RoundedToWhole(double value) {
  constexpr double kOnlyWholesFrom = 4503599627370496.0;
  if (!(std::abs(value) < kOnlyWholesFrom)) return value;
  const auto whole = static_cast<double>(static_cast<std::int64_t>(value));
  const double rest = value - whole;
  return rest >= 0.5 ? whole + 1 : rest <= -0.5 ? whole - 1 : whole;
}

}  // namespace

JsonText& JsonText::Key(std::string_view key) {
  Value(key);
  text_.Append(':');
  needsComma_ = false;
  return *this;
}

// False where something of the text has to be looked at.
bool JsonText::PutPlain(std::string_view text) {
  if (!kPlain.AreAll(text)) return false;
  BeforeToken();
  text_.Append('"');
  text_.Append(text);
  text_.Append('"');
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
  text_.Append('"');
  kPlain.AppendText(text, text_, AppendSpecial);
  text_.Append('"');
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
  constexpr double kTooLarge = 4e9;
  constexpr std::uint32_t kWholesWithoutExponent = 100'000;
  static constexpr std::array<std::uint32_t, 7> kThousandths = {0, 0, 0, 1, 10, 100, 1000};
  static constexpr std::array<std::uint32_t, 7> kPowers = {1,      10,      100,      1000,
                                                           10'000, 100'000, 1'000'000};
  if (!(std::abs(scaled) < kTooLarge)) return false;
  const auto number = static_cast<std::uint32_t>(std::abs(scaled));
  if (number != 0 && number < kThousandths[static_cast<std::size_t>(digits)]) return false;
  const std::uint32_t power = kPowers[static_cast<std::size_t>(digits)];
  const std::uint32_t whole = number / power;
  const std::uint32_t decimals = number % power;
  if (decimals == 0 && whole >= kWholesWithoutExponent) return false;
  BeforeToken();
  char* at = text_.Room(1 + std::size_t{2} * kNumberRoom);
  if (scaled < 0.0) *at++ = '-';
  at = FormatUnsigned(whole, at);
  if (decimals != 0) {
    char* const point = at;
    // A digit in front keeps the zeros behind the point, which takes its place.
    at = FormatUnsigned(power + decimals, at);
    *point = '.';
    while (at[-1] == '0') --at;
  }
  text_.TookUpTo(at);
  needsComma_ = true;
  return true;
}

void JsonText::Rounded(double value, int digits) {
  constexpr std::array<double, 7> kPowers = {1.0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6};
  const double factor = kPowers[static_cast<std::size_t>(digits)];
  const double scaled = RoundedToWhole(value * factor);
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
      text_.Append(c);
    }
  }
  needsComma_ = true;
}

}  // namespace corvel
