#include "host/diff/movement.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <numbers>

#include "host/diff/tolerance.h"

namespace corvel::host::diff {

namespace {

constexpr double kHalfTurn = 180.0;
// What is told of lengths and angles.
constexpr double kSmallest = 1e-6;

std::string TextOfNumber(double number) {
  std::array<char, 40> digits{};
  const double rounded = std::round(number / kSmallest) * kSmallest;
  std::snprintf(digits.data(), digits.size(), "%.12g", rounded == 0.0 ? 0.0 : rounded);
  return digits.data();
}

// Of two places, the first taken back: what `direction` becomes.
Triple TurnedFromTo(const Transform& before, const Transform& after, const Triple& direction) {
  return after.Turned(
      {Dot(before.x, direction), Dot(before.y, direction), Dot(before.z, direction)});
}

double LengthOf(const Triple& vector) { return std::sqrt(Dot(vector, vector)); }

// The axis of a turn, which the columns of it tell but for half a turn.
Triple AxisOf(const Transform& turn) {
  const Triple twice = {turn.y[2] - turn.z[1], turn.z[0] - turn.x[2], turn.x[1] - turn.y[0]};
  if (LengthOf(twice) > kSmallest) return Normalised(twice);
  // Each column of the turn and the same vector unturned lie on both sides of the axis.
  const std::array<Triple, 3> sums = {Plus(turn.x, {1, 0, 0}), Plus(turn.y, {0, 1, 0}),
                                      Plus(turn.z, {0, 0, 1})};
  return Normalised(*std::max_element(
      sums.begin(), sums.end(),
      [](const Triple& one, const Triple& other) { return Dot(one, one) < Dot(other, other); }));
}

double DegreesOf(const Transform& turn) {
  const Triple twice = {turn.y[2] - turn.z[1], turn.z[0] - turn.x[2], turn.x[1] - turn.y[0]};
  const double trace = turn.x[0] + turn.y[1] + turn.z[2];
  return std::atan2(LengthOf(twice), trace - 1.0) * kHalfTurn / std::numbers::pi;
}

}  // namespace

Movement MovementBetween(const Transform& before, const Transform& after) {
  Movement movement;
  movement.by = Plus(after.origin, Times(before.origin, -1.0));
  const bool isTurned = !SamePlace({{}, before.x, before.y, before.z},
                                   {{}, after.x, after.y, after.z}, {.axis = Tolerance::kAxis});
  if (!isTurned) {
    movement.ofWorld.origin = movement.by;
    return movement;
  }
  movement.ofWorld.x = TurnedFromTo(before, after, {1, 0, 0});
  movement.ofWorld.y = TurnedFromTo(before, after, {0, 1, 0});
  movement.ofWorld.z = TurnedFromTo(before, after, {0, 0, 1});
  movement.ofWorld.origin =
      Plus(after.origin, Times(TurnedFromTo(before, after, before.origin), -1.0));
  movement.degrees = DegreesOf(movement.ofWorld);
  movement.axis = AxisOf(movement.ofWorld);
  return movement;
}

bool IsTurned(const Movement& movement) { return movement.degrees != 0.0; }

std::string KeyOf(const Movement& movement) {
  constexpr double kLength = 1e-5;
  constexpr double kRatio = 1e-7;
  std::string key;
  const auto add = [&](double number, double cell) {
    key += std::to_string(static_cast<std::int64_t>(Tolerance::InCells(number, cell))) + " ";
  };
  for (const double length : movement.ofWorld.origin) add(length, kLength);
  for (const Triple* const axis : {&movement.ofWorld.x, &movement.ofWorld.z}) {
    for (const double ratio : *axis) add(ratio, kRatio);
  }
  return key;
}

std::string TextOfPoint(const Triple& point) {
  return "(" + TextOfNumber(point[0]) + ", " + TextOfNumber(point[1]) + ", " +
         TextOfNumber(point[2]) + ")";
}

std::string TextOfMovement(const Movement& movement) {
  const double length = LengthOf(movement.by);
  std::string text;
  if (length >= kSmallest / 2 || !IsTurned(movement)) {
    text = "moved by " + TextOfNumber(length) + " m " + TextOfPoint(movement.by);
  }
  if (!IsTurned(movement)) return text;
  if (!text.empty()) text += ", ";
  return text + "turned by " + TextOfNumber(movement.degrees) + " degrees about " +
         TextOfPoint(movement.axis);
}

std::string TextOfCommonMovement(const Movement& movement) {
  if (!IsTurned(movement)) return TextOfMovement(movement);
  return "turned together by " + TextOfNumber(movement.degrees) + " degrees about " +
         TextOfPoint(movement.axis) + ", origin to " + TextOfPoint(movement.ofWorld.origin);
}

}  // namespace corvel::host::diff
