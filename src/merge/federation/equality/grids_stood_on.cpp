#include "merge/federation/equality/grids_stood_on.h"

namespace corvel {

void GridsStoodOn::Gather(IFC::IfcEntity& entity) {
  if (!isGrid_.IsTrueOf(entity)) return;
  for (const char* const attribute : {"UAxes", "VAxes", "WAxes"}) {
    const EntityList* const axes = ReferencesOf(entity, attribute);
    if (axes == nullptr) continue;
    for (const IFC::IfcEntity* const axis : *axes) gridOfAxis_.try_emplace(axis, &entity);
  }
}

std::vector<IFC::IfcEntity*> GridsStoodOn::Under(IFC::IfcEntity* placement) {
  std::vector<IFC::IfcEntity*> grids;
  if (gridOfAxis_.empty()) return grids;
  const IFC::IfcEntity* const onGrid = PlacementOnGrid(placement);
  if (onGrid == nullptr) return grids;
  const IFC::IfcEntity* const crossing = ReferenceOf(*onGrid, "PlacementLocation");
  const EntityList* const axes =
      crossing == nullptr ? nullptr : ReferencesOf(*crossing, "IntersectingAxes");
  if (axes == nullptr) return grids;
  for (const IFC::IfcEntity* const axis : *axes) {
    const auto grid = gridOfAxis_.find(axis);
    if (grid != gridOfAxis_.end()) grids.push_back(grid->second);
  }
  return grids;
}

// What goes in a circle leads to nothing.
IFC::IfcEntity* GridsStoodOn::PlacementOnGrid(IFC::IfcEntity* placement) {
  way_.clear();
  IFC::IfcEntity* found = nullptr;
  for (IFC::IfcEntity* at = placement; at != nullptr; at = ReferenceOf(*at, "PlacementRelTo")) {
    if (isOnGrid_.IsTrueOf(*at)) {
      found = at;
      break;
    }
    const auto [known, isNew] = onGrid_.try_emplace(at, nullptr);
    if (!isNew) {
      found = known->second;
      break;
    }
    way_.push_back(at);
  }
  for (const IFC::IfcEntity* const at : way_) onGrid_[at] = found;
  return found;
}

}  // namespace corvel
