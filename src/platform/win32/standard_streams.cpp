#include "platform/standard_streams.h"

#include <windows.h>

#include <algorithm>

#include "platform/console.h"

namespace platform {

namespace {

constexpr std::size_t kMostAtOnce = 0x10000;

}  // namespace

std::optional<std::size_t> ReadStandardInput(char* buffer, std::size_t size) {
  DWORD count = 0;
  const auto wanted = static_cast<DWORD>(std::min(size, kMostAtOnce));
  const bool good =
      ::ReadFile(::GetStdHandle(STD_INPUT_HANDLE), buffer, wanted, &count, nullptr) != 0;
  if (IsInterrupted() || !RequestToEnd().empty()) return std::nullopt;
  // What a pipe says when the other side has closed it.
  if (!good && ::GetLastError() == ERROR_BROKEN_PIPE) return 0;
  return good ? std::optional<std::size_t>(count) : std::nullopt;
}

bool WriteStandardOutputBytes(std::string_view bytes) {
  const HANDLE handle = ::GetStdHandle(STD_OUTPUT_HANDLE);
  while (!bytes.empty()) {
    DWORD written = 0;
    const auto size = static_cast<DWORD>(std::min(bytes.size(), kMostAtOnce));
    if (::WriteFile(handle, bytes.data(), size, &written, nullptr) == 0 || written == 0) {
      return false;
    }
    bytes.remove_prefix(written);
  }
  return true;
}

}  // namespace platform
