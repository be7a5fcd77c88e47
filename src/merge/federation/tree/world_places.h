// Where placements stand in the world of their model.
#pragma once

#include <memory_resource>
#include <optional>
#include <unordered_map>
#include <vector>

#include "core/entity.h"
#include "merge/federation/attribute_values.h"
#include "merge/federation/named_attribute.h"
#include "merge/federation/tree/transform.h"

namespace corvel {

// The place that an IfcAxis2Placement3D or 2D says; a 2D one lies in the plane of x and y. Null is
// the origin. Nothing for other classes, points on curves, and numbers that are none.
std::optional<Transform> PlaceOf(const IFC::IfcEntity* axisPlacement);
// Whether it has three dimensions. Null has.
bool IsSpatial(const IFC::IfcEntity* axisPlacement);

// As PlaceOf, for very many of them: the attributes are looked for once in each class.
// `Attribute`: NamedAttribute, or what asks like it.
template <class Attribute>
class BasicPlaceReader {
 public:
  std::optional<Transform> Of(const IFC::IfcEntity* axisPlacement);

 private:
  Triple DirectionOf(const IFC::IfcEntity* direction);
  Triple XAxisOf(const IFC::IfcEntity& placement, const Triple& z);

  Attribute location_{"Location"};
  Attribute coordinates_{"Coordinates"};
  Attribute axis_{"Axis"};
  Attribute refDirection_{"RefDirection"};
  Attribute ratios_{"DirectionRatios"};
};
extern template class BasicPlaceReader<NamedAttribute>;
using PlaceReader = BasicPlaceReader<NamedAttribute>;

// Each placement is looked at once, however many stand on it.
class WorldPlaces {
 public:
  // Nothing for a placement on a grid or along a line, for one that stands on such, and for those
  // that go in a circle. `placement` is not null.
  const std::optional<Transform>& Of(IFC::IfcEntity& placement);
  // The same, and it is not remembered: for those on which hardly anything stands.
  std::optional<Transform> OfLeaf(IFC::IfcEntity& placement);

 private:
  void Enter(IFC::IfcEntity& placement);
  // Where it stands, given the place of what it stands on.
  template <class PlaceOfOuter>
  std::optional<Transform> Standing(IFC::IfcEntity& placement, PlaceOfOuter placeOfOuter);

  ClassQuestion isLocal_{"IfcLocalPlacement"};
  NamedAttribute outer_{"PlacementRelTo"};
  NamedAttribute relative_{"RelativePlacement"};
  PlaceReader reader_;
  std::pmr::monotonic_buffer_resource memory_;  // nothing is forgotten
  std::pmr::unordered_map<const IFC::IfcEntity*, std::optional<Transform>> known_{&memory_};
  std::vector<IFC::IfcEntity*> chain_;
  // Of leaves, neighbours among which mostly stand on the same.
  const IFC::IfcEntity* lastOuter_ = nullptr;
  const std::optional<Transform>* lastOuterPlace_ = nullptr;
};

}  // namespace corvel
