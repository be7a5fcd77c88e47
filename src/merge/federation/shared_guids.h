// The few objects that share a GUID, among very many that do not.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/entity.h"

namespace corvel {

// Equal for equal GUIDs. All of `roots` have one; it may be empty.
std::vector<std::uint64_t> HashesOfGuids(const std::vector<IFC::IfcEntity*>& roots);

// The places in `hashes` of all that are there more than once, and of few others. In ascending
// order. A few nanoseconds for each.
std::vector<std::size_t> PlacesOfRepeated(const std::vector<std::uint64_t>& hashes);

// Those of `roots`, in their order, whose GUID another one of them has. Empty ones are nobody's.
std::vector<IFC::IfcEntity*> HoldersOfSharedGuids(const std::vector<IFC::IfcEntity*>& roots);

}  // namespace corvel
