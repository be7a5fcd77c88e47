// Where placements stand in the world of their model.
#pragma once

#include <optional>
#include <unordered_map>
#include <vector>

#include "core/entity.h"
#include "merge/federation/attribute_values.h"
#include "merge/federation/tree/transform.h"

namespace corvel {

// The place that an IfcAxis2Placement3D or 2D says; a 2D one lies in the plane of x and y. Null is
// the origin. Nothing for other classes, points on curves, and numbers that are none.
std::optional<Transform> PlaceOf(const IFC::IfcEntity* axisPlacement);
// Whether it has three dimensions. Null has.
bool IsSpatial(const IFC::IfcEntity* axisPlacement);

// Each placement is looked at once, however many stand on it.
class WorldPlaces {
 public:
  // Nothing for a placement on a grid or along a line, for one that stands on such, and for those
  // that go in a circle. `placement` is not null.
  const std::optional<Transform>& Of(IFC::IfcEntity& placement);

 private:
  void Enter(IFC::IfcEntity& placement);

  ClassQuestion isLocal_{"IfcLocalPlacement"};
  std::unordered_map<const IFC::IfcEntity*, std::optional<Transform>> known_;
  std::vector<IFC::IfcEntity*> chain_;
};

}  // namespace corvel
