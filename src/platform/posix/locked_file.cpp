#include "platform/locked_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>

#include "platform/utf8.h"

namespace platform {

namespace {

int DescriptorOf(const File& file) { return static_cast<int>(file.Opened()); }

bool IsOrdinary(const File& file) {
  struct stat status {};
  return ::fstat(DescriptorOf(file), &status) == 0 && S_ISREG(status.st_mode);
}

// False: somebody else has the lock. File systems without locks say something else, and the work
// goes on without one.
bool Lock(const File& file) {
  while (::flock(DescriptorOf(file), LOCK_EX | LOCK_NB) != 0) {
    if (errno == EWOULDBLOCK) return false;
    if (errno != EINTR) return true;
  }
  return true;
}

// The file may have been removed, or replaced, before it was locked.
bool StandsAt(const std::string& name, const File& file) {
  struct stat there {};
  struct stat here {};
  return ::lstat(name.c_str(), &there) == 0 && ::fstat(DescriptorOf(file), &here) == 0 &&
         there.st_dev == here.st_dev && there.st_ino == here.st_ino;
}

Claim ClaimOnce(const std::string& name, File& file) {
  // O_NONBLOCK: the opening of a pipe would wait for its other end.
  constexpr int kFlags = O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY;
  int descriptor = ::open(name.c_str(), kFlags, 0666);
  while (descriptor < 0 && errno == EINTR) descriptor = ::open(name.c_str(), kFlags, 0666);
  if (descriptor < 0) return Claim::kRefused;
  file = File(descriptor);
  if (!IsOrdinary(file)) return Claim::kRefused;
  return Lock(file) ? Claim::kTaken : Claim::kLocked;
}

int OpenWithoutName(const std::string& folder) {
#ifdef O_TMPFILE
  const int descriptor = ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_EXCL | O_CLOEXEC, 0600);
  if (descriptor >= 0) return descriptor;
#endif
  // Not all file systems know how. Between the two calls it has a name that nobody else knows.
  std::string name = folder + "/corvel-XXXXXX";
  const int named = ::mkstemp(name.data());
  if (named < 0) return -1;
  ::fcntl(named, F_SETFD, FD_CLOEXEC);
  ::unlink(name.c_str());
  return named;
}

}  // namespace

Claim ClaimFile(const std::u16string& path, File& file) {
  file.Close();
  const std::string name = ToUtf8(path);
  if (name.find('\0') != std::string::npos) return Claim::kRefused;
  // Whoever had it locked may have removed it in the meantime, and once more, but not for ever.
  constexpr int kAttempts = 100;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    const Claim claim = ClaimOnce(name, file);
    if (claim == Claim::kTaken && !StandsAt(name, file)) continue;
    if (claim != Claim::kTaken) file.Close();
    return claim;
  }
  file.Close();
  return Claim::kRefused;
}

// Removed while it is locked: the next one to claim it makes a new file.
bool RemoveClaimedFile(const std::u16string& path, File& file) {
  const std::string name = ToUtf8(path);
  const bool removed = file.IsOpen() && StandsAt(name, file) && ::unlink(name.c_str()) == 0;
  file.Close();
  return removed;
}

bool OpenUnnamedFile(const std::u16string& folder, File& file) {
  file.Close();
  const std::string name = ToUtf8(folder);
  if (name.empty() || name.find('\0') != std::string::npos) return false;
  const int descriptor = OpenWithoutName(name);
  if (descriptor >= 0) file = File(descriptor);
  return file.IsOpen();
}

std::u16string SystemTemporaryFolder() {
  const char* const folder = std::getenv("TMPDIR");
  return folder != nullptr && *folder != '\0' ? FromUtf8(folder) : u"/tmp";
}

}  // namespace platform
