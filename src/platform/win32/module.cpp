#include "platform/module.h"

#include <windows.h>

#include <shlobj.h>

#include "platform/win32/module_path.h"
#include "platform/win32/wide.h"

namespace platform {

namespace {

HMODULE OwnModule() {
  HMODULE module = nullptr;
  ::GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<LPCWSTR>(&LibraryPath), &module);
  return module;
}

std::u16string FolderOf(int id) {
  wchar_t path[MAX_PATH] = {};
  if (FAILED(::SHGetFolderPathW(nullptr, id, nullptr, SHGFP_TYPE_CURRENT, path))) return {};
  return FromNative(path);
}

}  // namespace

ExportedFunction FindInMainProgram(const char* name) {
  return reinterpret_cast<ExportedFunction>(::GetProcAddress(::GetModuleHandleW(nullptr), name));
}

// Grows its buffer until the path fits: the system cuts what is longer without a word.
std::u16string PathOfModule(void* module) {
  std::wstring path(MAX_PATH, L'\0');
  while (true) {
    const auto size = static_cast<DWORD>(path.size());
    const DWORD length = ::GetModuleFileNameW(static_cast<HMODULE>(module), path.data(), size);
    if (length < size) return FromNative(path.substr(0, length));
    path.resize(2 * path.size());
  }
}

std::u16string LibraryPath() { return PathOfModule(OwnModule()); }

std::u16string UserDataFolder() { return FolderOf(CSIDL_LOCAL_APPDATA); }

std::u16string CommonDataFolder() { return FolderOf(CSIDL_COMMON_APPDATA); }

}  // namespace platform
