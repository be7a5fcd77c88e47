#include "merge/federation/tree/storey_heights.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "merge/federation/attribute_values.h"
#include "merge/federation/tree/length_in_metres.h"

namespace corvel {

namespace {

constexpr double kSameHeightMetres = 1e-4;

struct Storey {
  SpatialObject* object = nullptr;
  bool hasPlacement = false;
  // In the unit of the model. Nothing where a placement leads nowhere.
  std::optional<double> placed{};
  std::optional<double> below{};  // what it is a part of
};

class StoreysOfModel {
 public:
  StoreysOfModel(WorldPlaces& places, double metresPerUnit)
      : places_(places), metresPerUnit_(metresPerUnit) {}

  void Add(SpatialObject& object) {
    Storey storey{&object};
    storey.hasPlacement = ReferenceOf(*object.entity, "ObjectPlacement") != nullptr;
    storey.placed = HeightOf(object);
    storey.below = HeightBelow(object);
    storeys_.push_back(storey);
  }

  void Measure() const {
    const bool noneStandsAnywhere =
        std::all_of(storeys_.begin(), storeys_.end(),
                    [this](const Storey& storey) { return IsUnmoved(storey); });
    for (const Storey& storey : storeys_) {
      std::optional<double> height = storey.placed;
      // One without a placement stands nowhere, whatever the others do.
      if (noneStandsAnywhere || !storey.hasPlacement) height = Elevated(storey);
      if (height && std::isfinite(*height)) storey.object->heightMetres = *height * metresPerUnit_;
    }
  }

 private:
  std::optional<double> HeightOf(const SpatialObject& object) const {
    IFC::IfcEntity* const placement = ReferenceOf(*object.entity, "ObjectPlacement");
    if (placement == nullptr) return std::nullopt;
    const auto& place = places_.Of(*placement);
    return place ? std::optional(place->origin[2]) : std::nullopt;
  }

  // The building, or what stands in its place; the project is at 0.
  std::optional<double> HeightBelow(const SpatialObject& object) const {
    for (const SpatialObject* at = object.parent; at != nullptr; at = at->parent) {
      if (at->isStorey) continue;
      if (ReferenceOf(*at->entity, "ObjectPlacement") != nullptr) return HeightOf(*at);
    }
    return 0.0;
  }

  bool IsUnmoved(const Storey& storey) const {
    if (!storey.hasPlacement) return true;
    if (!storey.placed || !storey.below) return false;
    return std::abs(*storey.placed - *storey.below) * metresPerUnit_ <= kSameHeightMetres;
  }

  static std::optional<double> Elevated(const Storey& storey) {
    const auto elevation = AttributesOf(*storey.object->entity).Find("Elevation");
    if (!elevation || !elevation->HasValue() || !storey.below) return std::nullopt;
    const auto* const value = elevation->As<double>();
    return value == nullptr ? std::nullopt : std::optional(*storey.below + *value);
  }

  WorldPlaces& places_;
  double metresPerUnit_;
  std::vector<Storey> storeys_;
};

}  // namespace

void MeasureStoreys(const FederatedModel& model, WorldPlaces& places, SpatialStructure& structure) {
  std::vector<StoreysOfModel> models;
  for (std::size_t input = 0; input < model.InputCount(); ++input) {
    models.emplace_back(places, MetresPerLengthUnit(model.Document(input).getIfcUnitAssignment()));
  }
  for (SpatialObject& object : structure.objects) {
    if (object.isStorey && object.isPlaced) models[object.input].Add(object);
  }
  for (const StoreysOfModel& ofModel : models) ofModel.Measure();
}

}  // namespace corvel
