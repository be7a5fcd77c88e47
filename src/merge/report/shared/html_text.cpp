#include "merge/report/shared/html_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

#include "merge/report/shared/plain_runs.h"
#include "platform/file.h"

namespace corvel {

namespace {

constexpr std::size_t kColours = 8;
constexpr std::size_t kFirstGrouped = 1000;

// What a page may not have in it, escaped or not.
bool IsForbidden(char16_t unit) {
  const bool isControl =
      (unit < 0x20 && unit != u'\n' && unit != u'\t') || (unit >= 0x7F && unit <= 0x9F);
  return isControl || unit == 0xFFFE || unit == 0xFFFF;
}

constexpr PlainCharacters kPlain("&<>\"'");

// Small whole numbers, and what has more than digits and a point, such as an exponent.
bool IsSameEverywhere(std::string_view number) {
  const std::string_view digits = number.substr(number.starts_with('-') ? 1 : 0);
  if (digits.find_first_not_of("0123456789.") != std::string_view::npos) return true;
  constexpr std::size_t kMostUngrouped = 3;
  return digits.size() <= kMostUngrouped && digits.find('.') == std::string_view::npos;
}

void AppendSpecial(char16_t unit, std::string& html) {
  switch (unit) {
    case u'&': html += "&amp;"; break;
    case u'<': html += "&lt;"; break;
    case u'>': html += "&gt;"; break;
    case u'"': html += "&quot;"; break;
    case u'\'': html += "&#39;"; break;
    default: {
      const char16_t shown = IsForbidden(unit) ? kReplacementCharacter : unit;
      AppendUtf8(WideView(&shown, 1), html);
    }
  }
}

}  // namespace

HtmlText& HtmlText::Text(std::string_view utf8) {
  return kPlain.AreAll(utf8) ? Raw(utf8) : Text(WideView(FromUtf8(utf8)));
}

HtmlText& HtmlText::Text(WideView text) {
  kPlain.AppendText(text, html_, AppendSpecial);
  return *this;
}

HtmlText& HtmlText::Name(WideView text) { return Raw("<bdi>").Text(text).Raw("</bdi>"); }

HtmlText& HtmlText::Word(std::string_view element, std::string_view key,
                         std::string_view attributes) {
  Raw("<").Raw(element).Raw(" data-t='").Raw(key).Raw("'").Raw(attributes).Raw(">");
  return Text(texts_.Of(key)).Raw("</").Raw(element).Raw(">");
}

HtmlText& HtmlText::Whole(std::size_t number) {
  std::array<char, 24> digits;
  return Raw(
      {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr});
}

HtmlText& HtmlText::Count(std::size_t count) {
  return count < kFirstGrouped ? Whole(count) : Plain(std::to_string(count));
}

// Most are coordinates of drawings: small, and with one digit behind the point.
HtmlText& HtmlText::Number(double value, int digits) {
  constexpr double kSmall = 1e6;
  if (!std::isfinite(value)) return Raw("0");
  if (digits == 1 && std::abs(value) < kSmall) {
    const long tenths = std::lround(value * 10);
    std::array<char, 24> text;
    char* const end = text.data() + text.size();
    char* at = end;
    auto number = static_cast<unsigned long>(std::abs(tenths));
    *--at = static_cast<char>('0' + number % 10);
    *--at = '.';
    do {
      number /= 10;
      *--at = static_cast<char>('0' + number % 10);
    } while (number >= 10);
    if (tenths < 0) *--at = '-';
    html_.append(at, end);
    return *this;
  }
  std::array<char, 400> text{};
  const auto written = std::to_chars(text.data(), text.data() + text.size(), value,
                                     std::chars_format::fixed, digits);
  std::string_view shown(text.data(), written.ptr);
  // A little below zero is shown without its sign.
  const bool isZero = shown.find_first_not_of("-0.") == std::string_view::npos;
  if (isZero && shown.starts_with('-')) shown.remove_prefix(1);
  return Raw(shown);
}

HtmlText& HtmlText::Decimal(double value, int digits, std::string_view element) {
  return Plain(HtmlText(texts_).Number(value, digits).Take(), element);
}

HtmlText& HtmlText::Plain(std::string_view number, std::string_view element) {
  if (IsSameEverywhere(number)) return Text(number);
  Raw("<").Raw(element).Raw(" data-n='").Raw(number).Raw("'>");
  return Raw(texts_.Number(number)).Raw("</").Raw(element).Raw(">");
}

WideString ShortName(const WideString& path) {
  return WideString(platform::FileNameOf(path.substr(path.find(u'|') + 1)));
}

std::string ColourOf(std::size_t input) { return "i" + std::to_string(input % kColours); }

}  // namespace corvel
