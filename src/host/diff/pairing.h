// Which object of one model is which of the other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "host/diff/object_facts.h"

namespace corvel::host::diff {

// By index among the objects of each model.
struct Pairing {
  static constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();

  std::vector<std::uint32_t> laterOf;    // of each earlier one; kNone: it is not there any more
  std::vector<std::uint32_t> earlierOf;  // of each later one; kNone: it is new
  std::vector<bool> isFoundByIdentity;   // of each earlier one: by GUID, of contexts by name
};

// First by GUID; of several holders those go together that the same objects belong to, then those
// that say the same, then the others in their order. Contexts go by
// class, identifier, type and view, and what they are a part of; of several of one name those go
// together that say the same. What is left goes by content
// (ObjectFacts::ContentOf), in the order of numbers where several say the same, and then by name
// and place, where these belong to one object of each model.
//
// Tells both models what references to their objects say: pairs say the same.
Pairing PairObjects(ObjectFacts& earlier, ObjectFacts& later,
                    Shortcuts shortcuts = Shortcuts::kTaken);

}  // namespace corvel::host::diff
