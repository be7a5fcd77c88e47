#include "core/guid_table.h"

#include "core/memory_pool.h"

namespace corvel {

namespace {

std::uint32_t HashOf(std::string_view guid) { return HashOfBytes(guid.data(), guid.size()); }

}  // namespace

GuidTable::Entry& GuidTable::At(std::string_view guid) {
  const std::uint32_t hash = HashOf(guid);
  Slot& slot = slots_.Enter(hash, Holds(guid, hash));
  if (slot.IsFree()) {
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
  const std::uint32_t hash = HashOf(guid);
  const Slot* const slot = slots_.Find(hash, Holds(guid, hash));
  return slot == nullptr ? nullptr : entries_[slot->entry - 1].root;
}

void GuidTable::Clear() {
  entries_.clear();
  slots_.Clear();
}

}  // namespace corvel
