#include "merge/report/shared/bounds.h"

#include <iterator>

namespace corvel {

void Bounds::Add(const Bounds& other) {
  if (other.isEmpty) return;
  Add(other.low);
  Add(other.high);
}

void Bounds::Add(const Bounds& other, const Transform& place) {
  if (other.isEmpty) return;
  // Each axis adds its lower and its higher end: what the eight corners come to.
  Triple lowest = place.origin;
  Triple highest = place.origin;
  const Triple* const axes[] = {&place.x, &place.y, &place.z};
  for (std::size_t axis = 0; axis < std::size(axes); ++axis) {
    for (std::size_t i = 0; i < lowest.size(); ++i) {
      const double one = (*axes[axis])[i] * other.low[axis];
      const double end = (*axes[axis])[i] * other.high[axis];
      lowest[i] += std::min(one, end);
      highest[i] += std::max(one, end);
    }
  }
  Add(lowest);
  Add(highest);
}

}  // namespace corvel
