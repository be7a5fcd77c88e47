// Between the 16-bit units of the engine and those of Windows, which are the same.
#pragma once

#include <string>

namespace platform {

static_assert(sizeof(wchar_t) == sizeof(char16_t), "Windows text has 16-bit units");

// A file name may hold units that are no valid UTF-16; they pass through as they are.
inline std::wstring ToNative(std::u16string_view text) { return {text.begin(), text.end()}; }
inline std::u16string FromNative(std::wstring_view text) { return {text.begin(), text.end()}; }

}  // namespace platform
