// From the coordinates of a model to those of a map, as numbers.
#pragma once

#include "merge/federation/tree/transform.h"

namespace corvel {

// A point of the model, in metres, is a point of the map, in metres:
//
//     origin + turn * scale * world(point)
//
// Placements without an outer one stand in the world coordinate system of their context, and that
// stands in the coordinates that the conversion begins with.
struct MapFrame {
  Transform world{};
  Triple scale{1.0, 1.0, 1.0};  // along the axes
  double cosine = 1.0;          // of the turn from the x axis to the eastings, about the vertical
  double sine = 0.0;
  Triple origin{};  // eastings, northings, height
};

// How a later model stands in the coordinates of the first one, in metres.
struct RelativePlace {
  Transform place{};
  // How far what this place says of a point is from what the map says, for each metre that the
  // point is away: 0 unless the two maps scale differently, which no placement says.
  double distortion = 0.0;
};

RelativePlace PlaceOn(const MapFrame& first, const MapFrame& later);

// By how much the origin changes so that a model that was moved by `shift`, in metres, stays on the
// map where it stood.
Triple OriginChangeFor(const MapFrame& frame, const Triple& shift);

bool SameFrame(const MapFrame& one, const MapFrame& other);

}  // namespace corvel
