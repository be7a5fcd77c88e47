#include "step/streams/line_numbers.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <numeric>

#include "step/numbers/byte_runs.h"
#include "step/streams/open_input.h"

namespace FileStream {

namespace {

constexpr std::size_t kBufferSize = 0x100000;

// Eight bytes at a time.
std::uint64_t LineFeedsIn(const char* at, std::ptrdiff_t size) {
  using corvel::bytes::All;
  std::uint64_t count = 0;
  for (; size >= corvel::kRunRoom; at += corvel::kRunRoom, size -= corvel::kRunRoom) {
    const std::uint64_t others = corvel::bytes::EightAt(at) ^ All('\n');
    // The highest bit of each byte that is not 0 before; nothing is carried from byte to byte.
    const std::uint64_t flags = (((others & All(0x7F)) + All(0x7F)) | others) & All(0x80);
    count += 8u - (((flags >> 7) * All(1)) >> 56);  // the sum of all bytes is in the highest
  }
  return count + static_cast<std::uint64_t>(std::count(at, at + size, '\n'));
}

// Runs over a stream and counts its line feeds on the way.
class LineFeeds {
 public:
  explicit LineFeeds(InputStream& stream) : stream_(stream) {}

  // Those before `offset`, or before the end. Offsets have to ascend.
  std::uint64_t Before(std::int64_t offset) {
    while (position_ < offset && (stream_.Cursor() != stream_.WindowEnd() || stream_.Refill())) {
      const char* const begin = stream_.Cursor();
      const std::ptrdiff_t size =
          std::min<std::int64_t>(stream_.WindowEnd() - begin, offset - position_);
      count_ += LineFeedsIn(begin, size);
      position_ += size;
      stream_.SetCursor(begin + size);
      // Or all of the file would gather there.
      stream_.ClearStatementText();
    }
    return count_;
  }

 private:
  InputStream& stream_;
  std::int64_t position_ = 0;
  std::uint64_t count_ = 0;
};

}  // namespace

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
