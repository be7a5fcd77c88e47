// From GUIDs to the objects that hold them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

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
  };

  // The entry of the GUID, with a null root when it is new.
  Entry& At(std::string_view guid);
  // Where the GUID is, or the free slot where it belongs. There is a free one.
  std::size_t SlotOf(std::string_view guid, std::uint32_t hash) const;
  void Grow();

  std::vector<Entry> entries_;
  std::vector<Slot> slots_;  // a power of two, at most half full
};

}  // namespace corvel
