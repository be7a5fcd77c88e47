// From the coordinates of models to those of a map.
#include "merge/federation/place/map_frame.h"

#include <gtest/gtest.h>

#include <cmath>

namespace corvel {
namespace {

constexpr double kTiny = 1e-9;

// What the map says of a point, written out.
Triple OnMap(const MapFrame& frame, const Triple& point) {
  const Triple there = frame.world.Moved(point);
  const double x = there[0] * frame.scale[0];
  const double y = there[1] * frame.scale[1];
  return {frame.origin[0] + frame.cosine * x - frame.sine * y,
          frame.origin[1] + frame.sine * x + frame.cosine * y,
          frame.origin[2] + frame.scale[2] * there[2]};
}

void ExpectNear(const Triple& wanted, const Triple& found, double tolerance = kTiny) {
  for (std::size_t i = 0; i < wanted.size(); ++i) EXPECT_NEAR(wanted[i], found[i], tolerance) << i;
}

MapFrame Turned(double radians, const Triple& origin) {
  MapFrame frame;
  frame.cosine = std::cos(radians);
  frame.sine = std::sin(radians);
  frame.origin = origin;
  return frame;
}

const Triple kPoints[] = {{0.0, 0.0, 0.0}, {10.0, 0.0, 0.0}, {-3.0, 20.0, 5.0}, {1.0, 2.0, -7.5}};

TEST(MapFrames, ThePlaceBringsEveryPointToWhereTheMapHasIt) {
  const MapFrame first = Turned(0.4, {100.0, 200.0, 3.0});
  const MapFrame later = Turned(-1.1, {130.0, 170.0, 8.0});
  const RelativePlace relative = PlaceOn(first, later);
  EXPECT_EQ(0.0, relative.distortion);
  for (const Triple& point : kPoints) {
    ExpectNear(OnMap(later, point), OnMap(first, relative.place.Moved(point)));
  }
}

TEST(MapFrames, OneScaleOfBothIsNoDistortion) {
  MapFrame first = Turned(0.4, {100.0, 200.0, 3.0});
  MapFrame later = Turned(-1.1, {130.0, 170.0, 8.0});
  first.scale = later.scale = {0.9996, 0.9996, 1.0};
  const RelativePlace relative = PlaceOn(first, later);
  EXPECT_EQ(0.0, relative.distortion);
  for (const Triple& point : kPoints) {
    ExpectNear(OnMap(later, point), OnMap(first, relative.place.Moved(point)));
  }
}

TEST(MapFrames, WorldCoordinateSystemsThatAreTiltedTiltThePlace) {
  MapFrame first = Turned(0.4, {100.0, 200.0, 3.0});
  MapFrame later = Turned(-1.1, {130.0, 170.0, 8.0});
  first.world.origin = {5.0, 6.0, 7.0};
  later.world.origin = {-1.0, 2.0, 0.5};
  later.world.y = {0.0, 0.8, 0.6};
  later.world.z = {0.0, -0.6, 0.8};
  const RelativePlace relative = PlaceOn(first, later);
  EXPECT_EQ(0.0, relative.distortion);
  EXPECT_NEAR(0.8, relative.place.z[2], kTiny);
  for (const Triple& point : kPoints) {
    ExpectNear(OnMap(later, point), OnMap(first, relative.place.Moved(point)));
  }
}

TEST(MapFrames, AnotherScaleIsDistortionAndTheOriginIsRightAllTheSame) {
  MapFrame first = Turned(0.4, {100.0, 200.0, 3.0});
  first.scale = {0.5, 0.5, 0.5};
  const MapFrame later = Turned(0.4, {130.0, 170.0, 8.0});
  const RelativePlace relative = PlaceOn(first, later);
  EXPECT_NEAR(1.0, relative.distortion, kTiny);
  ExpectNear(OnMap(later, {}), OnMap(first, relative.place.Moved({})));
  EXPECT_NEAR(1.0, relative.place.x[0], kTiny);
}

TEST(MapFrames, ScalesThatDifferInTheLastDigitsAreOne) {
  MapFrame first;
  MapFrame later;
  later.scale = {1.0 + 5e-10, 1.0, 1.0};
  EXPECT_EQ(0.0, PlaceOn(first, later).distortion);
  later.scale = {1.0 + 5e-9, 1.0, 1.0};
  EXPECT_NE(0.0, PlaceOn(first, later).distortion);
}

TEST(MapFrames, TheOriginChangesSoThatWhatIsMovedStays) {
  MapFrame frame = Turned(0.7, {100.0, 200.0, 3.0});
  frame.scale = {2.0, 3.0, 4.0};
  frame.world.y = {0.0, 0.8, 0.6};
  frame.world.z = {0.0, -0.6, 0.8};
  const Triple shift = {1.0, -2.0, 3.0};
  MapFrame moved = frame;
  moved.origin = Plus(frame.origin, OriginChangeFor(frame, shift));
  for (const Triple& point : kPoints) {
    ExpectNear(OnMap(frame, point), OnMap(moved, Plus(point, shift)));
  }
}

TEST(MapFrames, AreTheSameWithinATenthOfAMicrometre) {
  const MapFrame frame = Turned(0.7, {100.0, 200.0, 3.0});
  MapFrame other = frame;
  EXPECT_TRUE(SameFrame(frame, other));
  other.origin[2] += 5e-8;
  EXPECT_TRUE(SameFrame(frame, other));
  other.origin[2] += 5e-7;
  EXPECT_FALSE(SameFrame(frame, other));
  EXPECT_FALSE(SameFrame(frame, Turned(0.7 + 1e-8, {100.0, 200.0, 3.0})));
}

}  // namespace
}  // namespace corvel
