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

Triple TripleOf(const List<double>& numbers) {
  Triple triple{};
  std::copy_n(numbers.begin(), std::min(numbers.size(), triple.size()), triple.begin());
  return triple;
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

// Asks as NamedAttribute does, and remembers nothing.
class AttributeByName {
 public:
  explicit AttributeByName(std::string_view name) : name_(name) {}

  IFC::IfcEntity* ReferenceIn(const IFC::IfcEntity& entity) const {
    return ReferenceOf(entity, name_);
  }
  const List<double>* RealsIn(const IFC::IfcEntity& entity) const { return RealsOf(entity, name_); }
  bool IsIn(const IFC::IfcEntity& entity) const {
    const ClassFacts* const facts = FindFacts(entity);
    return facts != nullptr && facts->FindAttribute(name_) != nullptr;
  }

 private:
  std::string_view name_;
};

}  // namespace

bool IsSpatial(const IFC::IfcEntity* axisPlacement) {
  if (axisPlacement == nullptr) return true;
  const ClassFacts* const facts = FindFacts(*axisPlacement);
  return facts != nullptr && facts->FindAttribute("Axis") != nullptr;
}

template <class Attribute>
Triple BasicPlaceReader<Attribute>::DirectionOf(const IFC::IfcEntity* direction) {
  const List<double>* const ratios = direction == nullptr ? nullptr : ratios_.RealsIn(*direction);
  return ratios == nullptr ? Triple{} : Normalised(TripleOf(*ratios));
}

template <class Attribute>
Triple BasicPlaceReader<Attribute>::XAxisOf(const IFC::IfcEntity& placement, const Triple& z) {
  const Triple direction = DirectionOf(refDirection_.ReferenceIn(placement));
  const Triple told = UprightOn(z, direction == Triple{} ? kX : direction);
  if (told != Triple{}) return told;
  const Triple usual = UprightOn(z, kX);
  return usual != Triple{} ? usual : UprightOn(z, kY);
}

template <class Attribute>
std::optional<Transform> BasicPlaceReader<Attribute>::Of(const IFC::IfcEntity* axisPlacement) {
  if (axisPlacement == nullptr) return Transform{};
  if (!refDirection_.IsIn(*axisPlacement)) return std::nullopt;
  Transform place;
  if (const IFC::IfcEntity* const location = location_.ReferenceIn(*axisPlacement)) {
    const List<double>* const coordinates = coordinates_.RealsIn(*location);
    // A point on a curve has none.
    if (coordinates == nullptr) return std::nullopt;
    place.origin = TripleOf(*coordinates);
  }
  const Triple axis = DirectionOf(axis_.ReferenceIn(*axisPlacement));
  place.z = axis == Triple{} ? kZ : axis;
  place.x = XAxisOf(*axisPlacement, place.z);
  place.y = Cross(place.z, place.x);
  return IsFinite(place) ? std::optional(place) : std::nullopt;
}

template class BasicPlaceReader<NamedAttribute>;

// A reader that remembers classes is not made for one place.
std::optional<Transform> PlaceOf(const IFC::IfcEntity* axisPlacement) {
  return BasicPlaceReader<AttributeByName>().Of(axisPlacement);
}

const std::optional<Transform>& WorldPlaces::Of(IFC::IfcEntity& placement) {
  // From the placement outwards, and back with what is known then. One whose turn has not come yet
  // is known as nowhere, which ends circles.
  for (IFC::IfcEntity* at = &placement; at != nullptr && known_.try_emplace(at).second;
       at = outer_.ReferenceIn(*at)) {
    chain_.push_back(at);
  }
  for (; !chain_.empty(); chain_.pop_back()) Enter(*chain_.back());
  return known_[&placement];
}

std::optional<Transform> WorldPlaces::OfLeaf(IFC::IfcEntity& placement) {
  return Standing(placement, [this](IFC::IfcEntity& outer) -> const std::optional<Transform>& {
    if (&outer != lastOuter_) {
      lastOuterPlace_ = &Of(outer);
      lastOuter_ = &outer;
    }
    return *lastOuterPlace_;
  });
}

void WorldPlaces::Enter(IFC::IfcEntity& placement) {
  known_[&placement] = Standing(
      placement,
      [this](IFC::IfcEntity& outer) -> const std::optional<Transform>& { return known_[&outer]; });
}

template <class PlaceOfOuter>
std::optional<Transform> WorldPlaces::Standing(IFC::IfcEntity& placement,
                                               PlaceOfOuter placeOfOuter) {
  if (!isLocal_.IsTrueOf(placement)) return std::nullopt;
  auto relative = reader_.Of(relative_.ReferenceIn(placement));
  IFC::IfcEntity* const outer = outer_.ReferenceIn(placement);
  if (!relative || outer == nullptr) return relative;
  const std::optional<Transform>& place = placeOfOuter(*outer);
  return place ? std::optional(place->Around(*relative)) : std::nullopt;
}

}  // namespace corvel
