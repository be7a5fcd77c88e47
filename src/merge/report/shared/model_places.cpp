#include "merge/report/shared/model_places.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <unordered_map>

#include "core/entity_cast.h"
#include "core/root_interfaces.h"
#include "merge/federation/attribute_values.h"
#include "merge/federation/tree/length_in_metres.h"
#include "merge/federation/tree/world_places.h"
#include "merge/report/shared/shape_boxes.h"
#include "merge/report/shared/spatial_tree.h"
#include "schema/interfaces/product.h"

namespace corvel {

namespace {

// What a class is to a drawing.
enum class Role { kDrawn, kStorey, kNotDrawn };

Role RoleOf(const ClassFacts* facts) {
  if (facts != nullptr && std::string_view(facts->name) == "IfcBuildingStorey") {
    return Role::kStorey;
  }
  for (; facts != nullptr; facts = facts->supertype) {
    for (const std::string_view name :
         {"IfcSpatialStructureElement", "IfcSpatialElement", "IfcFeatureElement", "IfcPort",
          "IfcVirtualElement", "IfcOpeningElement", "IfcAnnotation"}) {
      if (name == facts->name) return Role::kNotDrawn;
    }
  }
  return Role::kDrawn;
}

class PlaceCollector {
 public:
  PlaceCollector(const IfcDocument& merged, std::size_t mostPlaces)
      : merged_(merged),
        mostPlaces_(mostPlaces),
        metres_(MetresPerLengthUnit(merged.getIfcUnitAssignment())) {}

  void Look(const PlacedInput& input) {
    for (const auto& [product, isKept] : input.products) {
      if (!isKept) continue;
      IFC::IfcEntity& entity = *product;
      const ClassFacts* const facts = FindFacts(entity);
      const auto [role, isNew] = roles_.try_emplace(facts, Role::kNotDrawn);
      if (isNew) role->second = RoleOf(facts);
      if (role->second == Role::kStorey) AddStorey(entity, input.input);
      if (role->second == Role::kDrawn) AddCandidate(entity, facts, input.input);
    }
  }

  ModelPlaces Finish() {
    AddProducts();
    std::stable_sort(places_.storeys.begin(), places_.storeys.end(),
                     [](const auto& a, const auto& b) { return a.height < b.height; });
    places_.north = North();
    return std::move(places_);
  }

 private:
  struct Candidate {
    IFC::IfcEntity* entity = nullptr;
    const Transform* place = nullptr;
    std::uint32_t input = 0;
    std::uint32_t classIndex = 0;
  };

  // Null where it cannot be told.
  const Transform* PlaceOfProduct(IFC::IfcEntity& entity) {
    IFC::IfcEntity* const placement =
        EntityCast<IFC::VirtualIfcProduct>(&entity)->getObjectPlacement();
    if (placement == nullptr) return nullptr;
    const auto& place = worlds_.Of(*placement);
    return place ? &*place : nullptr;
  }

  void AddCandidate(IFC::IfcEntity& entity, const ClassFacts* facts, std::uint32_t input) {
    const Transform* const place = PlaceOfProduct(entity);
    if (place == nullptr) {
      ++places_.withoutPlace;
      return;
    }
    const auto next = static_cast<std::uint32_t>(places_.classes.size());
    const auto [known, isNew] = classes_.try_emplace(facts, next);
    if (isNew) places_.classes.push_back({facts->name, 0, 0});
    ++places_.classes[known->second].products;
    candidates_.push_back({&entity, place, input, known->second});
  }

  // A storey that stands nowhere, or at 0, has the height that it says.
  void AddStorey(IFC::IfcEntity& entity, std::uint32_t input) {
    const Transform* const place = PlaceOfProduct(entity);
    double height = place == nullptr ? 0.0 : place->origin[2];
    if (height == 0.0) height = RealOf(entity, "Elevation");
    if (std::isfinite(height)) {
      places_.storeys.push_back({input, TextOf(entity, "Name"), height * metres_});
    }
  }

  void AddProducts() {
    std::vector<std::size_t> seen(places_.classes.size(), 0);
    const std::size_t total = candidates_.size();
    for (const Candidate& candidate : candidates_) {
      ClassOfPlaces& own = places_.classes[candidate.classIndex];
      const std::size_t turn = seen[candidate.classIndex]++;
      if (total > mostPlaces_ && !IsListed(turn, own.products, total)) continue;
      ++own.listed;
      places_.products.push_back(PlaceFor(candidate));
    }
  }

  // Evenly among those of a class, and the first of each in any case.
  bool IsListed(std::size_t turn, std::size_t ofClass, std::size_t total) const {
    const std::size_t quota = std::max<std::size_t>(ofClass * mostPlaces_ / total, 1);
    return turn == 0 || turn * quota / ofClass != (turn - 1) * quota / ofClass;
  }

  ProductPlace PlaceFor(const Candidate& candidate) {
    const auto* const root = EntityCast<IFC::VirtualIfcRoot>(candidate.entity);
    ProductPlace product{candidate.input, candidate.classIndex,
                         root == nullptr ? std::string() : std::string(root->getGlobalId()),
                         TextOf(*candidate.entity, "Name"),
                         Times(candidate.place->origin, metres_)};
    product.box = BoxOf(candidate);
    return product;
  }

  std::optional<ProductBox> BoxOf(const Candidate& candidate) {
    const IFC::IfcEntity* const shape = ReferenceOf(*candidate.entity, "Representation");
    if (shape == nullptr) return std::nullopt;
    const Bounds own = boxes_.Of(*shape);
    if (own.isEmpty) return std::nullopt;
    // A product that leans is drawn by the box around it.
    constexpr double kUpright = 1.0 - 1e-6;
    const Transform& place = *candidate.place;
    const bool isUpright = place.z[2] >= kUpright;
    Bounds bounds;
    if (isUpright) {
      bounds = own;
    } else {
      bounds.Add(own, place);
    }
    ProductBox box;
    box.size = Times(Plus(bounds.high, Times(bounds.low, -1.0)), metres_);
    const Triple centre = Times(Plus(bounds.low, bounds.high), 0.5);
    box.centre = Times(isUpright ? place.Moved(centre) : centre, metres_);
    if (isUpright) {
      constexpr double kHalfTurn = 180.0;
      box.degrees = std::atan2(place.x[1], place.x[0]) * kHalfTurn / std::numbers::pi;
    }
    return box;
  }

  // Of the first context that tells.
  std::optional<std::array<double, 2>> North() const {
    const IFC::IfcEntity* const project = merged_.mainContainer->FirstProject();
    const EntityList* const contexts =
        project == nullptr ? nullptr : ReferencesOf(*project, "RepresentationContexts");
    if (contexts == nullptr) return std::nullopt;
    for (const IFC::IfcEntity* const context : *contexts) {
      const IFC::IfcEntity* const north =
          context == nullptr ? nullptr : ReferenceOf(*context, "TrueNorth");
      const List<double>* const ratios =
          north == nullptr ? nullptr : RealsOf(*north, "DirectionRatios");
      if (ratios == nullptr || ratios->size() < 2) continue;
      const double length = std::hypot((*ratios)[0], (*ratios)[1]);
      if (std::isfinite(length) && length > 0.0) {
        return std::array{(*ratios)[0] / length, (*ratios)[1] / length};
      }
    }
    return std::nullopt;
  }

  const IfcDocument& merged_;
  std::size_t mostPlaces_;
  double metres_;
  WorldPlaces worlds_;
  ShapeBoxes boxes_;
  std::unordered_map<const ClassFacts*, Role> roles_;
  std::unordered_map<const ClassFacts*, std::uint32_t> classes_;
  std::vector<Candidate> candidates_;
  ModelPlaces places_;
};

}  // namespace

ModelPlaces CollectPlaces(const IfcDocument& merged, const std::vector<PlacedInput>& inputs,
                          std::size_t mostPlaces) {
  PlaceCollector collector(merged, mostPlaces);
  for (const PlacedInput& input : inputs) collector.Look(input);
  ModelPlaces places = collector.Finish();
  places.tree = CollectSpatialTree(merged, inputs);
  return places;
}

}  // namespace corvel
