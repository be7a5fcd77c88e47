#include "merge/federation/tree/world_places.h"

#include <algorithm>
#include <cmath>

namespace corvel {

namespace {

constexpr Triple kX = {1.0, 0.0, 0.0};
constexpr Triple kY = {0.0, 1.0, 0.0};
constexpr Triple kZ = {0.0, 0.0, 1.0};
// The sine of the smallest angle at which a reference direction says something.
constexpr double kParallel = 1e-9;

// Two or three numbers of an object that may be missing.
Triple NumbersOf(const IFC::IfcEntity* entity, std::string_view attribute, const Triple& absent) {
  const List<double>* const numbers = entity == nullptr ? nullptr : RealsOf(*entity, attribute);
  if (numbers == nullptr || numbers->empty()) return absent;
  Triple triple{};
  std::copy_n(numbers->begin(), std::min(numbers->size(), triple.size()), triple.begin());
  return triple;
}

Triple DirectionOf(const IFC::IfcEntity& placement, std::string_view attribute,
                   const Triple& absent) {
  const Triple direction =
      Normalised(NumbersOf(ReferenceOf(placement, attribute), "DirectionRatios", absent));
  return direction == Triple{} ? absent : direction;
}

bool IsFinite(const Transform& place) {
  for (const Triple& triple : {place.origin, place.x, place.y, place.z}) {
    if (!std::isfinite(triple[0] + triple[1] + triple[2])) return false;
  }
  return true;
}

// What of `direction` stands upright on `z`. Without length where the two are parallel.
Triple UprightOn(const Triple& z, const Triple& direction) {
  const Triple upright = Plus(direction, Times(z, -Dot(direction, z)));
  return std::sqrt(Dot(upright, upright)) < kParallel ? Triple{} : Normalised(upright);
}

Triple XAxisOf(const IFC::IfcEntity& placement, const Triple& z) {
  const Triple told = UprightOn(z, DirectionOf(placement, "RefDirection", kX));
  if (told != Triple{}) return told;
  const Triple usual = UprightOn(z, kX);
  return usual != Triple{} ? usual : UprightOn(z, kY);
}

}  // namespace

bool IsSpatial(const IFC::IfcEntity* axisPlacement) {
  if (axisPlacement == nullptr) return true;
  const ClassFacts* const facts = FindFacts(*axisPlacement);
  return facts != nullptr && facts->FindAttribute("Axis") != nullptr;
}

std::optional<Transform> PlaceOf(const IFC::IfcEntity* axisPlacement) {
  if (axisPlacement == nullptr) return Transform{};
  const ClassFacts* const facts = FindFacts(*axisPlacement);
  if (facts == nullptr || facts->FindAttribute("RefDirection") == nullptr) return std::nullopt;
  const IFC::IfcEntity* const location = ReferenceOf(*axisPlacement, "Location");
  // A point on a curve has none.
  if (location != nullptr && RealsOf(*location, "Coordinates") == nullptr) return std::nullopt;
  Transform place;
  place.origin = NumbersOf(location, "Coordinates", {});
  place.z = DirectionOf(*axisPlacement, "Axis", kZ);
  place.x = XAxisOf(*axisPlacement, place.z);
  place.y = Cross(place.z, place.x);
  return IsFinite(place) ? std::optional(place) : std::nullopt;
}

const std::optional<Transform>& WorldPlaces::Of(IFC::IfcEntity& placement) {
  // From the placement outwards, and back with what is known then. One whose turn has not come yet
  // is known as nowhere, which ends circles.
  for (IFC::IfcEntity* at = &placement; at != nullptr && known_.try_emplace(at).second;
       at = ReferenceOf(*at, "PlacementRelTo")) {
    chain_.push_back(at);
  }
  for (; !chain_.empty(); chain_.pop_back()) Enter(*chain_.back());
  return known_[&placement];
}

void WorldPlaces::Enter(IFC::IfcEntity& placement) {
  if (!isLocal_.IsTrueOf(placement)) return;
  const auto relative = PlaceOf(ReferenceOf(placement, "RelativePlacement"));
  const IFC::IfcEntity* const outer = ReferenceOf(placement, "PlacementRelTo");
  if (!relative) return;
  if (outer == nullptr) {
    known_[&placement] = relative;
  } else if (const auto& place = known_[outer]) {
    known_[&placement] = place->Around(*relative);
  }
}

}  // namespace corvel
