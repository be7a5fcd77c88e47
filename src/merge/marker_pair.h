// How the host's objects are named to a model.
#pragma once

#include <cstdint>

namespace corvel {

// Two numbers of the file: an object's, and that of the object that the host gives as its parent.
// 0, or the object itself: there is no parent to follow.
struct MarkerPair {
  std::uint32_t number = 0;
  std::uint32_t parentNumber = 0;
};

}  // namespace corvel
