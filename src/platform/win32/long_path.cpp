#include "platform/win32/long_path.h"

#include <windows.h>

#include "platform/win32/wide.h"

namespace platform {

namespace {

// A folder's path has to leave room for a short file name, so its limit is the lower one.
constexpr std::size_t kLongestFolder = MAX_PATH - 12;

bool HasDevicePrefix(const std::wstring& path) {
  return path.starts_with(L"\\\\?\\") || path.starts_with(L"\\\\.\\");
}

// With the current folder in front, backslashes only and no dots between them: behind the prefix
// the system takes every character as a part of a name. Empty when there is no such form.
std::wstring FullForm(const std::wstring& path) {
  const DWORD room = ::GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
  std::wstring full(room, L'\0');
  full.resize(::GetFullPathNameW(path.c_str(), room, full.data(), nullptr));
  return full.size() < room ? full : std::wstring();
}

}  // namespace

std::wstring PathForSystem(const std::u16string& path) {
  std::wstring native = ToNative(path);
  if (HasDevicePrefix(native)) return native;
  const std::wstring full = FullForm(native);
  if (full.size() < kLongestFolder) return native;
  if (full.starts_with(L"\\\\")) return L"\\\\?\\UNC" + full.substr(1);
  return L"\\\\?\\" + full;
}

}  // namespace platform
