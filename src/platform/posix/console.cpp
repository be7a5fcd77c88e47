#include "platform/console.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/utf8.h"

namespace platform {

namespace {

constexpr int kInterruptedStatus = 130;

// Touched by signal handlers: no more than lock-free atomics and plain bytes.
std::atomic<bool> interrupted{false};
std::atomic<int> requestToEnd{0};  // the signal
std::atomic<bool> hasUnfinishedFile{false};
char unfinishedFile[4096];

static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free);

void RemoveUnfinishedFile() {
  if (hasUnfinishedFile.exchange(false)) ::unlink(unfinishedFile);
}

void OnInterrupt(int /*signal*/) {
  if (!interrupted.exchange(true) && requestToEnd == 0) return;
  RemoveUnfinishedFile();
  // Not exit: inside a handler nothing of the process's own may run.
  ::_exit(kInterruptedStatus);
}

// Whoever ends a whole group of processes often sends it twice, which means no more than once.
void OnRequestToEnd(int signal) { requestToEnd = signal; }

void Catch(int signal, void (*handler)(int)) {
  struct sigaction present {};
  if (::sigaction(signal, nullptr, &present) == 0 && present.sa_handler == SIG_IGN) return;
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;  // calls of other libraries are not ready for EINTR
  ::sigemptyset(&action.sa_mask);
  ::sigaction(signal, &action, nullptr);
}

}  // namespace

std::vector<std::u16string> ProgramArguments(int count, char** arguments) {
  std::vector<std::u16string> texts;
  for (int i = 1; i < count; ++i) texts.push_back(FromUtf8(arguments[i]));
  return texts;
}

// The system gives out the lowest free number.
void KeepStandardStreams() {
  int descriptor = ::open("/dev/null", O_RDWR);
  while (descriptor >= 0 && descriptor <= STDERR_FILENO) descriptor = ::open("/dev/null", O_RDWR);
  if (descriptor >= 0) ::close(descriptor);
}

bool WriteStandardOutput(std::u16string_view text) {
  const std::string bytes = ToUtf8(text);
  return std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size() &&
         std::fflush(stdout) == 0;
}

namespace {

bool IsAbleTerminal(int file) {
  const char* const kind = std::getenv("TERM");
  return ::isatty(file) == 1 && kind != nullptr && *kind != '\0' && std::strcmp(kind, "dumb") != 0;
}

}  // namespace

bool CanDrawOnTerminal() { return IsAbleTerminal(STDERR_FILENO); }

bool CanColourOutput() { return IsAbleTerminal(STDOUT_FILENO); }

int TerminalColumns() {
  constexpr int kUnknown = 80;
  struct winsize size {};
  const bool told = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0;
  return told ? size.ws_col : kUnknown;
}

void CatchInterrupts() {
  Catch(SIGINT, OnInterrupt);
  Catch(SIGTERM, OnRequestToEnd);
  Catch(SIGHUP, OnRequestToEnd);
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

bool IsInterrupted() { return interrupted || requestToEnd != 0; }

std::u16string_view RequestToEnd() {
  switch (requestToEnd) {
    case 0: return {};
    case SIGHUP: return u"SIGHUP";
    default: return u"SIGTERM";
  }
}

void ForgetInterrupt() { interrupted = false; }

void SetUnfinishedFile(const std::u16string& path) {
  // Down first: a handler must not meet half a name.
  hasUnfinishedFile = false;
  const std::string name = ToUtf8(path);
  if (name.empty() || name.size() >= sizeof unfinishedFile) return;
  std::memcpy(unfinishedFile, name.c_str(), name.size() + 1);
  hasUnfinishedFile = true;
}

}  // namespace platform
