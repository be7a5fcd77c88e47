#include "step/streams/line_numbers.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <numeric>

#include "step/streams/open_input.h"

namespace FileStream {

namespace {

constexpr std::size_t kBufferSize = 0x100000;

// In blocks whose line feeds a byte can count, so that compilers count sixteen at a time.
std::uint64_t LineFeedsIn(const char* at, std::ptrdiff_t size) {
  constexpr std::ptrdiff_t kBlock = 240;
  std::uint64_t count = 0;
  for (; size >= kBlock; at += kBlock, size -= kBlock) {
    std::uint8_t inBlock = 0;
    for (std::ptrdiff_t i = 0; i < kBlock; ++i) {
      inBlock = static_cast<std::uint8_t>(inBlock + static_cast<std::uint8_t>(at[i] == '\n'));
    }
    count += inBlock;
  }
  return count + static_cast<std::uint64_t>(std::count(at, at + size, '\n'));
}

}  // namespace

template <class Use>
void LineFeeds::RunTo(std::int64_t offset, Use use) {
  while (position_ < offset && (stream_.Cursor() != stream_.WindowEnd() || stream_.Refill())) {
    const char* const begin = stream_.Cursor();
    const std::ptrdiff_t size =
        std::min<std::int64_t>(stream_.WindowEnd() - begin, offset - position_);
    count_ += LineFeedsIn(begin, size);
    use(begin, size);
    position_ += size;
    stream_.SetCursor(begin + size);
    // Or all of the file would gather there.
    stream_.ClearStatementText();
  }
}

std::uint64_t LineFeeds::Before(std::int64_t offset) {
  RunTo(offset, [](const char*, std::ptrdiff_t) {});
  return count_;
}

void LineFeeds::Take(std::int64_t end, std::string& bytes) {
  bytes.clear();
  RunTo(end, [&](const char* begin, std::ptrdiff_t size) {
    bytes.append(begin, static_cast<std::size_t>(size));
  });
}

std::vector<std::uint64_t> LinesOf(const corvel::WideString& path,
                                   const std::vector<std::int64_t>& offsets) {
  std::vector<std::uint64_t> lines(offsets.size());
  std::vector<std::size_t> ascending(offsets.size());
  std::iota(ascending.begin(), ascending.end(), std::size_t{0});
  std::sort(ascending.begin(), ascending.end(),
            [&](std::size_t a, std::size_t b) { return offsets[a] < offsets[b]; });
  try {
    const auto stream = OpenInput(path, kBufferSize, nullptr);
    if (stream == nullptr || !stream->IsOpen()) return lines;
    LineFeeds lineFeeds(*stream);
    for (const std::size_t i : ascending) lines[i] = 1 + lineFeeds.Before(offsets[i]);
  } catch (const std::exception&) {
    std::fill(lines.begin(), lines.end(), 0);
  }
  return lines;
}

}  // namespace FileStream
