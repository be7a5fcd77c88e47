// From places in a file to the lines that a text editor shows.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/text.h"
#include "step/streams/input_stream.h"

namespace FileStream {

// For each offset into the data behind `path`, which may be an archive, the number of its line: 1
// and the line feeds before it, wherever they stand. 0 for all when the data cannot be read again.
// Reads up to the largest offset; reports nothing.
std::vector<std::uint64_t> LinesOf(const corvel::WideString& path,
                                   const std::vector<std::int64_t>& offsets);

// Runs over a stream and counts its line feeds on the way. Offsets have to ascend.
class LineFeeds {
 public:
  // Borrows `stream`, of which nothing has been taken.
  explicit LineFeeds(InputStream& stream) : stream_(stream) {}

  // Those before `offset`, or before the end.
  std::uint64_t Before(std::int64_t offset);
  // The bytes from where the run stands up to `end`, or up to the end of the data.
  void Take(std::int64_t end, std::string& bytes);

 private:
  template <class Use>
  void RunTo(std::int64_t offset, Use use);

  InputStream& stream_;
  std::int64_t position_ = 0;
  std::uint64_t count_ = 0;
};

}  // namespace FileStream
