// Makes calls of the system fail that put a finished file at its place. A program that uses it
// defines these calls itself, so that only one of its sources may include this. POSIX only.
#pragma once

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace corvel::test {

enum class Call { kNone, kRename, kSync, kMode, kOwner };

inline Call failingCall = Call::kNone;

// While it lives, every call of this kind fails, and all others work.
class FailingCall {
 public:
  explicit FailingCall(Call call) { failingCall = call; }
  ~FailingCall() { failingCall = Call::kNone; }
  FailingCall(const FailingCall&) = delete;
  FailingCall& operator=(const FailingCall&) = delete;
};

template <class... Arguments>
int CallUnlessFailing(Call call, long number, Arguments... arguments) {
  if (failingCall == call) {
    errno = EIO;
    return -1;
  }
  return static_cast<int>(::syscall(number, arguments...));
}

}  // namespace corvel::test

extern "C" int rename(const char* from, const char* to) noexcept {
  using namespace corvel::test;
  return CallUnlessFailing(Call::kRename, SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0);
}

extern "C" int fsync(int descriptor) {
  using namespace corvel::test;
  return CallUnlessFailing(Call::kSync, SYS_fsync, descriptor);
}

extern "C" int fchmod(int descriptor, mode_t mode) noexcept {
  using namespace corvel::test;
  return CallUnlessFailing(Call::kMode, SYS_fchmod, descriptor, mode);
}

extern "C" int fchown(int descriptor, uid_t owner, gid_t group) noexcept {
  using namespace corvel::test;
  return CallUnlessFailing(Call::kOwner, SYS_fchown, descriptor, owner, group);
}
