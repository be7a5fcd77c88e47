// From GUIDs to the objects that hold them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "core/open_table.h"

namespace IFC {
class VirtualIfcRoot;
}

namespace corvel {

// Constant time for each operation, on average. Borrows the texts: a key is the GUID that an object
// had when it was entered, and stays that when the object gets another one.
class GuidTable {
 public:
  struct Entry {
    std::string_view guid;
    IFC::VirtualIfcRoot* root = nullptr;
  };

  // False, and nothing is changed, when the GUID is taken. `root` is never null here.
  bool Enter(std::string_view guid, IFC::VirtualIfcRoot* root);
  // Enters, or takes the GUID from whoever holds it.
  void Set(std::string_view guid, IFC::VirtualIfcRoot* root);
  // Null when nobody holds the GUID.
  IFC::VirtualIfcRoot* Find(std::string_view guid) const;
  void Clear();
  std::size_t Size() const { return entries_.size(); }

  // In the order in which they were entered; void after the next Enter, Set or Clear.
  std::vector<Entry>::const_iterator begin() const { return entries_.begin(); }
  std::vector<Entry>::const_iterator end() const { return entries_.end(); }

 private:
  struct Slot {
    std::uint32_t entry = 0;  // index + 1; 0 in a free slot
    std::uint32_t hash = 0;

    bool IsFree() const { return entry == 0; }
    std::size_t Hash() const { return hash; }
  };

  // The entry of the GUID, with a null root when it is new.
  Entry& At(std::string_view guid);
  // Tells the slot of the GUID.
  auto Holds(std::string_view guid, std::uint32_t hash) const {
    return [=, this](const Slot& slot) {
      return slot.hash == hash && !slot.IsFree() && entries_[slot.entry - 1].guid == guid;
    };
  }

  std::vector<Entry> entries_;
  OpenTable<Slot, 64> slots_;
};

}  // namespace corvel
