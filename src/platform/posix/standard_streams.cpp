#include "platform/standard_streams.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

#include "platform/console.h"

namespace platform {

namespace {

bool ShallEnd() { return IsInterrupted() || !RequestToEnd().empty(); }

}  // namespace

// A read that waits goes on behind an interrupt: the wait is a poll of its own.
std::optional<std::size_t> ReadStandardInput(char* buffer, std::size_t size) {
  constexpr int kMilliseconds = 100;
  pollfd input{STDIN_FILENO, POLLIN, 0};
  for (;;) {
    const int ready = ::poll(&input, 1, kMilliseconds);
    if (ShallEnd()) return std::nullopt;
    if (ready == 0 || (ready < 0 && errno == EINTR)) continue;
    const ssize_t count = ::read(STDIN_FILENO, buffer, size);
    if (count >= 0) return static_cast<std::size_t>(count);
    if (errno != EINTR && errno != EAGAIN) return std::nullopt;
  }
}

bool WriteStandardOutputBytes(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(STDOUT_FILENO, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace platform
