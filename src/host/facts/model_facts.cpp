#include "host/facts/model_facts.h"

#include <algorithm>
#include <map>
#include <string_view>

#include "core/entity_cast.h"
#include "merge/federation/attribute_values.h"
#include "merge/federation/federated_model.h"
#include "merge/federation/per_class.h"
#include "merge/federation/tree/length_in_metres.h"
#include "schema/interfaces/product.h"
#include "schema/registry.h"

namespace corvel::host {

namespace {

enum class Kind : std::uint8_t { kOther, kProduct, kProject, kContext, kSystem, kApplication };

struct ClassCount {
  const ClassFacts* facts = nullptr;
  Kind kind = Kind::kOther;
  bool isRoot = false;
  std::uint64_t objects = 0;
};

Kind KindOf(const ClassFacts* facts) {
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

class FactsWalk {
 public:
  explicit FactsWalk(ModelFacts& facts) : facts_(facts), extent_(facts.metresPerLengthUnit) {}

  void Look(IFC::IfcEntity& entity) {
    ClassCount& known = classes_[places_.Of(entity, [&](const ClassFacts* facts) {
      const bool isRoot = EntityCast<IFC::VirtualIfcRoot>(&entity) != nullptr;
      classes_.push_back({facts, KindOf(facts), isRoot});
      return classes_.size() - 1;
    })];
    ++known.objects;
    if (known.isRoot) guids_.Add(*EntityCast<IFC::VirtualIfcRoot>(&entity));
    if (known.kind != Kind::kOther) Note(known.kind, entity);
  }

  void Finish() {
    facts_.extent = extent_.Result();
    facts_.doubledGuids = guids_.Result();
    // A class may have been read by several releases.
    std::map<std::string, std::uint64_t> byName;
    for (const ClassCount& count : classes_) {
      if (count.kind == Kind::kProduct) byName[count.facts->name] += count.objects;
    }
    facts_.products.assign(byName.begin(), byName.end());
    std::stable_sort(facts_.products.begin(), facts_.products.end(),
                     [](const auto& a, const auto& b) { return a.second > b.second; });
  }

 private:
  void Note(Kind kind, IFC::IfcEntity& entity) {
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

  ModelFacts& facts_;
  ExtentMeasure extent_;
  DoubledGuidSearch guids_;
  std::vector<ClassCount> classes_;
  PerClass<std::size_t> places_;  // among them
};

}  // namespace

std::uint64_t ModelFacts::ProductCount() const {
  std::uint64_t count = 0;
  for (const auto& product : products) count += product.second;
  return count;
}

ModelFacts ModelFactsOf(IfcDocument& document) {
  ModelFacts facts;
  facts.schemaIdentifier = document.KnownSchemaIdentifier();
  if (const auto release = FederatedModel({&document}).Release()) facts.release = NameOf(*release);
  facts.exporter = ExporterInHeader(document);
  facts.lengthUnit = LengthUnitOf(document);
  facts.metresPerLengthUnit = MetresPerLengthUnit(document.getIfcUnitAssignment());
  facts.units = UnitsOf(document);
  facts.georeference.conversion = MapConversionOf(document);
  facts.spatial = SpatialTreeOf(document);
  facts.objects = document.mainContainer->entities.Size();
  FactsWalk walk(facts);
  for (const auto& [number, entity] : document.mainContainer->entities) walk.Look(*entity);
  walk.Finish();
  return facts;
}

}  // namespace corvel::host
