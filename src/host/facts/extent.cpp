#include "host/facts/extent.h"

#include <algorithm>
#include <optional>

namespace corvel::host {

void ExtentMeasure::Add(IFC::IfcEntity* placement) {
  if (placement == nullptr) return;
  const std::optional<Transform>& place = places_.Of(*placement);
  if (!place) {
    ++extent_.nowhere;
    return;
  }
  const Triple point = Times(place->origin, metresPerUnit_);
  if (extent_.placed++ == 0) extent_.least = extent_.most = point;
  for (std::size_t axis = 0; axis < point.size(); ++axis) {
    extent_.least[axis] = std::min(extent_.least[axis], point[axis]);
    extent_.most[axis] = std::max(extent_.most[axis], point[axis]);
  }
}

}  // namespace corvel::host
