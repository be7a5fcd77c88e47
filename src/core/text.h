// The text types of the engine.
//
// All model text, messages and paths are 16-bit units, on every system; class keys, GUIDs and text
// keys are narrow. Paths become UTF-8 (or wchar_t) only at the platform border.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace corvel {

using WideString = std::u16string;
using WideView = std::u16string_view;

// A raw byte above 127 of a model file stands in wide text as kRawByteBase + byte, a lone low
// surrogate (U+DC80..U+DCFF) that no valid text holds. So it can be told from a decoded character
// and goes back to the file as the byte that it was. Paths use the same units for bytes that are
// no UTF-8.
inline constexpr char16_t kRawByteBase = 0xDC00;

constexpr bool IsRawByte(char16_t unit) { return unit >= 0xDC80 && unit <= 0xDCFF; }

// Each byte becomes one unit of the same value.
inline WideString Widen(std::string_view bytes) {
  WideString wide(bytes.size(), u'\0');
  for (std::size_t i = 0; i < bytes.size(); ++i) wide[i] = static_cast<unsigned char>(bytes[i]);
  return wide;
}

// The low byte of each unit; for text that is known to be ASCII, or bytes made wide.
inline std::string Narrow(WideView text) {
  std::string narrow(text.size(), '\0');
  for (std::size_t i = 0; i < text.size(); ++i) narrow[i] = static_cast<char>(text[i] & 0xFF);
  return narrow;
}

constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// The letters A to Z in lower case, whatever the locale.
inline WideString ToLowerAscii(WideView text) {
  WideString lower(text);
  for (char16_t& unit : lower) {
    if (unit >= u'A' && unit <= u'Z') unit = static_cast<char16_t>(unit - u'A' + u'a');
  }
  return lower;
}

// Decimal text of a number.
inline WideString ToWide(std::uint32_t value) { return Widen(std::to_string(value)); }

// UTF-8 to 16-bit units and back. Bytes that are no UTF-8 become raw-byte units; those units become
// the bytes again, and any other lone surrogate becomes U+FFFD.
WideString FromUtf8(std::string_view text);
std::string ToUtf8(WideView text);
void AppendUtf8(WideView text, std::string& bytes);

}  // namespace corvel
