#include "platform/posix/memory.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <string>

#include "platform/file.h"
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace platform {

namespace {

// What a process can address on 64-bit systems, unless it is limited further.
constexpr std::uint64_t kAddressSpace = std::uint64_t{1} << 47;

// The number behind `label` at the start of a line, in bytes.
std::optional<std::uint64_t> FigureOf(std::string_view text, std::string_view label) {
  std::size_t start = 0;
  while (text.substr(start, label.size()) != label) {
    const std::size_t lineEnd = text.find('\n', start);
    if (lineEnd == std::string_view::npos) return {};
    start = lineEnd + 1;
  }
  std::string_view rest = text.substr(start + label.size());
  rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
  std::uint64_t kilobytes = 0;
  const auto parsed = std::from_chars(rest.data(), rest.data() + rest.size(), kilobytes);
  if (parsed.ec != std::errc()) return {};
  return kilobytes * 1024;
}

// Files of /proc have no size, so they are read until they end.
std::string ReadWhole(const std::u16string& path) {
  File file;
  std::string text;
  if (!file.Open(path, OpenMode::kRead)) return text;
  constexpr std::size_t kStep = 4096;
  std::size_t taken = kStep;
  while (taken == kStep) {
    const std::size_t before = text.size();
    text.resize(before + kStep);
    taken = file.Read(text.data() + before, kStep);
    text.resize(before + taken);
  }
  return text;
}

std::uint64_t TotalAddressSpace() {
  struct rlimit limit {};
  if (::getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) return kAddressSpace;
  return std::min<std::uint64_t>(limit.rlim_cur, kAddressSpace);
}

// The figures of /proc/self/statm by position: the first is that of the whole process, the second
// what of it is in physical memory.
std::uint64_t OwnFigure(std::size_t position) {
  const std::string text = ReadWhole(u"/proc/self/statm");
  const char* at = text.data();
  const char* const end = at + text.size();
  std::uint64_t pages = 0;
  for (std::size_t i = 0; i <= position; ++i) {
    at = std::find_if(at, end, [](char c) { return c != ' '; });
    const auto read = std::from_chars(at, end, pages);
    if (read.ec != std::errc()) return 0;
    at = read.ptr;
  }
  return pages * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
}

std::uint64_t UsedAddressSpace() { return OwnFigure(0); }

}  // namespace

std::optional<MemoryFigures> ParseMemoryInfo(std::string_view text) {
  const auto total = FigureOf(text, "MemTotal:");
  const auto available = FigureOf(text, "MemAvailable:");
  const auto swapTotal = FigureOf(text, "SwapTotal:");
  const auto swapFree = FigureOf(text, "SwapFree:");
  if (!total || !available || !swapTotal || !swapFree) return {};
  MemoryFigures figures;
  figures.totalPhysical = *total;
  figures.availablePhysical = *available;
  figures.totalPageFile = *total + *swapTotal;
  figures.availablePageFile = *available + *swapFree;
  return figures;
}

std::optional<MemoryFigures> QuerySystemMemory() {
  auto figures = ParseMemoryInfo(ReadWhole(u"/proc/meminfo"));
  if (!figures) return {};
  figures->totalAddressSpace = TotalAddressSpace();
  figures->availableAddressSpace =
      figures->totalAddressSpace - std::min(UsedAddressSpace(), figures->totalAddressSpace);
  return figures;
}

std::uint64_t ProcessMemoryBytes() { return OwnFigure(1); }

void ReturnFreeMemory() {
#ifdef __GLIBC__
  ::malloc_trim(0);
#endif
}

}  // namespace platform
