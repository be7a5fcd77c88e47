// Reads of one file that go wrong at a byte, brought about in the place of the system's call. To be
// included by one source of a test program. POSIX only.
#pragma once

#include <errno.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>

#include "core/text.h"

namespace corvel::test {

enum class Fault {
  kError,  // reads that reach the byte fail
  kEnd     // the file has no more bytes, whatever its size
};

// While it lives, the file at `path` goes wrong at byte `at`, by whomever it is read.
class FaultyReads {
 public:
  FaultyReads(const WideString& path, std::size_t at, Fault fault)
      : name_(ToUtf8(path)), at_(at), fault_(fault) {
    Active() = this;
  }
  ~FaultyReads() { Active() = nullptr; }
  FaultyReads(const FaultyReads&) = delete;
  FaultyReads& operator=(const FaultyReads&) = delete;

  static const FaultyReads*& Active() {
    static const FaultyReads* active = nullptr;
    return active;
  }

  // Cuts `count` short, or gives what the call has to give.
  bool Strikes(int descriptor, std::size_t& count, ssize_t& result) const {
    struct stat wanted {};
    struct stat status {};
    if (::stat(name_.c_str(), &wanted) != 0 || ::fstat(descriptor, &status) != 0) return false;
    if (wanted.st_ino != status.st_ino || wanted.st_dev != status.st_dev) return false;
    const auto offset = static_cast<std::size_t>(::lseek(descriptor, 0, SEEK_CUR));
    if (offset < at_) {
      count = std::min(count, at_ - offset);
      return false;
    }
    errno = EIO;
    result = fault_ == Fault::kError ? -1 : 0;
    return true;
  }

 private:
  std::string name_;
  std::size_t at_;
  Fault fault_;
};

}  // namespace corvel::test

extern "C" ssize_t read(int descriptor, void* destination, size_t count) {
  ssize_t result = 0;
  const auto* const faulty = corvel::test::FaultyReads::Active();
  if (faulty != nullptr && faulty->Strikes(descriptor, count, result)) return result;
  return static_cast<ssize_t>(::syscall(SYS_read, descriptor, destination, count));
}
