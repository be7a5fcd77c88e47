// Lists of objects as tests compare and print them.
#pragma once

#include <ostream>
#include <vector>

#include "merge/document.h"

namespace corvel {

inline bool operator==(const MarkerPair& a, const MarkerPair& b) {
  return a.number == b.number && a.parentNumber == b.parentNumber;
}
inline std::ostream& operator<<(std::ostream& out, const MarkerPair& pair) {
  return out << "{" << pair.number << ", " << pair.parentNumber << "}";
}

namespace test {
using Pairs = std::vector<MarkerPair>;
}  // namespace test

}  // namespace corvel
