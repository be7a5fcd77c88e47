#include "merge/federation/sharing_plan.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "core/carried.h"
#include "merge/federation/relations/unique_members.h"
#include "schema/attributes.h"

namespace corvel {

namespace {

// With their subtypes; a release has some of them. What is left out has an identity of its own: all
// with a GUID, placements of products, representations and what leads to them, contexts, layers,
// and records of documents, classifications, approvals, constraints, costs, tables and times.
constexpr std::string_view kShareable[] = {
    // Shapes.
    "IfcRepresentationItem", "IfcConnectionGeometry", "IfcProfileDef", "IfcProfileProperties",
    // Materials. (From IFC4 on the properties of materials and profiles are extended properties.)
    "IfcMaterialDefinition", "IfcMaterial", "IfcMaterialLayer", "IfcMaterialLayerSet",
    "IfcMaterialLayerSetUsage", "IfcMaterialUsageDefinition", "IfcMaterialList",
    "IfcMaterialProperties", "IfcExtendedProperties", "IfcMaterialClassificationRelationship",
    // Looks.
    "IfcPresentationItem", "IfcPresentationStyle", "IfcPresentationStyleAssignment",
    "IfcPreDefinedItem", "IfcColourSpecification", "IfcCurveStyle", "IfcCurveStyleFont",
    "IfcCurveStyleFontAndScaling", "IfcCurveStyleFontPattern", "IfcFillAreaStyle",
    "IfcSurfaceStyle", "IfcSurfaceStyleProperties", "IfcSurfaceStyleShading",
    "IfcSurfaceStyleLighting", "IfcSurfaceStyleRefraction", "IfcSurfaceStyleWithTextures",
    "IfcSurfaceTexture", "IfcSymbolStyle", "IfcTextStyle", "IfcTextStyleForDefinedFont",
    "IfcTextStyleTextModel", "IfcTextStyleWithBoxCharacteristics", "IfcTextStyleWithMirror",
    "IfcTextStyleWithSpacing",
    // Units.
    "IfcNamedUnit", "IfcDerivedUnit", "IfcDerivedUnitElement", "IfcDimensionalExponents",
    "IfcMeasureWithUnit", "IfcMonetaryUnit",
    // Who, and with what.
    "IfcPerson", "IfcOrganization", "IfcPersonAndOrganization", "IfcActorRole", "IfcAddress",
    "IfcApplication", "IfcOwnerHistory",
    // Values.
    "IfcProperty", "IfcPropertyEnumeration", "IfcPhysicalQuantity"};

// Of those above. Each curve has its own alignment, and each segment its own curve.
constexpr std::string_view kNotShareable[] = {
    "IfcAlignmentCurve", "IfcAlignment2DHorizontal", "IfcAlignment2DHorizontalSegment",
    "IfcAlignment2DVertical", "IfcAlignment2DVerticalSegment"};

struct NamedAttribute {
  std::string_view className;  // and its subtypes
  std::string_view attribute;
};

// At most one owner, in one release or in all. Two owners that become one have the members of one.
constexpr NamedAttribute kOwning[] = {{"IfcMaterialLayerSet", "MaterialLayers"},
                                      {"IfcMaterialProfileSet", "MaterialProfiles"},
                                      {"IfcMaterialConstituentSet", "MaterialConstituents"},
                                      {"IfcComplexProperty", "HasProperties"},
                                      {"IfcPhysicalComplexQuantity", "HasQuantities"},
                                      {"IfcLinearPositioningElement", "Axis"}};

// Beside what PointingClasses tells: the other ends of relations.
constexpr NamedAttribute kOtherEnds[] = {
    {"IfcSurfaceStyleUsage", "AppliedTo"},
    {"IfcDraughtingCalloutRelationship", "RelatedDraughtingCallout"},
    {"IfcTextureCoordinateIndices", "TexCoordsOf"},
    {"IfcMaterialRelationship", "RelatedMaterials"},
    {"IfcPropertyDependencyRelationship", "DependantProperty"},
    {"IfcCurrencyRelationship", "RelatedMonetaryUnit"},
    {"IfcOrganizationRelationship", "RelatedOrganizations"}};

bool IsOneOf(const ClassFacts& facts, std::span<const std::string_view> names) {
  for (const ClassFacts* at = &facts; at != nullptr; at = at->supertype) {
    if (std::find(names.begin(), names.end(), at->name) != names.end()) return true;
  }
  return false;
}

bool IsIn(const ClassFacts& facts, std::string_view attribute,
          std::span<const NamedAttribute> table) {
  for (const ClassFacts* at = &facts; at != nullptr; at = at->supertype) {
    const bool found = std::any_of(table.begin(), table.end(), [&](const NamedAttribute& named) {
      return named.attribute == attribute && named.className == at->name;
    });
    if (found) return true;
  }
  return false;
}

bool HoldsNothingTwice(const ClassFacts& facts, std::string_view attribute) {
  for (const ClassFacts* at = &facts; at != nullptr; at = at->supertype) {
    for (const UniqueList& list : UniqueLists()) {
      if (list.attribute == attribute && list.className == at->name) return true;
    }
  }
  return false;
}

bool Contains(const std::vector<const AttributeFacts*>& attributes, const AttributeFacts& facts) {
  return std::find(attributes.begin(), attributes.end(), &facts) != attributes.end();
}

bool IsShareableClass(const ClassFacts& facts) {
  return IsOneOf(facts, kShareable) && !IsOneOf(facts, kNotShareable);
}

}  // namespace

bool SharingPlan::IsOwning(const AttributeFacts& facts) const { return Contains(owning, facts); }

bool SharingPlan::IsDescribed(const AttributeFacts& facts) const {
  return Contains(described, facts);
}

const SharingPlan& SharingPlans::Of(const IFC::IfcEntity& entity) {
  const std::type_info* const dynamicClass = &typeid(entity);
  if (const std::ptrdiff_t* const known = indices_.Find(dynamicClass)) [[likely]] {
    return plans_[static_cast<std::size_t>(*known)];
  }
  indices_.Remember(dynamicClass, static_cast<std::ptrdiff_t>(plans_.size()));
  plans_.push_back(Make(entity));
  return plans_.back();
}

SharingPlan SharingPlans::Make(const IFC::IfcEntity& entity) {
  SharingPlan plan;
  const ClassFacts* const facts = FindFacts(entity);
  // A record of a class that no release has is more than it shows.
  if (facts == nullptr || dynamic_cast<const IFC::CarriedEntity*>(&entity) != nullptr) return plan;
  plan.isShareable = IsShareableClass(*facts);
  const auto described = pointing_.DescribedBy(entity);
  plan.described.assign(described.begin(), described.end());
  for (std::size_t i = 0; i < facts->AttributeCount(); ++i) {
    const AttributeFacts& attribute = facts->Attribute(i);
    if (attribute.kind == ValueKind::kReal) plan.reals.push_back(&attribute);
    if (!Refers(attribute.kind)) continue;
    plan.references.push_back(&attribute);
    if (IsIn(*facts, attribute.name, kOwning)) plan.owning.push_back(&attribute);
    if (IsIn(*facts, attribute.name, kOtherEnds)) plan.described.push_back(&attribute);
    const bool isSet = attribute.aggregates[0].kind == Aggregate::Kind::kSet;
    const bool holdsOthers = isSet || HoldsNothingTwice(*facts, attribute.name) ||
                             (attribute.depth == 1 && plan.IsDescribed(attribute));
    if (holdsOthers && attribute.depth == 1) plan.distinct.push_back(&attribute);
  }
  return plan;
}

}  // namespace corvel
