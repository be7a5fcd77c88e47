#include "merge/federation/relations/inverse_bounds.h"

#include "schema/attributes.h"

namespace corvel {

namespace {

using enum SchemaNamespace;

constexpr std::uint16_t Only(SchemaNamespace release) {
  return static_cast<std::uint16_t>(1u << static_cast<unsigned>(release));
}

constexpr std::uint16_t Since(SchemaNamespace release) {
  return static_cast<std::uint16_t>(~(Only(release) - 1u));
}

constexpr std::uint16_t Until(SchemaNamespace release) {
  return static_cast<std::uint16_t>((Only(release) - 1u) | Only(release));
}

constexpr std::uint16_t Between(SchemaNamespace first, SchemaNamespace last) {
  return Since(first) & Until(last);
}

constexpr std::uint16_t kEach = Since(IFC2X_FINAL);
// The platform of 2x2 is without flow control, structural analysis and schedules.
constexpr std::uint16_t kWhole2x2 = Between(IFC2X2_FINAL, IFC2X3);

constexpr InverseBound kBounds[] = {
    // Where an object stands.
    {"IfcElement", "IfcRelContainedInSpatialStructure", "RelatedElements", 0, 1, kEach},
    {"IfcAnnotation", "IfcRelContainedInSpatialStructure", "RelatedElements", 0, 1,
     Since(IFC2X2_PLATFORM)},
    {"IfcGrid", "IfcRelContainedInSpatialStructure", "RelatedElements", 0, 1,
     Between(IFC2X2_PLATFORM, IFC4)},
    {"IfcPositioningElement", "IfcRelContainedInSpatialStructure", "RelatedElements", 0, 1,
     Since(IFC4X1)},
    {"IfcProduct", "IfcRelPositions", "RelatedProducts", 0, 1, Only(IFC4X2)},
    // What it is a part of, and what its parts are.
    {"IfcObject", "IfcRelDecomposes", "RelatingObject", 0, 1, Only(IFC2X_FINAL)},
    {"IfcObject", "IfcRelDecomposes", "RelatedObjects", 0, 1,
     Between(IFC2X2_PLATFORM, IFC2X2_FINAL)},
    {"IfcObjectDefinition", "IfcRelDecomposes", "RelatedObjects", 0, 1, Only(IFC2X3)},
    {"IfcObjectDefinition", "IfcRelAggregates", "RelatedObjects", 0, 1, Since(IFC4)},
    {"IfcObjectDefinition", "IfcRelNests", "RelatedObjects", 0, 1, Since(IFC4)},
    {"IfcObjectDefinition", "IfcRelDeclares", "RelatedDefinitions", 0, 1, Since(IFC4)},
    {"IfcPropertyDefinition", "IfcRelDeclares", "RelatedDefinitions", 0, 1, Since(IFC4)},
    // What defines it.
    {"IfcObject", "IfcRelDefinesByType", "RelatedObjects", 0, 1, Since(IFC4)},
    {"IfcObject", "IfcRelDefinesByObject", "RelatedObjects", 0, 1, Since(IFC4)},
    {"IfcTypeObject", "IfcRelDefinesByType", "RelatingType", 0, 1, kEach},
    {"IfcPropertySetDefinition", "IfcRelDefinesByProperties", "RelatingPropertyDefinition", 0, 1,
     Until(IFC2X3)},
    {"IfcMaterialUsageDefinition", "IfcRelAssociatesMaterial", "RelatingMaterial", 1, 0,
     Since(IFC4)},
    // Features, and what they are in.
    {"IfcBuildingElement", "IfcRelFillsElement", "RelatedBuildingElement", 0, 1, Only(IFC2X_FINAL)},
    {"IfcElement", "IfcRelFillsElement", "RelatedBuildingElement", 0, 1, Since(IFC2X2_PLATFORM)},
    {"IfcOpeningElement", "IfcRelVoidsElement", "RelatedOpeningElement", 1, 1, Only(IFC2X_FINAL)},
    {"IfcFeatureElementSubtraction", "IfcRelVoidsElement", "RelatedOpeningElement", 1, 1,
     Since(IFC2X2_PLATFORM)},
    {"IfcFeatureElementAddition", "IfcRelProjectsElement", "RelatedFeatureElement", 1, 1,
     Since(IFC2X2_PLATFORM)},
    {"IfcSurfaceFeature", "IfcRelAdheresToElement", "RelatedSurfaceFeatures", 1, 1,
     Since(IFC4X3_ADD2)},
    {"IfcCovering", "IfcRelCoversBldgElements", "RelatedCoverings", 0, 1, kEach},
    {"IfcCovering", "IfcRelCoversSpaces", "RelatedCoverings", 0, 1, Since(IFC2X3)},
    {"IfcRelSpaceBoundary2ndLevel", "IfcRelSpaceBoundary2ndLevel", "CorrespondingBoundary", 0, 1,
     Since(IFC4)},
    // Networks.
    {"IfcPort", "IfcRelConnectsPorts", "RelatingPort", 0, 1, Since(IFC2X2_PLATFORM)},
    {"IfcPort", "IfcRelConnectsPorts", "RelatedPort", 0, 1, Since(IFC2X2_PLATFORM)},
    {"IfcPort", "IfcRelConnectsPortToElement", "RelatingPort", 1, 1,
     Between(IFC2X2_PLATFORM, IFC2X3)},
    {"IfcPort", "IfcRelConnectsPortToElement", "RelatingPort", 0, 1, Since(IFC4)},
    {"IfcControlElement", "IfcRelFlowControlElements", "RelatedControlElements", 0, 1,
     Only(IFC2X_FINAL)},
    {"IfcDistributionControlElement", "IfcRelFlowControlElements", "RelatedControlElements", 0, 1,
     Since(IFC2X2_FINAL)},
    {"IfcDistributionFlowElement", "IfcRelFlowControlElements", "RelatingFlowElement", 0, 1,
     Only(IFC2X_FINAL) | Since(IFC2X2_FINAL)},
    {"IfcSystem", "IfcRelServicesBuildings", "RelatingSystem", 0, 1, kEach},
    // Structures, groups and schedules.
    {"IfcStructuralActivity", "IfcRelConnectsStructuralActivity", "RelatedStructuralActivity", 1, 1,
     kWhole2x2},
    {"IfcStructuralActivity", "IfcRelConnectsStructuralActivity", "RelatedStructuralActivity", 0, 1,
     Since(IFC4)},
    {"IfcStructuralConnection", "IfcRelConnectsStructuralMember", "RelatedStructuralConnection", 1,
     0, Since(IFC2X2_FINAL)},
    {"IfcGroup", "IfcRelAssignsToGroup", "RelatingGroup", 1, 1, Until(IFC2X3)},
    {"IfcScheduleTimeControl", "IfcRelAssignsTasks", "TimeForTask", 1, 1,
     Only(IFC2X_FINAL) | kWhole2x2},
    // Not said as a bounded inverse: a rule wants one type at most, and of two materials nobody
    // could tell which one counts.
    {"IfcObject", "IfcRelDefinesByType", "RelatedObjects", 0, 1, Until(IFC2X3), false},
    {"IfcRoot", "IfcRelAssociatesMaterial", "RelatedObjects", 0, 1, kEach, false},
};

}  // namespace

std::span<const InverseBound> InverseBounds() { return kBounds; }

BoundsOfRelations::BoundsOfRelations(std::optional<SchemaNamespace> release) : release_(release) {
  for (const InverseBound& bound : kBounds) owners_.emplace_back(bound.owner);
}

std::vector<BoundsOfRelations::Bound> BoundsOfRelations::BoundsOf(const ClassFacts* facts) const {
  std::vector<Bound> bounds;
  if (!release_) return bounds;
  for (const ClassFacts* at = facts; at != nullptr; at = at->supertype) {
    for (std::size_t i = 0; i < std::size(kBounds); ++i) {
      if (kBounds[i].relation != at->name || !kBounds[i].HoldsIn(*release_)) continue;
      const AttributeFacts* const attribute = facts->FindAttribute(kBounds[i].attribute);
      if (attribute != nullptr) bounds.push_back({&kBounds[i], attribute, i});
    }
  }
  return bounds;
}

}  // namespace corvel
