#include "platform/locked_file.h"

#include <windows.h>

#include <string>

#include "platform/win32/long_path.h"
#include "platform/win32/ordinary_file.h"
#include "platform/win32/wide.h"

namespace platform {

namespace {

File FileOf(HANDLE handle) { return File(reinterpret_cast<std::intptr_t>(handle)); }

// Unlike others within this program and beside it.
std::u16string NextName() {
  static LONG count = 0;
  const std::wstring number = std::to_wstring(::InterlockedIncrement(&count));
  return FromNative(L"corvel-" + std::to_wstring(::GetCurrentProcessId()) + L"-" + number +
                    L".tmp");
}

HANDLE OpenNew(const std::wstring& name) {
  return ::CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, 0, nullptr, CREATE_NEW,
                       FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
}

}  // namespace

// The lock is what others may do with the file while it is open.
Claim ClaimFile(const std::u16string& path, File& file) {
  file.Close();
  // A NUL would cut the name and lead to another file.
  if (path.find(u'\0') != std::u16string::npos) return Claim::kRefused;
  file = FileOf(OpenOrdinaryFile(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, OPEN_ALWAYS));
  if (file.IsOpen()) return Claim::kTaken;
  return ::GetLastError() == ERROR_SHARING_VIOLATION ? Claim::kLocked : Claim::kRefused;
}

// An open file cannot be deleted by its name. Whoever opens it in between keeps it: it is not
// deleted then either.
bool RemoveClaimedFile(const std::u16string& path, File& file) {
  if (!file.IsOpen()) return false;
  file.Close();
  return RemoveFile(path);
}

bool OpenUnnamedFile(const std::u16string& folder, File& file) {
  file.Close();
  if (folder.empty() || folder.find(u'\0') != std::u16string::npos) return false;
  // Names may be left of a program that had the same number and is being cleaned up after.
  constexpr int kAttempts = 100;
  for (int attempt = 0; attempt < kAttempts && !file.IsOpen(); ++attempt) {
    file = FileOf(OpenNew(PathForSystem(JoinPath(folder, NextName()))));
    if (!file.IsOpen() && ::GetLastError() != ERROR_FILE_EXISTS) break;
  }
  return file.IsOpen();
}

std::u16string SystemTemporaryFolder() {
  std::wstring folder(MAX_PATH + 1, L'\0');
  folder.resize(::GetTempPathW(MAX_PATH + 1, folder.data()));
  return FromNative(folder);
}

}  // namespace platform
