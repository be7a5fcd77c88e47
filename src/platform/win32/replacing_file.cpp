#include "platform/replacing_file.h"

#include <windows.h>

#include <optional>
#include <utility>
#include <vector>

#include "platform/console.h"
#include "platform/part_name.h"
#include "platform/win32/long_path.h"
#include "platform/win32/wide.h"

namespace platform {

namespace {

constexpr std::intptr_t kNone = -1;  // INVALID_HANDLE_VALUE
constexpr std::size_t kLongestName = 255;
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

HANDLE HandleOf(std::intptr_t handle) { return reinterpret_cast<HANDLE>(handle); }

std::size_t LengthInUnits(std::u16string_view name) { return name.size(); }

bool IsThere(const std::wstring& path) {
  return ::GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool IsAbsent() {
  const DWORD failure = ::GetLastError();
  return failure == ERROR_FILE_NOT_FOUND || failure == ERROR_PATH_NOT_FOUND;
}

// A folder, a read-only file and one that another program keeps from writers are refused here.
bool IsFreeOrReplaceable(const std::wstring& target) {
  const DWORD attributes = ::GetFileAttributesW(target.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return IsAbsent();
  if ((attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY)) != 0) return false;
  const HANDLE handle = ::CreateFileW(target.c_str(), GENERIC_WRITE, kShareAll, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return IsAbsent();
  ::CloseHandle(handle);
  return true;
}

// A file has no open handle for the moment between its completion and its new name.
bool IsRunning(std::uint32_t process) {
  const HANDLE handle = ::OpenProcess(SYNCHRONIZE, FALSE, process);
  if (handle == nullptr) return ::GetLastError() == ERROR_ACCESS_DENIED;
  const bool runs = ::WaitForSingleObject(handle, 0) == WAIT_TIMEOUT;
  ::CloseHandle(handle);
  return runs;
}

// Fails, and does no harm, when anybody has the file open.
void RemoveUnopened(const std::wstring& path) {
  const HANDLE handle =
      ::CreateFileW(path.c_str(), DELETE, 0, nullptr, OPEN_EXISTING,
                    FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
  if (handle != INVALID_HANDLE_VALUE) ::CloseHandle(handle);
}

std::vector<std::u16string> NamesIn(const std::u16string& folder, std::u16string_view stem) {
  std::vector<std::u16string> names;
  WIN32_FIND_DATAW found{};
  const std::wstring pattern = PathForSystem(folder + std::u16string(stem) + u"*");
  const HANDLE listing = ::FindFirstFileW(pattern.c_str(), &found);
  if (listing == INVALID_HANDLE_VALUE) return names;
  do {
    names.push_back(FromNative(found.cFileName));
  } while (::FindNextFileW(listing, &found) != 0);
  ::FindClose(listing);
  return names;
}

// The attributes, the access rules and the time of its making pass over to the new file.
bool Replace(const std::wstring& target, const std::wstring& part, const std::wstring& backup) {
  constexpr DWORD kFlags = REPLACEFILE_IGNORE_MERGE_ERRORS | 0x4;  // ..._IGNORE_ACL_ERRORS
  if (::ReplaceFileW(target.c_str(), part.c_str(), backup.c_str(), kFlags, nullptr, nullptr) != 0) {
    ::DeleteFileW(backup.c_str());
    return true;
  }
  const DWORD failure = ::GetLastError();
  if (!IsThere(target) && IsThere(backup)) {  // it has got half way
    ::MoveFileExW(backup.c_str(), target.c_str(), MOVEFILE_WRITE_THROUGH);
  }
  ::SetLastError(failure);
  return false;
}

bool Move(const std::wstring& part, const std::wstring& target) {
  return ::MoveFileExW(part.c_str(), target.c_str(),
                       MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
}

// Virus scanners and indexers look into a file for a moment.
bool MayPass(DWORD failure) {
  switch (failure) {
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_FILE_NOT_FOUND:
    case ERROR_ALREADY_EXISTS:
    case ERROR_UNABLE_TO_REMOVE_REPLACED:
    case ERROR_UNABLE_TO_MOVE_REPLACEMENT:
    case ERROR_UNABLE_TO_MOVE_REPLACEMENT_2: return true;
    default: return false;
  }
}

bool PlaceOnce(const std::wstring& target, const std::wstring& part, const std::wstring& backup) {
  const DWORD attributes = ::GetFileAttributesW(target.c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    ::SetLastError(ERROR_DIRECTORY);  // it would be moved away, and not come back
    return false;
  }
  if (!IsThere(target)) return Move(part, target);
  if (Replace(target, part, backup)) return true;
  // Not every file system can do it the other way.
  return !MayPass(::GetLastError()) && Move(part, target);
}

}  // namespace

ReplacingFile::~ReplacingFile() { Discard(); }

bool ReplacingFile::Begin(const std::u16string& target) {
  Discard();
  if (target.find(u'\0') != std::u16string::npos) return false;
  const std::size_t nameStart = target.find_last_of(u"/\\:") + 1;
  folder_ = target.substr(0, nameStart);
  name_ = target.substr(nameStart);
  if (name_.empty() || name_.size() > kLongestName) return false;
  const std::u16string stem = PartStem(name_, kLongestName, LengthInUnits);
  RemoveLeftOvers(stem);
  return IsFreeOrReplaceable(PathForSystem(target)) && MakePart(stem);
}

// Others may read it, and neither write nor delete: this is the lock.
bool ReplacingFile::MakePart(std::u16string_view stem) {
  constexpr int kAttempts = 16;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    part_ = folder_ + PartName(stem, ::GetCurrentProcessId(), PartKind::kPart);
    SetUnfinishedFile(part_);
    const HANDLE handle =
        ::CreateFileW(PathForSystem(part_).c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                      CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle != INVALID_HANDLE_VALUE) {
      lock_ = reinterpret_cast<std::intptr_t>(handle);
      return true;
    }
    const bool isTaken = ::GetLastError() == ERROR_FILE_EXISTS;
    Forget();
    if (!isTaken) break;
  }
  return false;
}

// What stood at the target goes back there when its run was ended between the two steps.
void ReplacingFile::RemoveLeftOvers(std::u16string_view stem) const {
  const std::wstring target = PathForSystem(folder_ + name_);
  for (const std::u16string& name : NamesIn(folder_, stem)) {
    const std::optional<PartOwner> owner = OwnerOfPart(name, stem);
    if (!owner || IsRunning(owner->process)) continue;
    const std::wstring path = PathForSystem(folder_ + name);
    if (owner->kind == PartKind::kBackup && !IsThere(target)) {
      ::MoveFileExW(path.c_str(), target.c_str(), MOVEFILE_WRITE_THROUGH);
    } else {
      RemoveUnopened(path);
    }
  }
}

File ReplacingFile::TakeFile() {
  HANDLE handle = INVALID_HANDLE_VALUE;
  const HANDLE self = ::GetCurrentProcess();
  const bool done =
      ::DuplicateHandle(self, HandleOf(lock_), self, &handle, 0, FALSE, DUPLICATE_SAME_ACCESS) != 0;
  return done ? File(reinterpret_cast<std::intptr_t>(handle)) : File();
}

// The system replaces only with a file that nobody has open.
bool ReplacingFile::Place() {
  constexpr int kAttempts = 21;
  constexpr DWORD kPauseMs = 50;
  if (part_.empty()) return false;
  const std::uint32_t process = ::GetCurrentProcessId();
  const std::u16string stem = PartStem(name_, kLongestName, LengthInUnits);
  const std::wstring target = PathForSystem(folder_ + name_);
  const std::wstring part = PathForSystem(part_);
  const std::wstring backup = PathForSystem(folder_ + PartName(stem, process, PartKind::kBackup));
  ::CloseHandle(HandleOf(std::exchange(lock_, kNone)));
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    if (attempt != 0) ::Sleep(kPauseMs);
    if (PlaceOnce(target, part, backup)) {
      Forget();
      return true;
    }
    if (!MayPass(::GetLastError())) break;
  }
  return false;
}

std::u16string ReplacingFile::Keep() {
  std::u16string kept = folder_ + KeptName(std::u16string_view(part_).substr(folder_.size()));
  const std::intptr_t handle = std::exchange(lock_, kNone);
  if (handle != kNone) ::CloseHandle(HandleOf(handle));
  if (::MoveFileExW(PathForSystem(part_).c_str(), PathForSystem(kept).c_str(),
                    MOVEFILE_WRITE_THROUGH) == 0) {
    kept = part_;
  }
  Forget();
  return kept;
}

// An open file cannot be removed, so that the order is another one here.
void ReplacingFile::Discard() {
  const std::u16string path = part_;
  Forget();
  if (!path.empty()) ::DeleteFileW(PathForSystem(path).c_str());
}

void ReplacingFile::Forget() {
  if (!part_.empty()) SetUnfinishedFile({});
  part_.clear();
  const std::intptr_t handle = std::exchange(lock_, kNone);
  if (handle != kNone) ::CloseHandle(HandleOf(handle));
}

}  // namespace platform
