#include "merge/new_placements.h"

#include "core/entity_cast.h"
#include "core/main_container.h"

namespace corvel {

using IFC::IfcEntity;

IfcEntity* NewPoint(IfcDocument& document, const std::array<double, 3>& coordinates) {
  IfcEntity* const point = document.CreateESet("IFCCARTESIANPOINT");
  if (point == nullptr) return nullptr;
  EntityCast<IFC::VirtualIfcCartesianPoint>(point)->setCoordinates(
      {coordinates.begin(), coordinates.end()}, document.mainContainer->Pool());
  return point;
}

IfcEntity* NewDirection(IfcDocument& document, const std::array<double, 3>& ratios) {
  IfcEntity* const direction = document.CreateESet("IFCDIRECTION");
  if (direction == nullptr) return nullptr;
  EntityCast<IFC::VirtualIfcDirection>(direction)->setDirectionRatios(
      ratios[0], ratios[1], ratios[2], document.mainContainer->Pool());
  return direction;
}

IfcEntity* NewAxes(IfcDocument& document, IfcEntity* location, IfcEntity* axis,
                   IfcEntity* refDirection) {
  IfcEntity* const axes = document.CreateESet("IFCAXIS2PLACEMENT3D");
  if (axes == nullptr) return nullptr;
  EntityCast<IFC::VirtualIfcAxis2Placement3D>(axes)->setAttributes(location, axis, refDirection);
  return axes;
}

IFC::VirtualLocalPlacement* NewLocalPlacement(IfcDocument& document, IfcEntity* axes) {
  auto* const placement =
      EntityCast<IFC::VirtualLocalPlacement>(document.CreateESet("IFCLOCALPLACEMENT"));
  if (placement == nullptr) return nullptr;
  placement->setRelativePlacement(axes);
  return placement;
}

}  // namespace corvel
