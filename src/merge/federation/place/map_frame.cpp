#include "merge/federation/place/map_frame.h"

#include <algorithm>
#include <cmath>

namespace corvel {

namespace {

// Metres, and the sine of an angle: together less than a micrometre at a kilometre.
constexpr PlaceTolerance kSame = {1e-7, 0.0, 1e-10};
// Of a factor.
constexpr double kSameScale = 1e-9;

Triple Scaled(const Triple& point, const Triple& scale) {
  return {point[0] * scale[0], point[1] * scale[1], point[2] * scale[2]};
}

Triple Unscaled(const Triple& point, const Triple& scale) {
  return {point[0] / scale[0], point[1] / scale[1], point[2] / scale[2]};
}

Transform Turn(double cosine, double sine) {
  Transform turn;
  turn.x = {cosine, sine, 0.0};
  turn.y = {-sine, cosine, 0.0};
  return turn;
}

double FarthestApart(const Triple& one, const Triple& other) {
  double apart = 0.0;
  for (std::size_t i = 0; i < one.size(); ++i) {
    apart = std::max(apart, std::abs(one[i] - other[i]));
  }
  return apart;
}

}  // namespace

RelativePlace PlaceOn(const MapFrame& first, const MapFrame& later) {
  const Transform back = Turn(first.cosine, -first.sine);
  const Transform out = Turn(later.cosine, later.sine);
  // What the two conversions would make of a point between them, scales and all.
  const auto through = [&](const Triple& point) {
    return Unscaled(back.Turned(out.Turned(Scaled(point, later.scale))), first.scale);
  };
  RelativePlace relative;
  Transform between = Turn(later.cosine * first.cosine + later.sine * first.sine,
                           later.sine * first.cosine - later.cosine * first.sine);
  for (const Triple& axis : {Triple{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}) {
    relative.distortion =
        std::max(relative.distortion, FarthestApart(through(axis), between.Turned(axis)));
  }
  if (relative.distortion <= kSameScale) relative.distortion = 0.0;
  const Triple apart = Plus(later.origin, Times(first.origin, -1.0));
  between.origin = Unscaled(back.Turned(apart), first.scale);
  relative.place = first.world.Inverse().Around(between.Around(later.world));
  return relative;
}

Triple OriginChangeFor(const MapFrame& frame, const Triple& shift) {
  const Triple onMap =
      Turn(frame.cosine, frame.sine).Turned(Scaled(frame.world.Turned(shift), frame.scale));
  return Times(onMap, -1.0);
}

bool SameFrame(const MapFrame& one, const MapFrame& other) {
  const RelativePlace relative = PlaceOn(one, other);
  return relative.distortion == 0.0 && SamePlace(relative.place, {}, kSame);
}

}  // namespace corvel
