// GUIDs that several objects of a model have.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/root_interfaces.h"

namespace corvel::host {

struct DoubledGuid {
  std::string guid;
  std::vector<std::uint32_t> numbers;  // two or more, in the order in which they were added
  bool operator==(const DoubledGuid&) const = default;
};

// Takes the objects of a model one after the other.
class DoubledGuidSearch {
 public:
  // An object without a GUID shares it with nobody. The object lives as long as this.
  void Add(IFC::VirtualIfcRoot& root);
  // In the order in which their second objects were added.
  std::vector<DoubledGuid> Result() const;

 private:
  struct Entry {
    std::uint32_t hash = 0;
    IFC::VirtualIfcRoot* root = nullptr;
  };

  std::vector<Entry> EntriesOfEqualBits() const;

  std::vector<Entry> entries_;
};

}  // namespace corvel::host
