#include "platform/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <utility>

#include "platform/utf8.h"

namespace platform {

namespace {

constexpr std::intptr_t kClosed = -1;
// Larger requests are cut short by some systems.
constexpr std::size_t kLargestTransfer = std::size_t{1} << 30;

// A link fails with it, and opening a pipe waits for nobody. See IsWanted for the rest.
constexpr int kOrdinaryOnly = O_NOFOLLOW | O_NONBLOCK;

int FlagsOf(OpenMode mode) {
  switch (mode) {
    case OpenMode::kRead: return O_RDONLY;
    case OpenMode::kWrite: return O_WRONLY | O_CREAT | O_TRUNC;
    case OpenMode::kAppend: return O_WRONLY | O_CREAT | O_APPEND;
    case OpenMode::kSharedAppend: return O_WRONLY | O_CREAT | O_APPEND | kOrdinaryOnly;
  }
  return O_RDONLY;
}

bool IsWanted(int descriptor, OpenMode mode) {
  struct stat status {};
  if (::fstat(descriptor, &status) != 0) return false;
  return mode == OpenMode::kSharedAppend ? S_ISREG(status.st_mode) : !S_ISDIR(status.st_mode);
}

std::optional<struct stat> StatusOf(const std::u16string& path) {
  struct stat status {};
  if (::stat(ToUtf8(path).c_str(), &status) != 0) return {};
  return status;
}

// A signal whose handler only raises a flag is no reason to fail.
template <class Call>
auto RetryInterrupted(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR) result = call();
  return result;
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
  const std::string name = ToUtf8(path);
  // A NUL would cut the name and lead to another file.
  if (name.find('\0') != std::string::npos) return false;
  const int descriptor = RetryInterrupted(
      [&] { return ::open(name.c_str(), FlagsOf(mode) | O_CLOEXEC | O_NOCTTY, 0666); });
  if (descriptor < 0) return false;
  if (!IsWanted(descriptor, mode)) {
    ::close(descriptor);
    return false;
  }
  handle_ = descriptor;
  return true;
}

bool File::IsOpen() const { return handle_ != kClosed; }

std::size_t File::Read(void* destination, std::size_t count) {
  char* const bytes = static_cast<char*>(destination);
  std::size_t total = 0;
  while (IsOpen() && total < count) {
    const std::size_t wanted = std::min(count - total, kLargestTransfer);
    const ssize_t taken =
        RetryInterrupted([&] { return ::read(static_cast<int>(handle_), bytes + total, wanted); });
    if (taken <= 0) {
      (taken == 0 ? atEnd_ : readFailed_) = true;
      break;
    }
    total += static_cast<std::size_t>(taken);
  }
  return total;
}

std::size_t File::Write(const void* bytes, std::size_t count) {
  const char* const from = static_cast<const char*>(bytes);
  std::size_t total = 0;
  while (IsOpen() && total < count) {
    const std::size_t wanted = std::min(count - total, kLargestTransfer);
    const ssize_t written =
        RetryInterrupted([&] { return ::write(static_cast<int>(handle_), from + total, wanted); });
    if (written <= 0) break;
    total += static_cast<std::size_t>(written);
  }
  return total;
}

std::int64_t File::Position() const {
  return IsOpen() ? ::lseek(static_cast<int>(handle_), 0, SEEK_CUR) : -1;
}

bool File::Seek(std::int64_t offset) {
  return IsOpen() && ::lseek(static_cast<int>(handle_), offset, SEEK_SET) == offset;
}

std::int64_t File::Size() const {
  struct stat status {};
  return IsOpen() && ::fstat(static_cast<int>(handle_), &status) == 0 ? status.st_size : -1;
}

bool File::Empty() {
  return IsOpen() &&
         RetryInterrupted([&] { return ::ftruncate(static_cast<int>(handle_), 0); }) == 0 &&
         Seek(0);
}

// Pipes, terminals and some network file systems have nothing to hand over, which is no failure.
bool File::Sync() {
  if (!IsOpen()) return false;
  if (RetryInterrupted([&] { return ::fsync(static_cast<int>(handle_)); }) == 0) return true;
  return errno == EINVAL || errno == ENOTSUP || errno == ENOSYS;
}

// The descriptor is gone even when the call was interrupted, so it is never closed again.
bool File::Close() {
  const auto descriptor = static_cast<int>(std::exchange(handle_, kClosed));
  return descriptor < 0 || ::close(descriptor) == 0 || errno == EINTR;
}

bool RemoveFile(const std::u16string& path) {
  const std::string name = ToUtf8(path);
  struct stat status {};
  if (::lstat(name.c_str(), &status) != 0) return false;
  if (!S_ISREG(status.st_mode) && !S_ISLNK(status.st_mode)) return false;
  return ::unlink(name.c_str()) == 0;
}

bool FileExists(const std::u16string& path) {
  const auto status = StatusOf(path);
  return status && !S_ISDIR(status->st_mode);
}

bool IsFolder(const std::u16string& path) {
  const auto status = StatusOf(path);
  return status && S_ISDIR(status->st_mode);
}

bool IsOrdinaryFile(const std::u16string& path) {
  const auto status = StatusOf(path);
  return status && S_ISREG(status->st_mode);
}

bool MakeFolder(const std::u16string& path) { return ::mkdir(ToUtf8(path).c_str(), 0777) == 0; }

bool IsSameFile(const std::u16string& a, const std::u16string& b) {
  const auto first = StatusOf(a);
  const auto second = StatusOf(b);
  return first && second && first->st_dev == second->st_dev && first->st_ino == second->st_ino;
}

}  // namespace platform
