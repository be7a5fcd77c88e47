#include "merge/federation/pointing_classes.h"

#include "schema/attributes.h"

namespace corvel {

namespace {

struct PointingClass {
  std::string_view className;  // and its subtypes
  std::string_view attribute;  // what it describes
};

// Of all releases: a class may lack an attribute that it has in another. Where two attributes stand
// for one class, the object stays for either of them.
constexpr PointingClass kPointing[] = {
    // Looks of shapes.
    {"IfcStyledItem", "Item"},
    {"IfcPresentationLayerAssignment", "AssignedItems"},
    {"IfcIndexedColourMap", "MappedTo"},
    {"IfcIndexedTextureMap", "MappedTo"},
    {"IfcTextureMap", "MappedTo"},
    {"IfcTextureCoordinateGenerator", "Maps"},
    {"IfcTextureCoordinate", "Texture"},
    {"IfcSurfaceStyleUsage", "Style"},
    {"IfcShapeAspect", "PartOfProductDefinitionShape"},
    {"IfcReferenceVertex", "Vertex"},
    {"IfcReferenceEdge", "Edge"},
    {"IfcReferenceFace", "Face"},
    {"IfcDraughtingCalloutRelationship", "RelatingDraughtingCallout"},
    {"IfcTerminatorSymbol", "AnnotatedCurve"},
    {"IfcPresentationLightSource", "InContext"},
    {"IfcConnectionConstraint", "ConstraintOf"},
    // Materials and profiles.
    {"IfcMaterialProperties", "Material"},
    {"IfcProfileProperties", "ProfileDefinition"},
    {"IfcMaterialDefinitionRepresentation", "RepresentedMaterial"},
    {"IfcMaterialClassificationRelationship", "ClassifiedMaterial"},
    {"IfcMaterialRelationship", "RelatingMaterial"},
    // Places on the map.
    {"IfcCoordinateOperation", "SourceCRS"},
    {"IfcWellKnownText", "CoordinateReferenceSystem"},
    // Documents, approvals, constraints, costs, and who is who.
    {"IfcExternalReferenceRelationship", "RelatedResourceObjects"},
    {"IfcResourceApprovalRelationship", "RelatedResourceObjects"},
    {"IfcResourceConstraintRelationship", "RelatedResourceObjects"},
    {"IfcApprovalActorRelationship", "Approval"},
    {"IfcApprovalPropertyRelationship", "ApprovedProperties"},
    {"IfcApprovalRelationship", "RelatingApproval"},
    {"IfcConstraintAggregationRelationship", "RelatingConstraint"},
    {"IfcConstraintRelationship", "RelatingConstraint"},
    {"IfcConstraintClassificationRelationship", "ClassifiedConstraint"},
    {"IfcPropertyConstraintRelationship", "RelatedProperties"},
    {"IfcPropertyDependencyRelationship", "DependingProperty"},
    {"IfcAppliedValueRelationship", "ComponentOfTotal"},
    {"IfcCostValueRelationship", "ComponentOf"},
    {"IfcReferencesValueDocument", "ReferencingValues"},
    {"IfcReferencesCostDocument", "ReferencingCosts"},
    {"IfcCurrencyRelationship", "RelatingMonetaryUnit"},
    {"IfcClassificationItemRelationship", "RelatingItem"},
    {"IfcDocumentInformationRelationship", "RelatingDocument"},
    {"IfcOrganizationRelationship", "RelatingOrganization"},
    {"IfcTimeSeriesReferenceRelationship", "ReferencedTimeSeries"},
};

std::vector<const AttributeFacts*> Described(const ClassFacts* facts) {
  std::vector<const AttributeFacts*> described;
  for (const ClassFacts* at = facts; at != nullptr; at = at->supertype) {
    for (const PointingClass& pointing : kPointing) {
      if (pointing.className != at->name) continue;
      const AttributeFacts* const found = facts->FindAttribute(pointing.attribute);
      if (found != nullptr) described.push_back(found);
    }
  }
  return described;
}

}  // namespace

std::span<const AttributeFacts* const> PointingClasses::DescribedBy(const IFC::IfcEntity& entity) {
  return known_.Of(entity, Described);
}

}  // namespace corvel
