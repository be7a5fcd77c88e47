// GUIDs that several objects of a model have.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/guid_table.h"
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
  const std::vector<DoubledGuid>& Result() const { return doubled_; }

 private:
  GuidTable first_;
  std::unordered_map<std::string_view, std::size_t> places_;  // in `doubled_`
  std::vector<DoubledGuid> doubled_;
};

}  // namespace corvel::host
