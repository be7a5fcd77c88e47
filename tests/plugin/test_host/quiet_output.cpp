#include "quiet_output.h"

#include <cstdio>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

namespace corvel::test_host {

namespace {

#ifdef _WIN32
constexpr char kNowhere[] = "NUL";
#else
constexpr char kNowhere[] = "/dev/null";
#endif
constexpr int kStandardOutput = 1;

}  // namespace

QuietOutput::QuietOutput() {
  std::fflush(stdout);
  real_ = ::dup(kStandardOutput);
  const int nowhere = ::open(kNowhere, O_WRONLY);
  ::dup2(nowhere, kStandardOutput);
  ::close(nowhere);
}

QuietOutput::~QuietOutput() {
  std::fflush(stdout);
  ::dup2(real_, kStandardOutput);
  ::close(real_);
}

}  // namespace corvel::test_host
