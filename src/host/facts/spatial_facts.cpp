#include "host/facts/spatial_facts.h"

#include <algorithm>
#include <limits>

#include "merge/federation/attribute_values.h"
#include "merge/federation/federated_model.h"
#include "merge/federation/tree/length_in_metres.h"
#include "merge/federation/tree/spatial_structure.h"
#include "merge/federation/tree/storey_heights.h"
#include "merge/federation/tree/world_places.h"

namespace corvel::host {

namespace {

std::optional<double> ElevationOf(const IFC::IfcEntity& storey) {
  const auto elevation = AttributesOf(storey).Find("Elevation");
  const auto* const value = elevation ? elevation->As<double>() : nullptr;
  return value == nullptr ? std::nullopt : std::optional(*value);
}

SpatialFacts FactsOf(const SpatialObject& object, double metresPerUnit) {
  SpatialFacts facts;
  facts.number = object.entity->marker;
  facts.className = FindFacts(*object.entity)->name;
  facts.guid = object.guid;
  facts.name = TextOf(*object.entity, "Name");
  if (!object.isStorey) return facts;
  if (const auto elevation = ElevationOf(*object.entity)) {
    facts.elevationMetres = *elevation * metresPerUnit;
  }
  facts.heightMetres = object.heightMetres;
  return facts;
}

// Storeys of which nobody knows where they are come last.
double HeightOf(const SpatialFacts& storey) {
  constexpr double kNowhere = std::numeric_limits<double>::infinity();
  return storey.heightMetres.value_or(storey.elevationMetres.value_or(kNowhere));
}

}  // namespace

SpatialTree SpatialTreeOf(IfcDocument& document, const std::vector<IFC::IfcEntity*>& objects) {
  const FederatedModel model({&document});
  SpatialStructure structure;
  CollectSpatialStructure(objects, structure);
  WorldPlaces places;
  MeasureStoreys(model, places, structure);
  const double metresPerUnit = MetresPerLengthUnit(document.getIfcUnitAssignment());
  SpatialTree tree;
  for (const SpatialObject& object : structure.objects) {
    const SpatialFacts facts = FactsOf(object, metresPerUnit);
    if (object.level.rank == SpatialRank::kSite) tree.sites.push_back(facts);
    if (object.level.rank == SpatialRank::kFacility) tree.buildings.push_back(facts);
    if (object.isStorey) tree.storeys.push_back(facts);
  }
  std::stable_sort(
      tree.storeys.begin(), tree.storeys.end(),
      [](const auto& one, const auto& other) { return HeightOf(one) < HeightOf(other); });
  return tree;
}

}  // namespace corvel::host
