#include "step/reader/parallel/record_cutter.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <exception>

namespace corvel {

namespace {

constexpr std::size_t kBlock = 64;
constexpr std::uint64_t kEveryByte = 0x0101010101010101;
constexpr std::uint64_t kHighBits = kEveryByte << 7;

struct BlockFacts {
  bool oddQuotes = false;
  bool hasSlash = false;
};

// The high bit of each byte of `word` that is 0.
std::uint64_t Zeros(std::uint64_t word) {
  const std::uint64_t rest = (word & ~kHighBits) + ~kHighBits;
  return ~(rest | word | ~kHighBits);
}

// Eight bytes at a time, and no branch.
BlockFacts FactsOf(const char* block) {
  std::uint64_t quotes = 0;
  std::uint64_t slashes = 0;
  for (std::size_t i = 0; i < kBlock; i += sizeof(std::uint64_t)) {
    std::uint64_t word = 0;
    std::memcpy(&word, block + i, sizeof word);
    quotes ^= Zeros(word ^ (kEveryByte * '\''));
    slashes |= Zeros(word ^ (kEveryByte * '/'));
  }
  return {((quotes >> 7) * kEveryByte >> 56 & 1) != 0, slashes != 0};
}

}  // namespace

const char* BorderSearch::Run(const char* begin, const char* end) {
  const auto passed = std::min(left_, static_cast<std::size_t>(end - begin));
  left_ -= passed;
  begin = PassBlocks(begin, begin + passed);
  return left_ == 0 ? FindBorder(begin, end) : nullptr;
}

// Two apostrophes in a row change nothing, whichever way they are meant.
const char* BorderSearch::PassBlocks(const char* at, const char* end) {
  while (at != end) {
    const std::size_t size = std::min(kBlock, static_cast<std::size_t>(end - at));
    if (size == kBlock && (state_ == State::kPlain || state_ == State::kString)) {
      const BlockFacts facts = FactsOf(at);
      if (!facts.hasSlash) {
        if (facts.oddQuotes) {
          state_ = state_ == State::kPlain ? State::kString : State::kPlain;
        }
        at += kBlock;
        continue;
      }
    }
    for (const char* const blockEnd = at + size; at != blockEnd; ++at) Take(*at);
  }
  return at;
}

const char* BorderSearch::FindBorder(const char* at, const char* end) {
  for (; at != end; ++at) {
    const bool isBorder = *at == ';' && (state_ == State::kPlain || state_ == State::kSlash);
    Take(*at);
    if (isBorder) return at + 1;
  }
  return nullptr;
}

void BorderSearch::Take(char byte) {
  switch (state_) {
    case State::kSlash:
      if (byte == '*') {
        state_ = State::kComment;
        return;
      }
      // The scanner takes the byte behind a "/" along with it, but only between values.
      [[fallthrough]];
    case State::kPlain:
      state_ = byte == '\'' ? State::kString : byte == '/' ? State::kSlash : State::kPlain;
      return;
    case State::kString:
      if (byte == '\'') state_ = State::kPlain;
      return;
    case State::kStar:
      if (byte == '/') {
        state_ = State::kPlain;
        return;
      }
      [[fallthrough]];
    case State::kComment: state_ = byte == '*' ? State::kStar : State::kComment; return;
  }
}

// What is thrown is thrown again when the parser comes here.
bool RecordCutter::HasByte() {
  if (stream_.Cursor() != stream_.WindowEnd()) return true;
  const std::int64_t position = stream_.Position();
  bool isThere = false;
  bool isTrouble = false;
  try {
    isThere = stream_.Refill();
    isTrouble = stream_.HasHeldReport();
  } catch (const std::exception&) {
    isTrouble = true;
  }
  if (isTrouble) troubleAt_ = std::min(troubleAt_, position);
  return isThere;
}

bool RecordCutter::Next(std::vector<char>& bytes) {
  bytes.clear();
  BorderSearch search(size_);
  while (bytes.size() < kLongestBatch && HasByte()) {
    const char* const begin = stream_.Cursor();
    const char* const border = search.Run(begin, stream_.WindowEnd());
    const char* const end = border != nullptr ? border : stream_.WindowEnd();
    bytes.insert(bytes.end(), begin, end);
    stream_.SetCursor(end);
    stream_.ClearStatementText();
    if (border != nullptr) return true;
  }
  return false;
}

}  // namespace corvel
