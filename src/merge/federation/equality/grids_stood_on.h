// What stands on a grid.
#pragma once

#include <unordered_map>
#include <vector>

#include "merge/federation/attribute_values.h"

namespace corvel {

// A placement on a grid names axes, and these know no grid: the grids know them. So that two
// placements may say the same and be at two places, and a grid tells which.
class GridsStoodOn {
 public:
  // Takes note of the axes of a grid. Other objects are none of its business.
  void Gather(IFC::IfcEntity& entity);
  // The grids of the axes that cross where `placement` is, or where what it is relative to is: one
  // for each axis, in their order. Nothing for placements that lead to no grid, and for null.
  // Grids may be gathered after the question, as long as it is asked again.
  std::vector<IFC::IfcEntity*> Under(IFC::IfcEntity* placement);

 private:
  IFC::IfcEntity* PlacementOnGrid(IFC::IfcEntity* placement);

  ClassQuestion isGrid_{"IfcGrid"};
  ClassQuestion isOnGrid_{"IfcGridPlacement"};
  std::unordered_map<const IFC::IfcEntity*, IFC::IfcEntity*> gridOfAxis_;
  // The first of those on a grid on the way outwards; null where there is none.
  std::unordered_map<const IFC::IfcEntity*, IFC::IfcEntity*> onGrid_;
  std::vector<const IFC::IfcEntity*> way_;  // kept for its storage
};

}  // namespace corvel
