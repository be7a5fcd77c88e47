#include "core/guid_table.h"

#include "core/memory_pool.h"

namespace corvel {

namespace {

std::uint32_t HashOf(std::string_view guid) {
  return static_cast<std::uint32_t>(InternTable<char>::Hash(guid));
}

}  // namespace

GuidTable::Entry& GuidTable::At(std::string_view guid) {
  if (entries_.size() * 2 >= slots_.size()) Grow();
  const std::uint32_t hash = HashOf(guid);
  Slot& slot = slots_[SlotOf(guid, hash)];
  if (slot.entry == 0) {
    entries_.push_back({guid, nullptr});
    slot = {static_cast<std::uint32_t>(entries_.size()), hash};
  }
  return entries_[slot.entry - 1];
}

bool GuidTable::Enter(std::string_view guid, IFC::VirtualIfcRoot* root) {
  Entry& entry = At(guid);
  if (entry.root != nullptr) return false;
  entry.root = root;
  return true;
}

void GuidTable::Set(std::string_view guid, IFC::VirtualIfcRoot* root) { At(guid).root = root; }

IFC::VirtualIfcRoot* GuidTable::Find(std::string_view guid) const {
  if (slots_.empty()) return nullptr;
  const Slot& slot = slots_[SlotOf(guid, HashOf(guid))];
  return slot.entry == 0 ? nullptr : entries_[slot.entry - 1].root;
}

void GuidTable::Clear() {
  entries_.clear();
  slots_.clear();
}

std::size_t GuidTable::SlotOf(std::string_view guid, std::uint32_t hash) const {
  const std::size_t mask = slots_.size() - 1;
  // Nothing is ever taken out alone, so the first free slot ends the search.
  std::size_t at = hash & mask;
  while (slots_[at].entry != 0 &&
         (slots_[at].hash != hash || entries_[slots_[at].entry - 1].guid != guid)) {
    at = (at + 1) & mask;
  }
  return at;
}

void GuidTable::Grow() {
  constexpr std::size_t kFirstSize = 64;
  // The hashes are kept, so no text is read again.
  std::vector<Slot> larger(slots_.empty() ? kFirstSize : slots_.size() * 2);
  larger.swap(slots_);
  const std::size_t mask = slots_.size() - 1;
  for (const Slot& slot : larger) {
    if (slot.entry == 0) continue;
    std::size_t at = slot.hash & mask;
    while (slots_[at].entry != 0) at = (at + 1) & mask;
    slots_[at] = slot;
  }
}

}  // namespace corvel
