#include "host/display_text.h"

#include <algorithm>
#include <iterator>

namespace corvel::host {

namespace {

struct Range {
  char32_t first;
  char32_t last;
};

// The large blocks only: a terminal has its own opinion about single characters anyway.
constexpr Range kNoColumn[] = {
    {0x0300, 0x036F}, {0x200B, 0x200F}, {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}};
constexpr Range kTwoColumns[] = {
    {0x1100, 0x115F}, {0x2E80, 0x303E}, {0x3041, 0xA4CF}, {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},
    {0xFE30, 0xFE6F}, {0xFF00, 0xFF60}, {0xFFE0, 0xFFE6}, {0x1F300, 0x1FAFF}, {0x20000, 0x3FFFD}};

template <std::size_t kCount>
bool IsIn(const Range (&ranges)[kCount], char32_t c) {
  return std::any_of(std::begin(ranges), std::end(ranges),
                     [c](Range range) { return c >= range.first && c <= range.last; });
}

bool IsHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowSurrogate(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// Units of the character at the start of `text`.
std::size_t UnitsOfFirst(WideView text) {
  return text.size() > 1 && IsHighSurrogate(text[0]) && IsLowSurrogate(text[1]) ? 2 : 1;
}

std::size_t ColumnsOfFirst(WideView text) {
  char32_t c = text[0];
  if (c < kNoColumn[0].first) return 1;
  if (UnitsOfFirst(text) == 2) {
    c = 0x10000 + ((char32_t{text[0]} - 0xD800) << 10) + (char32_t{text[1]} - 0xDC00);
  }
  if (IsIn(kNoColumn, c)) return 0;
  return IsIn(kTwoColumns, c) ? 2 : 1;
}

// Marks that turn the direction of what follows, and the two that end lines: with them a name could
// look like another one.
constexpr Range kTurnsText[] = {
    {0x061C, 0x061C}, {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069}};

bool IsControl(char16_t unit) {
  if (unit >= 0x20 && unit < 0x7F) return false;
  return unit < 0x20 || (unit >= 0x7F && unit < 0xA0) || IsIn(kTurnsText, unit);
}

}  // namespace

WideString Printable(WideView text, bool keepLines) {
  WideString printable(text);
  for (char16_t& unit : printable) {
    const bool kept = keepLines && (unit == u'\n' || unit == u'\t');
    if (IsControl(unit) && !kept) unit = u'?';
  }
  return printable;
}

std::size_t ColumnsOf(WideView text) {
  std::size_t columns = 0;
  while (!text.empty()) {
    columns += ColumnsOfFirst(text);
    text.remove_prefix(UnitsOfFirst(text));
  }
  return columns;
}

WideString FitToColumns(WideView text, std::size_t columns) {
  constexpr WideView kCut = u"...";
  WideString fitted;
  if (ColumnsOf(text) > columns) {
    fitted = kCut.substr(0, columns);
    // A wide letter may leave one column too many, which is filled below.
    while (ColumnsOf(text) > columns - fitted.size()) text.remove_prefix(UnitsOfFirst(text));
  }
  fitted.append(text);
  fitted.append(columns - ColumnsOf(fitted), u' ');
  return fitted;
}

WideString Listed(const std::vector<WideString>& texts) {
  WideString all;
  for (const WideString& text : texts) {
    if (!all.empty()) all += u", ";
    all += text;
  }
  return all;
}

}  // namespace corvel::host
