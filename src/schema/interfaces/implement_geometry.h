// Bodies of placements, points, directions and solids.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "core/list.h"
#include "schema/interfaces/geometry.h"
#include "schema/interfaces/implement_support.h"

namespace IFC::implement {

// --- Local placements ----------------------------------------------------------------------------
// The local placement that one is relative to, or null. Only IfcLocalPlacement has the interface
// VirtualLocalPlacement, so the cast to the class is the cast to the interface.
template <class LocalPlacement>
LocalPlacement* NextPlacement(LocalPlacement* placement) {
  if (!placement->PlacementRelToPresent) return nullptr;
  return corvel::EntityCast<LocalPlacement>(placement->PlacementRelTo);
}

// The first placement that the way from `start` comes to twice. `onCircle` lies a number of steps
// from `start` that is a multiple of the circle's length, so that both reach its beginning at once.
template <class LocalPlacement>
LocalPlacement* BeginningOfCircle(LocalPlacement* start, LocalPlacement* onCircle) {
  while (start != onCircle) {
    start = NextPlacement(start);
    onCircle = NextPlacement(onCircle);
  }
  return start;
}

// Files may place a placement relative to itself by a detour. A second walker at half the speed
// meets the first one then (Floyd's way), so nothing is stored per step.
template <class LocalPlacement>
VirtualLocalPlacement* RootPlacement(LocalPlacement& start) {
  LocalPlacement* slow = &start;
  LocalPlacement* last = nullptr;
  bool moveSlow = false;
  for (LocalPlacement* next = NextPlacement(&start); next != nullptr; next = NextPlacement(next)) {
    last = next;
    if (moveSlow) slow = NextPlacement(slow);
    moveSlow = !moveSlow;
    if (!moveSlow && next == slow) return BeginningOfCircle(&start, next);
  }
  return last;
}

template <class CartesianPoint, class Direction, class Placement>
void SetPlacement(Placement& placement, IfcEntity* location, IfcEntity* axis,
                  IfcEntity* refDirection) {
  placement.Location = Admitted<CartesianPoint>(location);
  SetOptional(placement.Axis, placement.AxisPresent, Admitted<Direction>(axis));
  SetOptional(placement.RefDirection, placement.RefDirectionPresent,
              Admitted<Direction>(refDirection));
}

// --- Points and directions -----------------------------------------------------------------------
inline void SetCoordinates(corvel::List<double>& coordinates, std::vector<double>&& items,
                           corvel::MemoryPool& pool) {
  coordinates.Assign(items, pool);
  items.clear();
}

inline std::vector<double> Coordinates(const corvel::List<double>& coordinates) {
  return {coordinates.begin(), coordinates.end()};
}

inline DirectionRatios Ratios(const corvel::List<double>& ratios) {
  const auto ratio = [&ratios](std::size_t i) { return i < ratios.size() ? ratios[i] : 0.0; };
  DirectionRatios result{ratio(0), ratio(1), ratio(2)};
  result.valid = result.x != 0.0 || result.y != 0.0 || result.z != 0.0;
  return result;
}

inline void SetRatios(corvel::List<double>& ratios, double x, double y, double z,
                      corvel::MemoryPool& pool) {
  ratios.Assign(std::array{x, y, z}, pool);
}

}  // namespace IFC::implement
