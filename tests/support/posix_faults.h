// Things that go wrong with files, brought about through the system. POSIX only.
#pragma once

#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "core/text.h"

namespace corvel::test {

// While it lives, no file grows beyond `bytes`: writes come short there, as on a full disk.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : handlerBefore_(::signal(SIGXFSZ, SIG_IGN)) {
    if (::getrlimit(RLIMIT_FSIZE, &before_) != 0) throw std::runtime_error("getrlimit");
    Set(bytes);
  }
  ~FileSizeLimit() {
    Set(before_.rlim_cur);
    ::signal(SIGXFSZ, handlerBefore_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  void Set(rlim_t bytes) {
    const struct rlimit limit = {bytes, before_.rlim_max};
    if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) std::abort();
  }

  struct rlimit before_ {};
  void (*handlerBefore_)(int);
};

// While it lives, the process gets no more than `bytes` of memory on top of what it has.
class MemoryLimit {
 public:
  explicit MemoryLimit(rlim_t bytes) {
    std::FILE* const file = std::fopen("/proc/self/statm", "r");
    unsigned long pages = 0;
    const bool known = file != nullptr && std::fscanf(file, "%lu", &pages) == 1;
    if (file != nullptr) std::fclose(file);
    if (!known || ::getrlimit(RLIMIT_AS, &before_) != 0) throw std::runtime_error("getrlimit");
    Set(pages * static_cast<rlim_t>(::sysconf(_SC_PAGESIZE)) + bytes);
  }
  ~MemoryLimit() { Set(before_.rlim_cur); }
  MemoryLimit(const MemoryLimit&) = delete;
  MemoryLimit& operator=(const MemoryLimit&) = delete;

 private:
  void Set(rlim_t bytes) {
    const struct rlimit limit = {bytes, before_.rlim_max};
    if (::setrlimit(RLIMIT_AS, &limit) != 0) std::abort();
  }

  struct rlimit before_ {};
};

// The superuser may write everywhere; while this lives, the process is a user who may not.
class OrdinaryUser {
 public:
  OrdinaryUser() {
    constexpr uid_t kNobody = 65534;
    if (::geteuid() == 0 && ::seteuid(kNobody) == 0) changed_ = true;
  }
  ~OrdinaryUser() {
    if (changed_ && ::seteuid(0) != 0) std::abort();
  }
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;

 private:
  bool changed_ = false;
};

enum class Which { kFirst, kLast };

// Closes a descriptor that this process has open on `path` behind its owner's back, so that
// handing over to the disk and closing fail. False when there is none.
inline bool StealDescriptor(const WideString& path, Which which = Which::kFirst) {
  struct stat wanted {};
  if (::stat(ToUtf8(path).c_str(), &wanted) != 0) return false;
  int found = -1;
  for (int descriptor = 3; descriptor < 1024; ++descriptor) {
    struct stat status {};
    if (::fstat(descriptor, &status) == 0 && status.st_ino == wanted.st_ino &&
        status.st_dev == wanted.st_dev) {
      found = descriptor;
      if (which == Which::kFirst) break;
    }
  }
  return found >= 0 && ::close(found) == 0;
}

// Puts a link to the device that is always full at `path`.
inline void LinkToFullDevice(const WideString& path) {
  if (::symlink("/dev/full", ToUtf8(path).c_str()) != 0) throw std::runtime_error("symlink");
}

}  // namespace corvel::test
