// Places in space: an origin and three axes.
#pragma once

#include <array>

namespace corvel {

using Triple = std::array<double, 3>;

Triple Plus(const Triple& one, const Triple& other);
Triple Times(const Triple& vector, double factor);
double Dot(const Triple& one, const Triple& other);
Triple Cross(const Triple& one, const Triple& other);
// A vector without length stays what it is.
Triple Normalised(const Triple& vector);

// The axes are of length 1 and stand upright on each other.
struct Transform {
  Triple origin{};
  Triple x{1.0, 0.0, 0.0};
  Triple y{0.0, 1.0, 0.0};
  Triple z{0.0, 0.0, 1.0};

  // What a direction or a point of this place is outside of it.
  Triple Turned(const Triple& direction) const;
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
