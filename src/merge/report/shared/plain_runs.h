// The runs of a text that stand in a report as they are: most of most texts.
#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "core/text.h"
#include "merge/report/shared/byte_text.h"

namespace corvel {

// Stands for what is no character.
inline constexpr char16_t kReplacementCharacter = 0xFFFD;

// Which characters of ASCII need nothing done to them.
class PlainCharacters {
 public:
  static constexpr std::size_t kAscii = 128;

  // Those that can be seen, and the space, but for `others`.
  explicit constexpr PlainCharacters(std::string_view others) {
    for (std::size_t c = ' '; c < kAscii - 1; ++c) {
      isPlain_[c] = others.find(static_cast<char>(c)) == std::string_view::npos;
    }
  }

  constexpr bool operator()(char16_t unit) const { return unit < kAscii && isPlain_[unit]; }
  constexpr bool operator()(char byte) const {
    return (*this)(static_cast<char16_t>(static_cast<unsigned char>(byte)));
  }
  bool AreAll(std::string_view bytes) const {
    return std::all_of(bytes.begin(), bytes.end(), *this);
  }
  // Puts the text behind `bytes`, in UTF-8. `appendSpecial` puts each other character of one unit;
  // instead of half a pair it is given U+FFFD.
  template <class AppendSpecial>
  void AppendText(WideView text, ByteText& bytes, AppendSpecial appendSpecial) const {
    text.remove_prefix(AppendRun(text, bytes));
    while (!text.empty()) {
      const bool isPair = IsHighHalf(text[0]) && text.size() > 1 && IsLowHalf(text[1]);
      if (isPair) {
        bytes.Append(ToUtf8(text.substr(0, 2)));
      } else {
        const bool isHalf = IsHighHalf(text[0]) || IsLowHalf(text[0]);
        appendSpecial(isHalf ? kReplacementCharacter : text[0], bytes);
      }
      text.remove_prefix(isPair ? 2 : 1);
      text.remove_prefix(AppendRun(text, bytes));
    }
  }

 private:
  static constexpr bool IsHighHalf(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
  static constexpr bool IsLowHalf(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

  // Puts the run at the beginning of `text` behind `bytes`, and gives its length.
  std::size_t AppendRun(WideView text, ByteText& bytes) const {
    char* const begin = bytes.Room(text.size());
    char* at = begin;
    for (const char16_t unit : text) {
      if (!(*this)(unit)) break;
      *at++ = static_cast<char>(unit);
    }
    bytes.TookUpTo(at);
    return static_cast<std::size_t>(at - begin);
  }

  std::array<bool, kAscii> isPlain_{};
};

}  // namespace corvel
