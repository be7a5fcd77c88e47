#include "platform/file.h"

#include <windows.h>

#include <algorithm>
#include <utility>

#include "platform/win32/long_path.h"
#include "platform/win32/ordinary_file.h"

namespace platform {

namespace {

constexpr std::intptr_t kClosed = -1;  // INVALID_HANDLE_VALUE

// Callers offer buffers of many megabytes for files of a few kilobytes. The system looks at every
// page that is offered to it before it reads, so it gets them piece by piece.
constexpr std::size_t kLargestTransfer = std::size_t{256} << 10;

HANDLE HandleOf(std::intptr_t handle) { return reinterpret_cast<HANDLE>(handle); }

// Appending rights without writing rights make the system itself put every write at the end.
DWORD AccessOf(OpenMode mode) {
  switch (mode) {
    case OpenMode::kRead: return GENERIC_READ;
    case OpenMode::kWrite: return GENERIC_WRITE;
    case OpenMode::kAppend:
    case OpenMode::kSharedAppend: return FILE_APPEND_DATA | FILE_READ_ATTRIBUTES | SYNCHRONIZE;
  }
  return GENERIC_READ;
}

DWORD CreationOf(OpenMode mode) {
  switch (mode) {
    case OpenMode::kRead: return OPEN_EXISTING;
    case OpenMode::kWrite: return CREATE_ALWAYS;
    case OpenMode::kAppend:
    case OpenMode::kSharedAppend: return OPEN_ALWAYS;
  }
  return OPEN_EXISTING;
}

bool HasAttributes(const std::u16string& path, bool folder) {
  const DWORD attributes = ::GetFileAttributesW(PathForSystem(path).c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return false;
  return ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) == folder;
}

// What tells one file from all others; false when there is none at `path`.
bool IdentityOf(const std::u16string& path, BY_HANDLE_FILE_INFORMATION& identity) {
  // With the flag for backups a folder can be opened too.
  const HANDLE handle = ::CreateFileW(PathForSystem(path).c_str(), FILE_READ_ATTRIBUTES,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return false;
  const bool known = ::GetFileInformationByHandle(handle, &identity) != 0;
  ::CloseHandle(handle);
  return known;
}

}  // namespace

File::File(File&& other) noexcept
    : handle_(std::exchange(other.handle_, kClosed)),
      atEnd_(other.atEnd_),
      readFailed_(other.readFailed_) {}

File& File::operator=(File&& other) noexcept {
  if (this != &other) {
    Close();
    handle_ = std::exchange(other.handle_, kClosed);
    atEnd_ = other.atEnd_;
    readFailed_ = other.readFailed_;
  }
  return *this;
}

File::~File() { Close(); }

bool File::Open(const std::u16string& path, OpenMode mode) {
  Close();
  atEnd_ = readFailed_ = false;
  // A NUL would cut the name and lead to another file.
  if (path.find(u'\0') != std::u16string::npos) return false;
  constexpr DWORD kShare = FILE_SHARE_READ | FILE_SHARE_WRITE;
  const HANDLE handle =
      mode == OpenMode::kSharedAppend
          ? OpenOrdinaryFile(path, AccessOf(mode), kShare, CreationOf(mode))
          : ::CreateFileW(PathForSystem(path).c_str(), AccessOf(mode), kShare, nullptr,
                          CreationOf(mode), FILE_ATTRIBUTE_NORMAL, nullptr);
  handle_ = reinterpret_cast<std::intptr_t>(handle);
  return IsOpen();
}

bool File::IsOpen() const { return handle_ != kClosed; }

std::size_t File::Read(void* destination, std::size_t count) {
  char* const bytes = static_cast<char*>(destination);
  std::size_t total = 0;
  while (IsOpen() && total < count) {
    const auto wanted = static_cast<DWORD>(std::min(count - total, kLargestTransfer));
    DWORD taken = 0;
    const bool done = ::ReadFile(HandleOf(handle_), bytes + total, wanted, &taken, nullptr) != 0;
    if (!done || taken == 0) {
      const bool end = done || ::GetLastError() == ERROR_BROKEN_PIPE;
      (end ? atEnd_ : readFailed_) = true;
      break;
    }
    total += taken;
  }
  return total;
}

std::size_t File::Write(const void* bytes, std::size_t count) {
  const char* const from = static_cast<const char*>(bytes);
  std::size_t total = 0;
  while (IsOpen() && total < count) {
    const auto wanted = static_cast<DWORD>(std::min(count - total, kLargestTransfer));
    DWORD written = 0;
    const bool done = ::WriteFile(HandleOf(handle_), from + total, wanted, &written, nullptr) != 0;
    total += written;
    if (!done || written == 0) break;
  }
  return total;
}

std::int64_t File::Position() const {
  LARGE_INTEGER position{};
  const bool known =
      IsOpen() && ::SetFilePointerEx(HandleOf(handle_), {}, &position, FILE_CURRENT) != 0;
  return known ? position.QuadPart : -1;
}

bool File::Seek(std::int64_t offset) {
  LARGE_INTEGER target{};
  target.QuadPart = offset;
  return IsOpen() && ::SetFilePointerEx(HandleOf(handle_), target, nullptr, FILE_BEGIN) != 0;
}

std::int64_t File::Size() const {
  LARGE_INTEGER size{};
  return IsOpen() && ::GetFileSizeEx(HandleOf(handle_), &size) != 0 ? size.QuadPart : -1;
}

bool File::Empty() { return Seek(0) && ::SetEndOfFile(HandleOf(handle_)) != 0; }

// Pipes and consoles have nothing to hand over, which is no failure.
bool File::Sync() {
  if (!IsOpen()) return false;
  if (::FlushFileBuffers(HandleOf(handle_)) != 0) return true;
  const DWORD failure = ::GetLastError();
  return failure == ERROR_INVALID_FUNCTION || failure == ERROR_INVALID_HANDLE;
}

bool File::Close() {
  const std::intptr_t handle = std::exchange(handle_, kClosed);
  return handle == kClosed || ::CloseHandle(HandleOf(handle)) != 0;
}

bool RemoveFile(const std::u16string& path) {
  return ::DeleteFileW(PathForSystem(path).c_str()) != 0;
}

bool FileExists(const std::u16string& path) { return HasAttributes(path, false); }

bool IsFolder(const std::u16string& path) { return HasAttributes(path, true); }

bool IsOrdinaryFile(const std::u16string& path) {
  File file;
  return file.Open(path, OpenMode::kRead) &&
         ::GetFileType(HandleOf(file.Opened())) == FILE_TYPE_DISK;
}

bool MakeFolder(const std::u16string& path) {
  return ::CreateDirectoryW(PathForSystem(path).c_str(), nullptr) != 0;
}

bool IsSameFile(const std::u16string& a, const std::u16string& b) {
  BY_HANDLE_FILE_INFORMATION first{};
  BY_HANDLE_FILE_INFORMATION second{};
  return IdentityOf(a, first) && IdentityOf(b, second) &&
         first.dwVolumeSerialNumber == second.dwVolumeSerialNumber &&
         first.nFileIndexHigh == second.nFileIndexHigh &&
         first.nFileIndexLow == second.nFileIndexLow;
}

}  // namespace platform
