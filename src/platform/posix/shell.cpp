#include "platform/posix/shell.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>

namespace platform {

namespace {

// Never returns. A failure to start is told by a byte through `failure`, which closes by itself in
// the program that was started.
[[noreturn]] void RunDetached(char* const* arguments, int failure) {
  ::setsid();
  const pid_t grandchild = ::fork();
  if (grandchild > 0) ::_exit(0);
  if (grandchild == 0) {
    const int nothing = ::open("/dev/null", O_RDWR);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
      ::dup2(nothing, standard);
    }
    ::execvp(arguments[0], arguments);
  }
  const char told = 1;
  [[maybe_unused]] const ssize_t written = ::write(failure, &told, 1);
  ::_exit(127);
}

// Two forks, so that nobody has to wait for the program and no dead process stays behind.
bool StartDetached(const char* program, const char* argument) {
  const std::array<char*, 3> arguments = {const_cast<char*>(program), const_cast<char*>(argument),
                                          nullptr};
  int ends[2];
  if (::pipe(ends) != 0) return false;
  for (const int end : ends) ::fcntl(end, F_SETFD, FD_CLOEXEC);
  const pid_t child = ::fork();
  if (child == 0) RunDetached(arguments.data(), ends[1]);
  ::close(ends[1]);
  bool started = child > 0;
  if (started) {
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    char told = 0;
    ssize_t taken = ::read(ends[0], &told, 1);
    while (taken < 0 && errno == EINTR) taken = ::read(ends[0], &told, 1);
    started = taken == 0;
  }
  ::close(ends[0]);
  return started;
}

// Without a display the opener falls back to text browsers, which is not what a caller asks for.
bool HasDisplay() {
  return std::getenv("DISPLAY") != nullptr || std::getenv("WAYLAND_DISPLAY") != nullptr;
}

// Parameters are quoted for a Windows command line; here they are one argument each.
std::string WithoutQuotes(const std::string& text) {
  const bool quoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
  return quoted ? text.substr(1, text.size() - 2) : text;
}

}  // namespace

bool OpenByShell(const std::string& target, const std::string& parameter) {
  if (parameter.empty()) return HasDisplay() && StartDetached("xdg-open", target.c_str());
  return StartDetached(target.c_str(), WithoutQuotes(parameter).c_str());
}

}  // namespace platform
