#include "merge/project_offsets.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "core/entity_cast.h"
#include "core/main_container.h"
#include "merge/length_unit.h"
#include "merge/new_placements.h"
#include "merge/outermost_placements.h"
#include "schema/interfaces/geometry.h"
#include "step/reader/parser.h"

namespace corvel {

namespace {

using IFC::IfcEntity;
using IFC::VirtualLocalPlacement;
using Vector = std::array<double, 3>;

// In metres.
Vector CenterOf(HostScene& scene) {
  const CoordinateCenters centers = scene.Centers();
  Vector center;
  for (std::size_t i = 0; i < center.size(); ++i) {
    // Not the negative of the sum, which for 0 is a zero with a sign.
    center[i] = 0.0 - (centers.second[i] + centers.first[i]);
  }
  return center;
}

// Their units differ, and still it is their plain sum that tells whether there is anything to do.
bool IsUnmoved(const Vector& center, const Vector& offset) {
  for (std::size_t i = 0; i < center.size(); ++i) {
    if (center[i] + offset[i] != 0.0) return false;  // a NaN is no zero
  }
  return true;
}

// In the length unit of the model.
Vector ShiftOf(const Vector& center, const Vector& offset, IfcDocument& document) {
  const IfcEntity* const units = document.getIfcUnitAssignment();
  const ErrorReporter showError = document.GetParser().showError;
  const double millimetresPerUnit = MillimetresPerLengthUnit(units, showError);
  const double unitsPerMetre = LengthUnitsPerMetre(units, showError);
  Vector shift;
  for (std::size_t i = 0; i < shift.size(); ++i) {
    shift[i] = center[i] * unitsPerMetre + offset[i] / millimetresPerUnit;
  }
  return shift;
}

VirtualLocalPlacement* NewRoot(IfcDocument& document, const Vector& shift) {
  IfcEntity* const point = NewPoint(document, shift);
  IfcEntity* const up = NewDirection(document, {0.0, 0.0, 1.0});
  IfcEntity* const right = NewDirection(document, {1.0, 0.0, 0.0});
  IfcEntity* const axes = NewAxes(document, point, up, right);
  VirtualLocalPlacement* const root = NewLocalPlacement(document, axes);
  if (root == nullptr) return nullptr;
  root->marker = IFC::kNewRootPlacement;
  document.mainContainer->NoteChangedMarkers();
  return root;
}

// Hangs placements below a new one.
class HangingBelow final : public PlacementAction {
 public:
  HangingBelow(IfcDocument& document, VirtualLocalPlacement& newRoot)
      : document_(document), newRoot_(newRoot) {}

  // False for what has no placement in 3D.
  bool Place(VirtualLocalPlacement& outermost) override {
    if (EntityCast<IFC::VirtualIfcAxis2Placement3D>(outermost.getRelativePlacement()) == nullptr) {
      return false;
    }
    outermost.setPlacementRelTo(&newRoot_);
    return true;
  }

  void PlaceNew(VirtualLocalPlacement& made) override {
    if (axesAtOrigin_ == nullptr) {
      axesAtOrigin_ = NewAxes(document_, NewPoint(document_, {}), nullptr, nullptr);
      if (axesAtOrigin_ == nullptr) return;
    }
    made.marker = IFC::kUnfiled;  // filing gives it its number
    document_.mainContainer->AddEntity(&made);
    made.setRelativePlacement(axesAtOrigin_);
    made.setPlacementRelTo(&newRoot_);
  }

 private:
  IfcDocument& document_;
  VirtualLocalPlacement& newRoot_;
  IfcEntity* axesAtOrigin_ = nullptr;  // made for the first product that needs them
};

}  // namespace

std::array<double, 3> OffsetOf(HostObject project, HostScene& scene) {
  const std::vector<ProjectOffsetRecord> records = scene.ProjectOffsets();
  const auto found = std::find_if(records.begin(), records.end(), [project](const auto& record) {
    return record.project == project;
  });
  return found == records.end() ? Vector{} : Vector{found->x, found->y, found->z};
}

bool IsMoved(HostObject project, HostScene& scene) {
  return !IsUnmoved(CenterOf(scene), OffsetOf(project, scene));
}

bool ApplyProjectOffsets(IfcDocument& document, HostObject project, HostScene& scene,
                         std::array<double, 3>* applied) {
  const Vector offset = OffsetOf(project, scene);
  const Vector center = CenterOf(scene);
  if (IsUnmoved(center, offset)) return true;
  const Vector shift = ShiftOf(center, offset, document);
  if (applied != nullptr) *applied = shift;
  document.mainContainer->ResetAllMarkers();
  VirtualLocalPlacement* const newRoot = NewRoot(document, shift);
  if (newRoot == nullptr) return false;
  HangingBelow action(document, *newRoot);
  ForEachOutermostPlacement(document, action);
  document.mainContainer->NoteChangedReferences();
  return !document.mainContainer->HasRunOutOfNumbers();
}

}  // namespace corvel
