// A box along the axes of coordinates.
#pragma once

#include <algorithm>
#include <cmath>

#include "merge/federation/tree/transform.h"

namespace corvel {

// From the lowest to the highest coordinates of some points.
struct Bounds {
  Triple low{};
  Triple high{};
  bool isEmpty = true;

  // A point that has no place, for one of its numbers is none, is left out.
  void Add(const Triple& point) {
    if (!std::isfinite(point[0] + point[1] + point[2])) return;
    if (isEmpty) low = high = point;
    for (std::size_t i = 0; i < point.size(); ++i) {
      low[i] = std::min(low[i], point[i]);
      high[i] = std::max(high[i], point[i]);
    }
    isEmpty = false;
  }
  void Add(const Bounds& other);
  // The box around the other one as it stands in `place`, which may stretch it.
  void Add(const Bounds& other, const Transform& place);
};

}  // namespace corvel
