#include "platform/terminal.h"

#include <poll.h>
#include <pthread.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>

#include "platform/console.h"
#include "platform/utf8.h"

namespace platform {

namespace {

// Until there is something to read, or the end. False: the process is asked to end. The signals get
// through only while the wait looks out for them, so that none comes unseen in front of it.
bool WaitForInput() {
  sigset_t requests;
  sigset_t before;
  ::sigemptyset(&requests);
  ::sigaddset(&requests, SIGTERM);
  ::sigaddset(&requests, SIGHUP);
  ::pthread_sigmask(SIG_BLOCK, &requests, &before);
  struct pollfd input = {STDIN_FILENO, POLLIN, 0};
  int result = -1;
  while (result < 0 && RequestToEnd().empty()) {
    result = ::ppoll(&input, 1, nullptr, &before);
    if (result < 0 && errno != EINTR) break;  // then the read tells
  }
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return RequestToEnd().empty();
}

}  // namespace

bool CanAskOnTerminal() { return ::isatty(STDIN_FILENO) == 1 && ::isatty(STDERR_FILENO) == 1; }

void WriteStandardError(std::u16string_view text) {
  const std::string bytes = ToUtf8(text);
  std::fwrite(bytes.data(), 1, bytes.size(), stderr);
  std::fflush(stderr);
}

// Byte by byte, so that nothing behind the line is taken from whoever reads next.
std::optional<std::string> ReadStandardInputLine() {
  std::string line;
  while (true) {
    if (!WaitForInput()) return {};
    char byte = 0;
    const ssize_t taken = ::read(STDIN_FILENO, &byte, 1);
    if (taken < 0 && errno == EINTR) continue;
    if (taken <= 0) return {};
    if (byte == '\n') return line;
    line.push_back(byte);
  }
}

}  // namespace platform
