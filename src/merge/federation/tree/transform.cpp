#include "merge/federation/tree/transform.h"

#include <algorithm>
#include <cmath>

namespace corvel {

namespace {

bool Near(const Triple& one, const Triple& other, double tolerance) {
  for (std::size_t i = 0; i < one.size(); ++i) {
    if (!(std::abs(one[i] - other[i]) <= tolerance)) return false;
  }
  return true;
}

double LargestOf(const Triple& vector) {
  return std::max({std::abs(vector[0]), std::abs(vector[1]), std::abs(vector[2])});
}

}  // namespace

Triple Normalised(const Triple& vector) {
  const double length = std::hypot(vector[0], vector[1], vector[2]);
  return length == 0.0 ? vector : Times(vector, 1.0 / length);
}

Transform Transform::Around(const Transform& inner) const {
  return {Moved(inner.origin), Turned(inner.x), Turned(inner.y), Turned(inner.z)};
}

Transform Transform::Inverse() const {
  const Transform back = {{}, {x[0], y[0], z[0]}, {x[1], y[1], z[1]}, {x[2], y[2], z[2]}};
  Transform inverse = back;
  inverse.origin = Times(back.Turned(origin), -1.0);
  return inverse;
}

bool Transform::IsUpright() const {
  constexpr Transform kUpright;
  return x == kUpright.x && y == kUpright.y && z == kUpright.z;
}

bool SamePlace(const Transform& one, const Transform& other, const PlaceTolerance& tolerance) {
  const double ofOrigin = tolerance.origin + tolerance.partOfOrigin * LargestOf(one.origin);
  return Near(one.origin, other.origin, ofOrigin) && Near(one.x, other.x, tolerance.axis) &&
         Near(one.z, other.z, tolerance.axis);
}

}  // namespace corvel
