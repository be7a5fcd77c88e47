#include "merge/project_offsets.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <unordered_set>
#include <vector>

#include "core/entity_cast.h"
#include "core/main_container.h"
#include "merge/length_unit.h"
#include "schema/interfaces/geometry.h"
#include "schema/interfaces/product.h"
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

// Once a model is out of numbers nothing new comes into it: where the last of several new entities
// is there, so are those before it.

IfcEntity* NewPoint(IfcDocument& document, const Vector& coordinates) {
  IfcEntity* const point = document.CreateESet("IFCCARTESIANPOINT");
  if (point == nullptr) return nullptr;
  EntityCast<IFC::VirtualIfcCartesianPoint>(point)->setCoordinates(
      {coordinates.begin(), coordinates.end()}, document.mainContainer->Pool());
  return point;
}

IfcEntity* NewDirection(IfcDocument& document, const Vector& ratios) {
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

VirtualLocalPlacement* NewRoot(IfcDocument& document, const Vector& shift) {
  IfcEntity* const point = NewPoint(document, shift);
  IfcEntity* const up = NewDirection(document, {0.0, 0.0, 1.0});
  IfcEntity* const right = NewDirection(document, {1.0, 0.0, 0.0});
  IfcEntity* const axes = NewAxes(document, point, up, right);
  auto* const root = EntityCast<VirtualLocalPlacement>(document.CreateESet("IFCLOCALPLACEMENT"));
  if (root == nullptr) return nullptr;
  root->setRelativePlacement(axes);
  root->marker = IFC::kNewRootPlacement;
  document.mainContainer->NoteChangedMarkers();
  return root;
}

// Puts the products of a model below a new placement. Each placement is visited once: the top of
// the chain above a visited one has had its turn. So no walk comes to the new placement itself.
class ProductMove {
 public:
  ProductMove(IfcDocument& document, VirtualLocalPlacement& newRoot)
      : document_(document), newRoot_(newRoot), generation_(IFC::NextVisitGeneration()) {}

  void MoveAll();

 private:
  void Move(IFC::VirtualIfcProduct& product);
  void PlaceAtOrigin(VirtualLocalPlacement& made);
  void MoveTopAbove(VirtualLocalPlacement& placement);
  void MoveCircle(VirtualLocalPlacement& firstRepeated);
  bool HangBelowRoot(VirtualLocalPlacement& top);

  IfcDocument& document_;
  VirtualLocalPlacement& newRoot_;
  std::uint32_t generation_;
  IfcEntity* axesAtOrigin_ = nullptr;        // made for the first product that needs them
  std::vector<VirtualLocalPlacement*> way_;  // kept for its storage
  // Members of circles that could not be opened where they were entered. A product that enters
  // them elsewhere may do it.
  std::unordered_set<VirtualLocalPlacement*> closedCircles_;
};

// Made placements are filed while the walk goes on, ahead of it for the most part; none of them is
// a product.
void ProductMove::MoveAll() {
  const IFC::MainContainer& container = *document_.mainContainer;
  for (const auto& [number, entity] : container.entities) {
    if (container.HasRunOutOfNumbers()) return;
    if (auto* const product = EntityCast<IFC::VirtualIfcProduct>(entity)) Move(*product);
  }
}

void ProductMove::Move(IFC::VirtualIfcProduct& product) {
  if (IfcEntity* const own = product.getObjectPlacement()) {
    if (auto* const local = EntityCast<VirtualLocalPlacement>(own)) MoveTopAbove(*local);
    return;
  }
  // It would be given a placement of its own release, which can be put nowhere in this model.
  if (product.carries) return;
  VirtualLocalPlacement* const made = product.getRootPlacement(document_.mainContainer->Pool());
  if (made != nullptr && made->marker == IFC::kMadePlacement) PlaceAtOrigin(*made);
}

void ProductMove::PlaceAtOrigin(VirtualLocalPlacement& made) {
  if (axesAtOrigin_ == nullptr) {
    axesAtOrigin_ = NewAxes(document_, NewPoint(document_, {}), nullptr, nullptr);
    if (axesAtOrigin_ == nullptr) return;
  }
  made.marker = IFC::kUnfiled;  // filing gives it its number
  document_.mainContainer->AddEntity(&made);
  made.setRelativePlacement(axesAtOrigin_);
  made.setPlacementRelTo(&newRoot_);
}

void ProductMove::MoveTopAbove(VirtualLocalPlacement& placement) {
  way_.clear();
  VirtualLocalPlacement* at = &placement;
  while (at->visitStamp != generation_) {
    at->visitStamp = generation_;
    way_.push_back(at);
    IfcEntity* const relativeTo = at->getPlacementRelTo();
    auto* const next = EntityCast<VirtualLocalPlacement>(relativeTo);
    if (next == nullptr) {
      const bool isOnAnotherKind = relativeTo != nullptr;  // a grid, a line
      if (!isOnAnotherKind) HangBelowRoot(*at);
      return;
    }
    at = next;
  }
  // Met on this way, `at` closes a circle; met on an earlier one, it has had its turn,
  // and nothing is found.
  const auto circle = std::find(way_.begin(), way_.end(), at);
  closedCircles_.insert(circle, way_.end());
  if (closedCircles_.count(at) != 0) MoveCircle(*at);
}

void ProductMove::MoveCircle(VirtualLocalPlacement& firstRepeated) {
  auto* next = EntityCast<VirtualLocalPlacement>(firstRepeated.getPlacementRelTo());
  if (!HangBelowRoot(firstRepeated)) return;
  closedCircles_.erase(&firstRepeated);
  for (; next != &firstRepeated;
       next = EntityCast<VirtualLocalPlacement>(next->getPlacementRelTo())) {
    closedCircles_.erase(next);
  }
}

// False for what has no placement in 3D.
bool ProductMove::HangBelowRoot(VirtualLocalPlacement& top) {
  if (EntityCast<IFC::VirtualIfcAxis2Placement3D>(top.getRelativePlacement()) == nullptr) {
    return false;
  }
  top.setPlacementRelTo(&newRoot_);
  return true;
}

}  // namespace

std::array<double, 3> OffsetOf(HostObject project, HostScene& scene) {
  const std::vector<ProjectOffsetRecord> records = scene.ProjectOffsets();
  const auto found = std::find_if(records.begin(), records.end(), [project](const auto& record) {
    return record.project == project;
  });
  return found == records.end() ? Vector{} : Vector{found->x, found->y, found->z};
}

bool ApplyProjectOffsets(IfcDocument& document, HostObject project, HostScene& scene) {
  const Vector offset = OffsetOf(project, scene);
  const Vector center = CenterOf(scene);
  if (IsUnmoved(center, offset)) return true;
  const Vector shift = ShiftOf(center, offset, document);
  document.mainContainer->ResetAllMarkers();
  VirtualLocalPlacement* const newRoot = NewRoot(document, shift);
  if (newRoot == nullptr) return false;
  ProductMove(document, *newRoot).MoveAll();
  document.mainContainer->NoteChangedReferences();
  return !document.mainContainer->HasRunOutOfNumbers();
}

}  // namespace corvel
