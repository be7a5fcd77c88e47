#include "merge/federation/tree/fold_placements.h"

#include <optional>
#include <span>
#include <stdexcept>
#include <unordered_map>
#include <unordered_set>

#include "core/entity_cast.h"
#include "merge/federation/attribute_values.h"
#include "merge/federation/tree/world_places.h"
#include "schema/interfaces/product.h"
#include "schema/registry.h"
#include "step/reader/parser.h"

namespace corvel {

namespace {

// Null where the release is left out of this build, and no model is of it.
const FactoryTable* TableOf(SchemaNamespace release) {
  try {
    return &FactoriesOf(release);
  } catch (const std::logic_error&) {
    return nullptr;
  }
}

// From a placement that goes to the first outside of it that stays.
struct WayOut {
  Transform place{};
  IFC::IfcEntity* outer = nullptr;
  bool isFlat = true;  // two-dimensional all the way
};

class Folding {
 public:
  Folding(FederatedModel& model, const std::vector<IFC::IfcEntity*>& left)
      : model_(model), left_(left) {
    for (IFC::IfcEntity* const placement : left) {
      if (isLocal_.IsTrueOf(*placement) && RelativePlaceOf(*placement)) going_.insert(placement);
    }
  }

  bool Run(Ticker& ticker, std::size_t& folded) {
    if (going_.empty()) return true;
    if (!Look(ticker)) return false;
    for (IFC::IfcEntity* const placement : standing_) {
      if (!going_.contains(OuterOf(*placement))) continue;
      if (!Fold(*placement, folded)) return false;
    }
    for (IFC::IfcEntity* const placement : left_) {
      if (!going_.contains(placement) || !model_.Contains(*placement)) continue;
      if (!needed_.contains(placement) && WayOutOf(*placement)) model_.Delete(*placement);
    }
    return true;
  }

 private:
  static std::optional<Transform> RelativePlaceOf(const IFC::IfcEntity& placement) {
    return PlaceOf(ReferenceOf(placement, "RelativePlacement"));
  }

  IFC::IfcEntity* OuterOf(const IFC::IfcEntity& placement) const {
    return model_.InModel(ReferenceOf(placement, "PlacementRelTo"));
  }

  // Which of them place another product, and what stands on them.
  bool Look(Ticker& ticker) {
    for (const auto& [number, entity] : model_.Container().entities) {
      if (entity->marker != IFC::kDeleted) Look(*entity);
      if (!ticker.Advance()) return false;
    }
    for (IFC::IfcEntity* const placement : used_) going_.erase(placement);
    std::erase_if(standing_,
                  [this](IFC::IfcEntity* placement) { return going_.contains(placement); });
    return true;
  }

  void Look(IFC::IfcEntity& entity) {
    if (isLocal_.IsTrueOf(entity)) {
      if (going_.contains(OuterOf(entity))) standing_.push_back(&entity);
    } else if (const auto* const product = EntityCast<IFC::VirtualIfcProduct>(&entity)) {
      IFC::IfcEntity* const placement = model_.InModel(product->getObjectPlacement());
      if (going_.contains(placement)) used_.push_back(placement);
    }
  }

  bool Fold(IFC::IfcEntity& placement, std::size_t& folded) {
    IFC::IfcEntity* const relative = ReferenceOf(placement, "RelativePlacement");
    const std::optional<WayOut> way = WayOutOf(*OuterOf(placement));
    const std::optional<Transform> place = PlaceOf(relative);
    if (!way || !place) {
      Need(OuterOf(placement));
      return true;
    }
    if (!Moves(*way)) return StandOn(placement, way->outer);
    const bool isFlat = way->isFlat && !IsSpatial(relative);
    IFC::IfcEntity* const made = MakePlace(*way, way->place.Around(*place), relative, isFlat);
    if (made == nullptr || !SetAttribute(placement, "RelativePlacement", made)) return false;
    ++folded;
    return StandOn(placement, way->outer);
  }

  static bool Moves(const WayOut& way) {
    return way.place.origin != Triple{} || !way.place.IsUpright();
  }

  static bool StandOn(IFC::IfcEntity& placement, IFC::IfcEntity* outer) {
    if (outer != nullptr) return SetAttribute(placement, "PlacementRelTo", outer);
    return AttributesOf(placement).Find("PlacementRelTo")->Clear();
  }

  // What cannot be folded keeps all that it stands on.
  void Need(IFC::IfcEntity* placement) {
    while (going_.contains(placement) && needed_.insert(placement).second) {
      placement = OuterOf(*placement);
    }
  }

  // Nothing in a circle.
  const std::optional<WayOut>& WayOutOf(IFC::IfcEntity& placement) {
    for (IFC::IfcEntity* at = &placement; going_.contains(at) && ways_.try_emplace(at).second;
         at = OuterOf(*at)) {
      chain_.push_back(at);
    }
    for (; !chain_.empty(); chain_.pop_back()) EnterWayOut(*chain_.back());
    return ways_[&placement];
  }

  void EnterWayOut(IFC::IfcEntity& placement) {
    IFC::IfcEntity* const outer = OuterOf(placement);
    const Transform relative = *RelativePlaceOf(placement);
    const bool isFlat = !IsSpatial(ReferenceOf(placement, "RelativePlacement"));
    if (!going_.contains(outer)) {
      ways_[&placement] = WayOut{relative, outer, isFlat};
    } else if (const auto& way = ways_[outer]) {
      ways_[&placement] = WayOut{way->place.Around(relative), way->outer, isFlat && way->isFlat};
    }
  }

  // Null (reported) when there is no number left. `old` may be null.
  IFC::IfcEntity* MakePlace(const WayOut& way, const Transform& place, const IFC::IfcEntity* old,
                            bool isFlat) {
    IFC::IfcEntity* const made =
        model_.Merged().CreateESet(isFlat ? "IfcAxis2Placement2D" : "IfcAxis2Placement3D");
    IFC::IfcEntity* const point =
        MakeNumbers("IfcCartesianPoint", "Coordinates", place.origin, isFlat);
    if (made == nullptr || point == nullptr) return nullptr;
    SetAttribute(*made, "Location", point);
    if (way.place.IsUpright() && IsSpatial(old) != isFlat) {
      return TakeAxes(*made, old) ? made : nullptr;
    }
    if (!isFlat && !SetDirection(*made, "Axis", place.z, isFlat)) return nullptr;
    return SetDirection(*made, "RefDirection", place.x, isFlat) ? made : nullptr;
  }

  // Nothing was turned, so that the directions are the old ones.
  static bool TakeAxes(IFC::IfcEntity& made, const IFC::IfcEntity* old) {
    for (const char* const attribute : {"Axis", "RefDirection"}) {
      IFC::IfcEntity* const direction = old == nullptr ? nullptr : ReferenceOf(*old, attribute);
      if (direction != nullptr && !SetAttribute(made, attribute, direction)) return false;
    }
    return true;
  }

  bool SetDirection(IFC::IfcEntity& made, std::string_view attribute, const Triple& direction,
                    bool isFlat) {
    IFC::IfcEntity* const ratios =
        MakeNumbers("IfcDirection", "DirectionRatios", direction, isFlat);
    return ratios != nullptr && SetAttribute(made, attribute, ratios);
  }

  IFC::IfcEntity* MakeNumbers(const char* className, std::string_view attribute,
                              const Triple& numbers, bool isFlat) {
    IFC::IfcEntity* const made = model_.Merged().CreateESet(className);
    if (made == nullptr) return nullptr;
    List<double> list;
    list.Assign(std::span(numbers).first(isFlat ? 2 : 3), model_.Container().Pool());
    return SetAttribute(*made, attribute, list) ? made : nullptr;
  }

  FederatedModel& model_;
  const std::vector<IFC::IfcEntity*>& left_;
  ClassQuestion isLocal_{"IfcLocalPlacement"};
  std::unordered_set<IFC::IfcEntity*> going_;
  std::unordered_set<IFC::IfcEntity*> needed_;
  std::vector<IFC::IfcEntity*> standing_;  // on those that go
  std::vector<IFC::IfcEntity*> used_;      // by products
  std::unordered_map<const IFC::IfcEntity*, std::optional<WayOut>> ways_;
  std::vector<IFC::IfcEntity*> chain_;
};

}  // namespace

bool PlacementsNeedProducts(const IfcDocument& document) {
  return document.GetParser().factories == TableOf(SchemaNamespace::IFC2X3);
}

bool PlacementsNeedProducts(const FederatedModel& model) {
  return PlacementsNeedProducts(model.Merged());
}

bool FoldPlacements(FederatedModel& model, const std::vector<IFC::IfcEntity*>& left, Ticker& ticker,
                    std::size_t& folded) {
  return Folding(model, left).Run(ticker, folded);
}

}  // namespace corvel
