// UTF-8 at the border to the system.
//
// A byte that is no part of valid UTF-8 becomes the unit kRawByteBase + byte, and that unit becomes
// the byte again: any file name comes back as it was.
#pragma once

#include <string>
#include <string_view>

namespace platform {

inline constexpr char16_t kRawByteBase = 0xDC00;

std::u16string FromUtf8(std::string_view text);

// Appends `text` to `bytes`. Lone surrogates that stand for no byte become U+FFFD.
void AppendUtf8(std::u16string_view text, std::string& bytes);

inline std::string ToUtf8(std::u16string_view text) {
  std::string bytes;
  AppendUtf8(text, bytes);
  return bytes;
}

}  // namespace platform
