#include "merge/report/shared/html_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

#include "merge/report/shared/plain_runs.h"
#include "platform/file.h"
#include "step/numbers/number_text.h"

namespace corvel {

namespace {

constexpr std::size_t kColours = 8;
constexpr std::size_t kFirstGrouped = 1000;
constexpr double kManyTenths = 1e6;  // coordinates of drawings are far below

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

void AppendSpecial(char16_t unit, ByteText& html) {
  switch (unit) {
    case u'&': return html.Append("&amp;");
    case u'<': return html.Append("&lt;");
    case u'>': return html.Append("&gt;");
    case u'"': return html.Append("&quot;");
    case u'\'': return html.Append("&#39;");
    default: {
      const char16_t shown = IsForbidden(unit) ? kReplacementCharacter : unit;
      return html.Append(ToUtf8(WideView(&shown, 1)));
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
  if (!named_.contains(key)) named_.emplace(key);
  Raw("<").Raw(element).Raw(" data-t='").Raw(key).Raw("'").Raw(attributes).Raw(">");
  return Text(texts_.Of(key)).Raw("</").Raw(element).Raw(">");
}

HtmlText& HtmlText::Whole(std::size_t number) {
  constexpr std::size_t kMostDigits = 20;
  char* const room = html_.Room(kMostDigits);
  html_.TookUpTo(std::to_chars(room, room + kMostDigits, number).ptr);
  return *this;
}

HtmlText& HtmlText::Tenths(std::int32_t tenths) {
  constexpr std::size_t kSignAndDecimal = 3;
  char* at = html_.Room(kSignAndDecimal + kNumberRoom);
  if (tenths < 0) *at++ = '-';
  const auto value = static_cast<std::uint32_t>(tenths);
  const std::uint32_t number = tenths < 0 ? 0U - value : value;
  at = FormatUnsigned(number / 10, at);
  *at++ = '.';
  *at++ = static_cast<char>('0' + number % 10);
  html_.TookUpTo(at);
  return *this;
}

HtmlText& HtmlText::Count(std::size_t count) {
  return count < kFirstGrouped ? Whole(count) : Plain(std::to_string(count));
}

// Most are coordinates of drawings: small, and with one digit behind the point.
HtmlText& HtmlText::Number(double value, int digits) {
  if (!std::isfinite(value)) return Raw("0");
  if (digits == 1 && std::abs(value) < kManyTenths) return Tenths(InTenths(value));
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

std::int32_t InTenths(double value) {
  if (!(std::abs(value) < kManyTenths)) return 0;
  return static_cast<std::int32_t>(value * 10 + (value < 0 ? -0.5 : 0.5));
}

std::string FewestDigits(double value) {
  constexpr double kSmall = 1e-9;
  constexpr double kLarge = 1e15;
  const double size = std::abs(value);
  const bool isUsual = size == 0.0 || (size >= kSmall && size < kLarge);
  std::array<char, 64> text;
  char* const begin = text.data();
  char* const end = begin + text.size();
  return {begin, isUsual ? std::to_chars(begin, end, value, std::chars_format::fixed).ptr
                         : std::to_chars(begin, end, value).ptr};
}

WideString ShortName(const WideString& path) {
  return WideString(platform::FileNameOf(path.substr(path.find(u'|') + 1)));
}

std::string ColourOf(std::size_t input) { return "i" + std::to_string(input % kColours); }

}  // namespace corvel
