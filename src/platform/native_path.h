// Paths of the engine as the standard library's file functions take them.
#pragma once

#include <filesystem>
#include <string_view>

#include "platform/utf8.h"

namespace platform {

// Names that are no valid text survive: on POSIX systems the bytes go through as they are.
inline std::filesystem::path NativePath(std::u16string_view path) {
#ifdef _WIN32
  return {path};
#else
  return {ToUtf8(path)};
#endif
}

inline std::u16string FromNativePath(const std::filesystem::path& path) {
#ifdef _WIN32
  return path.u16string();
#else
  return FromUtf8(path.native());
#endif
}

}  // namespace platform
