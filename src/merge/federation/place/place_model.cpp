#include "merge/federation/place/place_model.h"

#include <unordered_map>
#include <unordered_set>

#include "core/main_container.h"
#include "merge/federation/attribute_values.h"
#include "merge/federation/tree/fold_placements.h"
#include "merge/federation/tree/world_places.h"
#include "merge/new_placements.h"
#include "merge/outermost_placements.h"
#include "step/reader/parser.h"

namespace corvel {

namespace {

using IFC::IfcEntity;
using IFC::VirtualLocalPlacement;

// A zero has no sign in files that people read.
Triple Unsigned(const Triple& numbers) { return Plus(numbers, {}); }

void FileWith(IfcDocument& document, VirtualLocalPlacement& made, IfcEntity* axes) {
  made.marker = IFC::kUnfiled;  // filing gives it its number
  document.mainContainer->AddEntity(&made);
  made.setRelativePlacement(axes);
}

class HangingBelowPlace final : public PlacementAction {
 public:
  HangingBelowPlace(IfcDocument& document, VirtualLocalPlacement& root)
      : document_(document), root_(root) {}

  bool Place(VirtualLocalPlacement& outermost) override {
    outermost.setPlacementRelTo(&root_);
    return true;
  }

  void PlaceNew(VirtualLocalPlacement& made) override {
    if (atOrigin_ == nullptr) atOrigin_ = NewAxesAt(document_, {});
    if (atOrigin_ == nullptr) return;
    FileWith(document_, made, atOrigin_);
    made.setPlacementRelTo(&root_);
  }

 private:
  IfcDocument& document_;
  VirtualLocalPlacement& root_;
  IfcEntity* atOrigin_ = nullptr;  // made for the first product that needs it
};

class Multiplying final : public PlacementAction {
 public:
  Multiplying(IfcDocument& document, const Transform& place) : document_(document), place_(place) {}

  bool Place(VirtualLocalPlacement& outermost) override {
    // What goes in a circle stands nowhere.
    if (outermost.getPlacementRelTo() != nullptr) return false;
    IfcEntity* const axes = At(outermost.getRelativePlacement());
    if (axes != nullptr) outermost.setRelativePlacement(axes);
    return axes != nullptr;
  }

  void PlaceNew(VirtualLocalPlacement& made) override {
    if (IfcEntity* const axes = At(nullptr)) FileWith(document_, made, axes);
  }

 private:
  // Axes that several placements shared they go on sharing. Null for what is no place.
  IfcEntity* At(IfcEntity* relative) {
    const auto [known, isNew] = moved_.try_emplace(relative);
    if (!isNew) return known->second;
    const std::optional<Transform> place = PlaceOf(relative);
    if (place) known->second = NewAxesAt(document_, place_.Around(*place));
    return known->second;
  }

  IfcDocument& document_;
  Transform place_;
  std::unordered_map<IfcEntity*, IfcEntity*> moved_;
};

// From IFC4X2 on placements along a line, and on a grid, may be relative to others, which no
// product has to stand on: what these hang on in the end moves as well. A line that is relative to
// nothing is one of the world. A grid moves as the product that it is.
class HangingLines {
 public:
  HangingLines(IfcDocument& document, VirtualLocalPlacement& root)
      : document_(document), root_(root) {}

  void Run() {
    for (const auto& [number, entity] : document_.mainContainer->entities) {
      const bool isLinear = isLinear_.IsTrueOf(*entity);
      if (isLinear || isOnGrid_.IsTrueOf(*entity)) HangTopOf(*entity);
    }
  }

 private:
  void HangTopOf(IfcEntity& placement) {
    IfcEntity* at = &placement;
    while (at != &root_ && seen_.insert(at).second) {
      IfcEntity* const outer = ReferenceOf(*at, "PlacementRelTo");
      if (outer == nullptr) {
        Hang(*at);
        return;
      }
      at = outer;
    }
  }

  // In IFC4X1 a line is relative to its curve, which is none of those.
  void Hang(IfcEntity& top) {
    if (!isLinear_.IsTrueOf(top) && !isLocal_.IsTrueOf(top)) return;
    const auto outer = AttributesOf(top).Find("PlacementRelTo");
    if (outer && outer->Facts().Admits(&root_)) outer->Set(static_cast<IfcEntity*>(&root_));
  }

  IfcDocument& document_;
  VirtualLocalPlacement& root_;
  ClassQuestion isLinear_{"IfcLinearPlacement"};
  ClassQuestion isOnGrid_{"IfcGridPlacement"};
  ClassQuestion isLocal_{"IfcLocalPlacement"};
  std::unordered_set<const IfcEntity*> seen_;
};

bool HasLines(const IfcDocument& document) {
  return document.GetParser().factories->Find("IFCLINEARPLACEMENT") != nullptr;
}

bool HangBelow(IfcDocument& document, const Transform& place) {
  IfcEntity* const axes = NewAxesAt(document, place);
  VirtualLocalPlacement* const root = NewLocalPlacement(document, axes);
  if (root == nullptr) return false;
  root->marker = IFC::kNewRootPlacement;
  document.mainContainer->NoteChangedMarkers();
  HangingBelowPlace action(document, *root);
  ForEachOutermostPlacement(document, action);
  if (HasLines(document)) HangingLines(document, *root).Run();
  return true;
}

}  // namespace

IFC::IfcEntity* NewAxesAt(IfcDocument& document, const Transform& place) {
  IfcEntity* const point = NewPoint(document, Unsigned(place.origin));
  IfcEntity* const up = NewDirection(document, Unsigned(place.z));
  IfcEntity* const right = NewDirection(document, Unsigned(place.x));
  return NewAxes(document, point, up, right);
}

bool PlaceModel(IfcDocument& document, const Transform& place) {
  IFC::MainContainer& container = *document.mainContainer;
  container.ResetAllMarkers();
  if (PlacementsNeedProducts(document)) {
    Multiplying action(document, place);
    ForEachOutermostPlacement(document, action);
  } else if (!HangBelow(document, place)) {
    return false;
  }
  container.NoteChangedReferences();
  return !container.HasRunOutOfNumbers();
}

}  // namespace corvel
