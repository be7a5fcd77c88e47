// Makes the n-th write to a file fail. A program that uses it defines the system's own `write`, so
// that only one of its sources may include this. POSIX only.
#pragma once

#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

namespace corvel::test {

// Calls of `write` for files, not for the standard streams, since the last reset.
inline int writesSeen = 0;
inline int failingWrite = 0;  // the one that fails, counted from 1; 0: none

// While it lives, call number `number` fails for want of space, and all others work.
class FailingWrite {
 public:
  explicit FailingWrite(int number) {
    writesSeen = 0;
    failingWrite = number;
  }
  ~FailingWrite() { failingWrite = 0; }
  FailingWrite(const FailingWrite&) = delete;
  FailingWrite& operator=(const FailingWrite&) = delete;
};

}  // namespace corvel::test

extern "C" ssize_t write(int descriptor, const void* bytes, size_t count) {
  using namespace corvel::test;
  if (descriptor > STDERR_FILENO && ++writesSeen == failingWrite) {
    errno = ENOSPC;
    return -1;
  }
  return static_cast<ssize_t>(::syscall(SYS_write, descriptor, bytes, count));
}
