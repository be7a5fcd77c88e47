#include "host/facts/doubled_guids.h"

#include <bit>
#include <string_view>
#include <unordered_map>

#include "core/memory_pool.h"

namespace corvel::host {

void DoubledGuidSearch::Add(IFC::VirtualIfcRoot& root) {
  const std::string_view guid = root.getGlobalId();
  if (!guid.empty()) entries_.push_back({HashOfBytes(guid.data(), guid.size()), &root});
}

// Nearly all GUIDs stand alone, which a table of bits tells that stays in the processor's cache.
// Those that share a bit are a few, and all that are doubled are among them.
std::vector<DoubledGuidSearch::Entry> DoubledGuidSearch::EntriesOfEqualBits() const {
  constexpr std::size_t kBitsPerEntry = 16;
  const std::size_t mask = std::bit_ceil(entries_.size() * kBitsPerEntry + 1) - 1;
  std::vector<bool> isMet(mask + 1);
  std::vector<bool> isShared(mask + 1);
  for (const Entry& entry : entries_) {
    const std::size_t bit = entry.hash & mask;
    if (isMet[bit]) isShared[bit] = true;
    isMet[bit] = true;
  }
  std::vector<Entry> entries;
  for (const Entry& entry : entries_) {
    if (isShared[entry.hash & mask]) entries.push_back(entry);
  }
  return entries;
}

std::vector<DoubledGuid> DoubledGuidSearch::Result() const {
  std::vector<DoubledGuid> doubled;
  struct First {
    std::uint32_t number = 0;
    std::size_t place = 0;  // in `doubled`
    bool isDoubled = false;
  };
  std::unordered_map<std::string_view, First> known;
  for (const Entry& entry : EntriesOfEqualBits()) {
    const std::string_view guid = entry.root->getGlobalId();
    const auto [found, isNew] = known.try_emplace(guid, First{entry.root->marker});
    if (isNew) continue;
    First& first = found->second;
    if (!first.isDoubled) {
      first = {first.number, doubled.size(), true};
      doubled.push_back({std::string(guid), {first.number}});
    }
    doubled[first.place].numbers.push_back(entry.root->marker);
  }
  return doubled;
}

}  // namespace corvel::host
