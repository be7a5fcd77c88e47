// GUIDs of one model.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "host/check/findings.h"
#include "host/facts/doubled_guids.h"
#include "step/class_facts.h"

namespace corvel::host {

// A GUID in 128 bits.
struct PackedGuid {
  std::uint64_t high = 0;
  std::uint64_t low = 0;
  friend bool operator==(const PackedGuid&, const PackedGuid&) = default;
  friend bool operator<(const PackedGuid& one, const PackedGuid& other) {
    return std::tie(one.high, one.low) < std::tie(other.high, other.low);
  }

  std::string Text() const;
};

// Nothing for a text that is no GUID: 22 digits of base 64, of which the first is below 4.
std::optional<PackedGuid> PackGuid(std::string_view text);

// One object with a GUID.
struct GuidHolder {
  PackedGuid guid;
  std::uint32_t number = 0;
  const ClassFacts* facts = nullptr;  // never null
};

// Looks at the form of a GUID; a good one is given back.
std::optional<PackedGuid> CheckGuid(const IFC::IfcEntity& entity, const ClassFacts& facts,
                                    std::string_view guid, Findings& findings);
// One finding a GUID.
void CheckDoubledGuids(const std::vector<DoubledGuid>& doubled, Findings& findings);

}  // namespace corvel::host
