#include "platform/terminal.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "platform/utf8.h"

namespace platform {

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
    char byte = 0;
    const ssize_t taken = ::read(STDIN_FILENO, &byte, 1);
    if (taken < 0 && errno == EINTR) continue;
    if (taken <= 0) return {};
    if (byte == '\n') return line;
    line.push_back(byte);
  }
}

}  // namespace platform
