#include "platform/utf8.h"

namespace platform {

namespace {

constexpr bool IsHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool IsLowSurrogate(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// A code point and the bytes that it takes; no bytes when these are not UTF-8.
struct Decoded {
  char32_t code = 0;
  std::size_t length = 0;
};

// The well-formed sequence at the front of `text`, whose first byte is above 127. Overlong forms,
// surrogates and anything beyond U+10FFFF are not well-formed.
Decoded DecodeSequence(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  std::size_t length = 0;
  char32_t code = 0;
  char32_t least = 0;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2, code = lead & 0x1F, least = 0x80;
  } else if ((lead & 0xF0) == 0xE0) {
    length = 3, code = lead & 0x0F, least = 0x800;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4, code = lead & 0x07, least = 0x10000;
  } else {
    return {};
  }
  if (text.size() < length) return {};
  for (std::size_t i = 1; i < length; ++i) {
    const auto next = static_cast<unsigned char>(text[i]);
    if ((next & 0xC0) != 0x80) return {};
    code = (code << 6) | (next & 0x3F);
  }
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  if (code < least || code > 0x10FFFF || surrogate) return {};  // `least`: or it is overlong
  return {code, length};
}

void AppendUnits(char32_t code, std::u16string& wide) {
  if (code < 0x10000) {
    wide.push_back(static_cast<char16_t>(code));
    return;
  }
  const char32_t offset = code - 0x10000;
  wide.push_back(static_cast<char16_t>(0xD800 + (offset >> 10)));
  wide.push_back(static_cast<char16_t>(0xDC00 + (offset & 0x3FF)));
}

void AppendCode(char32_t code, std::string& text) {
  const auto put = [&text](char32_t byte) { text.push_back(static_cast<char>(byte)); };
  if (code < 0x80) {
    put(code);
  } else if (code < 0x800) {
    put(0xC0 | (code >> 6));
    put(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    put(0xE0 | (code >> 12));
    put(0x80 | ((code >> 6) & 0x3F));
    put(0x80 | (code & 0x3F));
  } else {
    put(0xF0 | (code >> 18));
    put(0x80 | ((code >> 12) & 0x3F));
    put(0x80 | ((code >> 6) & 0x3F));
    put(0x80 | (code & 0x3F));
  }
}

}  // namespace

std::u16string FromUtf8(std::string_view text) {
  std::u16string wide;
  wide.reserve(text.size());
  while (!text.empty()) {
    const auto byte = static_cast<unsigned char>(text.front());
    std::size_t taken = 1;
    if (byte < 0x80) {
      wide.push_back(byte);
    } else if (const Decoded decoded = DecodeSequence(text); decoded.length != 0) {
      AppendUnits(decoded.code, wide);
      taken = decoded.length;
    } else {
      wide.push_back(static_cast<char16_t>(kRawByteBase + byte));
    }
    text.remove_prefix(taken);
  }
  return wide;
}

void AppendUtf8(std::u16string_view text, std::string& bytes) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t unit = text[i];
    if (unit < 0x80) {
      bytes.push_back(static_cast<char>(unit));
    } else if (IsHighSurrogate(unit) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
      AppendCode(0x10000 + ((unit - 0xD800u) << 10) + (text[++i] - 0xDC00u), bytes);
    } else if (unit >= kRawByteBase + 0x80 && unit <= kRawByteBase + 0xFF) {
      bytes.push_back(static_cast<char>(unit - kRawByteBase));
    } else if (IsHighSurrogate(unit) || IsLowSurrogate(unit)) {
      AppendCode(char32_t{0xFFFD}, bytes);
    } else {
      AppendCode(char32_t{unit}, bytes);
    }
  }
}

}  // namespace platform
