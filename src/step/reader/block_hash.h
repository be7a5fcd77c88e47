// Tells whether bytes are still what they were.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace corvel {

// Eight bytes at a time: it runs over a good part of each model, twice. Any single changed word
// changes the result, since each step can be undone. Not meant against people who want it equal.
inline std::uint64_t HashOfBlock(std::string_view bytes) {
  constexpr std::uint64_t kPrime = 0x100000001b3;
  std::uint64_t hash = 0xcbf29ce484222325 ^ bytes.size();
  const auto take = [&hash](std::uint64_t word) {
    hash = (hash ^ word) * kPrime;
    hash ^= hash >> 32;
  };
  std::uint64_t word = 0;
  for (; bytes.size() >= sizeof word; bytes.remove_prefix(sizeof word)) {
    std::memcpy(&word, bytes.data(), sizeof word);
    take(word);
  }
  word = 0;
  if (!bytes.empty()) std::memcpy(&word, bytes.data(), bytes.size());
  take(word);
  return hash;
}

}  // namespace corvel
