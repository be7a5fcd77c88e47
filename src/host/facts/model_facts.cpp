#include "host/facts/model_facts.h"

#include <algorithm>
#include <map>
#include <string_view>

#include "core/entity_cast.h"
#include "merge/federation/attribute_values.h"
#include "merge/federation/federated_model.h"
#include "merge/federation/tree/length_in_metres.h"
#include "schema/interfaces/product.h"
#include "schema/interfaces/properties.h"
#include "schema/registry.h"

namespace corvel::host {

ModelFactsWalk::Kind ModelFactsWalk::KindOf(const ClassFacts* facts) {
  for (; facts != nullptr; facts = facts->supertype) {
    const std::string_view name = facts->name;
    if (name == "IfcProduct") return Kind::kProduct;
    if (name == "IfcProject") return Kind::kProject;
    if (name == "IfcGeometricRepresentationContext") return Kind::kContext;
    if (name == "IfcCoordinateReferenceSystem") return Kind::kSystem;
    if (name == "IfcApplication") return Kind::kApplication;
  }
  return Kind::kOther;
}

ModelFactsWalk::ModelFactsWalk(IfcDocument& document)
    : document_(document), extent_(MetresPerLengthUnit(document.getIfcUnitAssignment())) {
  facts_.metresPerLengthUnit = MetresPerLengthUnit(document.getIfcUnitAssignment());
}

ModelFactsWalk::ClassCount ModelFactsWalk::CountOf(IFC::IfcEntity& entity,
                                                   const ClassFacts* facts) {
  return {.facts = facts,
          .kind = KindOf(facts),
          .isRoot = EntityCast<IFC::VirtualIfcRoot>(&entity) != nullptr,
          .isSpatial = roles_.Of(entity) != SpatialRole::kOther,
          .mayBeConversion = IsOrIsBelow(facts, "IfcMapConversion") ||
                             EntityCast<IFC::VirtualIfcPropertySet>(&entity) != nullptr};
}

void ModelFactsWalk::Look(IFC::IfcEntity& entity) {
  ClassCount& known = classes_[places_.Of(entity, [&](const ClassFacts* facts) {
    classes_.push_back(CountOf(entity, facts));
    return classes_.size() - 1;
  })];
  ++known.objects;
  if (known.isRoot) guids_.Add(*EntityCast<IFC::VirtualIfcRoot>(&entity));
  if (known.isSpatial) spatial_.push_back(&entity);
  if (known.kind != Kind::kOther) Note(known.kind, entity);
  auto& conversion = facts_.georeference.conversion;
  if (known.mayBeConversion && !conversion) conversion = MapConversionIn(entity);
}

void ModelFactsWalk::Note(Kind kind, IFC::IfcEntity& entity) {
  Georeference& place = facts_.georeference;
  switch (kind) {
    case Kind::kProduct:
      extent_.Add(EntityCast<IFC::VirtualIfcProduct>(&entity)->getObjectPlacement());
      break;
    case Kind::kProject: facts_.projects.push_back(entity.marker); break;
    case Kind::kContext:
      if (!place.trueNorthDegrees) place.trueNorthDegrees = TrueNorthOf(entity);
      break;
    case Kind::kSystem:
      if (place.system.empty()) place.system = TextOf(entity, "Name");
      break;
    case Kind::kApplication: {
      WideString& application = facts_.exporter.application;
      if (application.empty()) application = ApplicationText(entity);
      break;
    }
    case Kind::kOther: break;
  }
}

ModelFacts ModelFactsWalk::Finish() {
  ModelFacts facts = std::move(facts_);
  facts.schemaIdentifier = document_.KnownSchemaIdentifier();
  if (const auto release = FederatedModel({&document_}).Release()) facts.release = NameOf(*release);
  WideString application = std::move(facts.exporter.application);
  facts.exporter = ExporterInHeader(document_);
  facts.exporter.application = std::move(application);
  facts.lengthUnit = LengthUnitOf(document_);
  facts.units = UnitsOf(document_);
  facts.spatial = SpatialTreeOf(document_, spatial_);
  facts.objects = document_.mainContainer->entities.Size();
  facts.extent = extent_.Result();
  facts.doubledGuids = guids_.Result();
  // A class may have been read by several releases.
  std::map<std::string, std::uint64_t> byName;
  for (const ClassCount& count : classes_) {
    if (count.kind == Kind::kProduct) byName[count.facts->name] += count.objects;
  }
  facts.products.assign(byName.begin(), byName.end());
  std::stable_sort(facts.products.begin(), facts.products.end(),
                   [](const auto& a, const auto& b) { return a.second > b.second; });
  return facts;
}

std::uint64_t ModelFacts::ProductCount() const {
  std::uint64_t count = 0;
  for (const auto& product : products) count += product.second;
  return count;
}

ModelFacts ModelFactsOf(IfcDocument& document) {
  ModelFactsWalk walk(document);
  for (const auto& [number, entity] : document.mainContainer->entities) walk.Look(*entity);
  return walk.Finish();
}

}  // namespace corvel::host
