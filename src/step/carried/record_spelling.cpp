#include "step/carried/record_spelling.h"

#include <algorithm>
#include <vector>

#include "step/carried/carried_text.h"

namespace corvel {

namespace {

// FNV-1a
std::uint64_t HashOf(std::string_view text) {
  std::uint64_t hash = 0xCBF29CE484222325ull;
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3ull;
  return hash;
}

template <class Item>
std::span<const Item> Keep(const std::vector<Item>& items, MemoryPool& pool) {
  auto* const kept = pool.NewArray<Item>(items.size());
  std::copy(items.begin(), items.end(), kept);
  return {kept, items.size()};
}

std::span<const std::string_view> KeepAll(const std::vector<std::string_view>& texts,
                                          MemoryPool& pool) {
  std::vector<std::string_view> kept;
  kept.reserve(texts.size());
  for (const std::string_view text : texts) kept.push_back(KeepBytes(text, pool));
  return Keep(kept, pool);
}

}  // namespace

const RecordSpelling* SpellingOf(const RecordText& record, const RecordText& written,
                                 MemoryPool& pool) {
  std::vector<std::uint64_t> hashes;
  const std::size_t count = std::min(record.arguments.size(), written.arguments.size());
  hashes.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    hashes.push_back(HashOf(WithoutNumbers(written.arguments[i])));
  }
  auto* const spelling = pool.New<RecordSpelling>();
  spelling->name = KeepBytes(record.name, pool);
  spelling->arguments = KeepAll(record.arguments, pool);
  spelling->glue = KeepAll(record.glue, pool);
  spelling->hashes = Keep(hashes, pool);
  return spelling;
}

// A value that has been changed since is written as the writer writes it, and so is one that the
// reading did not find.
std::string SpellArgument(const RecordSpelling& spelling, std::size_t index,
                          std::string_view written) {
  std::vector<std::string_view> numbers;
  const bool isKnown = index < spelling.hashes.size();
  if (!isKnown || HashOf(WithoutNumbers(written, &numbers)) != spelling.hashes[index]) {
    return std::string(written);
  }
  return WithNumbers(spelling.arguments[index], numbers).value_or(std::string(written));
}

}  // namespace corvel
