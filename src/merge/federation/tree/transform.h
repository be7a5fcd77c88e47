// Places in space: an origin and three axes.
#pragma once

#include <array>

namespace corvel {

using Triple = std::array<double, 3>;

inline Triple Plus(const Triple& one, const Triple& other) {
  return {one[0] + other[0], one[1] + other[1], one[2] + other[2]};
}
inline Triple Times(const Triple& vector, double factor) {
  return {vector[0] * factor, vector[1] * factor, vector[2] * factor};
}
inline double Dot(const Triple& one, const Triple& other) {
  return one[0] * other[0] + one[1] * other[1] + one[2] * other[2];
}
inline Triple Cross(const Triple& one, const Triple& other) {
  return {one[1] * other[2] - one[2] * other[1], one[2] * other[0] - one[0] * other[2],
          one[0] * other[1] - one[1] * other[0]};
}
// A vector without length stays what it is.
Triple Normalised(const Triple& vector);

// The axes are of length 1 and stand upright on each other.
struct Transform {
  Triple origin{};
  Triple x{1.0, 0.0, 0.0};
  Triple y{0.0, 1.0, 0.0};
  Triple z{0.0, 0.0, 1.0};

  // What a direction or a point of this place is outside of it.
  Triple Turned(const Triple& direction) const {
    return Plus(Plus(Times(x, direction[0]), Times(y, direction[1])), Times(z, direction[2]));
  }
  Triple Moved(const Triple& point) const { return Plus(Turned(point), origin); }
  // `inner` stands in this place: the same place as seen from outside.
  Transform Around(const Transform& inner) const;
  // What stands outside, as seen from this place.
  Transform Inverse() const;
  // Axes in the directions of the coordinates.
  bool IsUpright() const;
};

// How far two places may be apart that are taken for the same.
struct PlaceTolerance {
  double origin = 0.0;
  double partOfOrigin = 0.0;  // so much more for each unit that the origin is away
  double axis = 0.0;
};

bool SamePlace(const Transform& one, const Transform& other, const PlaceTolerance& tolerance);

}  // namespace corvel
