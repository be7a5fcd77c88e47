// Cuts the bytes of a model into batches of whole records.
//
// It knows three states: plain, in a string, in a comment. That is less than the scanner knows (of
// a directive that swallows an apostrophe, say), so that a border is a guess: whoever reads a batch
// sees whether its last record ends where the batch does.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "step/streams/input_stream.h"

namespace corvel {

// Looks for the first ";" outside of strings and comments that stands at or behind the byte
// `wanted`, counted from where the search begins: outside of both. The bytes come in pieces of any
// size.
class BorderSearch {
 public:
  explicit BorderSearch(std::size_t wanted) : left_(wanted) {}

  // Behind the ";"; null when it is not among these bytes.
  const char* Run(const char* begin, const char* end);

 private:
  enum class State : std::uint8_t { kPlain, kSlash, kString, kComment, kStar };

  const char* PassBlocks(const char* at, const char* end);
  const char* FindBorder(const char* at, const char* end);
  void Take(char byte);

  std::size_t left_;  // bytes before the one that is wanted
  State state_ = State::kPlain;
};

class RecordCutter {
 public:
  // A batch without a border so far is given up.
  static constexpr std::size_t kLongestBatch = std::size_t{8} << 20;

  // Borrows `stream`, which stands behind the ";" of a record and holds its reports back. Batches
  // have `size` bytes and as many more as their last record needs.
  RecordCutter(FileStream::InputStream& stream, std::size_t size) : stream_(stream), size_(size) {}

  // Takes the next batch from the stream in the place of what `bytes` held. False: no border was
  // found, since the input ends or something in it goes on and on; `bytes` is what was taken.
  bool Next(std::vector<char>& bytes);
  // Where in the input a pass of one thread meets what the stream has to report, or what it throws:
  // when it asks for the byte there.
  std::int64_t TroubleAt() const { return troubleAt_; }

 private:
  bool HasByte();

  FileStream::InputStream& stream_;
  std::size_t size_;
  std::int64_t troubleAt_ = std::numeric_limits<std::int64_t>::max();
};

}  // namespace corvel
