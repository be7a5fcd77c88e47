// What people ask of a model first, found in one walk over its objects.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/text.h"
#include "host/facts/doubled_guids.h"
#include "host/facts/exporter.h"
#include "host/facts/extent.h"
#include "host/facts/georeference.h"
#include "host/facts/spatial_facts.h"
#include "host/facts/unit_facts.h"
#include "host/model_frame.h"
#include "merge/document.h"
#include "merge/federation/per_class.h"
#include "merge/federation/tree/spatial_structure.h"

namespace corvel::host {

struct ModelFacts {
  WideString schemaIdentifier;  // as the file has it
  std::string release;          // whose classes serve it: "IFC4"
  std::uint64_t objects = 0;    // records
  Exporter exporter;
  LengthUnit lengthUnit;  // see model_frame.h
  double metresPerLengthUnit = 1.0;
  std::vector<UnitFacts> units;
  Georeference georeference;
  std::vector<std::uint32_t> projects;  // records
  SpatialTree spatial;
  // Objects of IfcProduct by class ("IfcWall"), the most frequent first, equal ones by name.
  std::vector<std::pair<std::string, std::uint64_t>> products;
  Extent extent;
  std::vector<DoubledGuid> doubledGuids;

  std::uint64_t ProductCount() const;
};

// Of a model that has been read and not been folded into another; it stays as it is. Linear in the
// objects.
ModelFacts ModelFactsOf(IfcDocument& document);

// The same for whoever walks over the objects of such a model anyway.
class ModelFactsWalk {
 public:
  // Borrows the document.
  explicit ModelFactsWalk(IfcDocument& document);

  // All of them, in ascending number.
  void Look(IFC::IfcEntity& entity);
  // Behind the last. Nothing is left here.
  ModelFacts Finish();

 private:
  enum class Kind : std::uint8_t { kOther, kProduct, kProject, kContext, kSystem, kApplication };
  struct ClassCount {
    const ClassFacts* facts = nullptr;
    Kind kind = Kind::kOther;
    bool isRoot = false;
    bool isSpatial = false;        // stands in the tree, or says what does
    bool mayBeConversion = false;  // see MapConversionIn
    std::uint64_t objects = 0;
  };

  static Kind KindOf(const ClassFacts* facts);
  ClassCount CountOf(IFC::IfcEntity& entity, const ClassFacts* facts);
  void Note(Kind kind, IFC::IfcEntity& entity);

  IfcDocument& document_;
  ModelFacts facts_;
  ExtentMeasure extent_;
  DoubledGuidSearch guids_;
  SpatialRoles roles_;
  std::vector<IFC::IfcEntity*> spatial_;
  std::vector<ClassCount> classes_;
  PerClass<std::size_t> places_;  // among them
};

}  // namespace corvel::host
