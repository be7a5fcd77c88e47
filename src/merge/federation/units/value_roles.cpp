#include "merge/federation/units/value_roles.h"

#include <optional>

namespace corvel {

namespace {

using Role = ValueRole;

constexpr RoleRow kRoles[] = {
    // Plain numbers that change with the unit of length.
    {"IfcGeometricRepresentationContext", "Precision", Role::kLength},
    {"IfcPolynomialCurve", "CoefficientsX", Role::kCoefficients},
    {"IfcPolynomialCurve", "CoefficientsY", Role::kCoefficients},
    {"IfcPolynomialCurve", "CoefficientsZ", Role::kCoefficients},
    {"IfcLightSourcePositional", "DistanceAttenuation", Role::kPerLength},
    {"IfcLightSourcePositional", "QuadricAttenuation", Role::kPerArea},
    {"IfcPointLightSource", "Attenuation", Role::kAttenuation},
    // Parameters.
    {"IfcTrimmedCurve", "Trim1", Role::kCurveParameter, "BasisCurve"},
    {"IfcTrimmedCurve", "Trim2", Role::kCurveParameter, "BasisCurve"},
    {"IfcPointOnCurve", "PointParameter", Role::kCurveParameter, "BasisCurve"},
    {"IfcPointByDistanceExpression", "DistanceAlong", Role::kCurveParameter, "BasisCurve"},
    {"IfcSweptDiskSolid", "StartParam", Role::kCurveParameter, "Directrix"},
    {"IfcSweptDiskSolid", "EndParam", Role::kCurveParameter, "Directrix"},
    {"IfcSurfaceCurveSweptAreaSolid", "StartParam", Role::kCurveParameter, "Directrix"},
    {"IfcSurfaceCurveSweptAreaSolid", "EndParam", Role::kCurveParameter, "Directrix"},
    {"IfcFixedReferenceSweptAreaSolid", "StartParam", Role::kCurveParameter, "Directrix"},
    {"IfcFixedReferenceSweptAreaSolid", "EndParam", Role::kCurveParameter, "Directrix"},
    {"IfcDirectrixCurveSweptAreaSolid", "StartParam", Role::kCurveParameter, "Directrix"},
    {"IfcDirectrixCurveSweptAreaSolid", "EndParam", Role::kCurveParameter, "Directrix"},
    {"IfcCurveSegment", "SegmentStart", Role::kCurveParameter, "ParentCurve"},
    {"IfcCurveSegment", "SegmentLength", Role::kCurveParameter, "ParentCurve"},
    {"IfcReparametrisedCompositeCurveSegment", "ParamLength", Role::kCurveParameter, "ParentCurve"},
    {"IfcRectangularTrimmedSurface", "U1", Role::kSurfaceParameterU, "BasisSurface"},
    {"IfcRectangularTrimmedSurface", "V1", Role::kSurfaceParameterV, "BasisSurface"},
    {"IfcRectangularTrimmedSurface", "U2", Role::kSurfaceParameterU, "BasisSurface"},
    {"IfcRectangularTrimmedSurface", "V2", Role::kSurfaceParameterV, "BasisSurface"},
    {"IfcPointOnSurface", "PointParameterU", Role::kSurfaceParameterU, "BasisSurface"},
    {"IfcPointOnSurface", "PointParameterV", Role::kSurfaceParameterV, "BasisSurface"},
    {"IfcPcurve", "ReferenceCurve", Role::kParameterSpace, "BasisSurface"},
    {"IfcSurfaceTexture", "TextureTransform", Role::kTextureSpace},
    // Differences of temperatures.
    {"IfcStructuralLoadTemperature", "DeltaT_Constant", Role::kDifference},
    {"IfcStructuralLoadTemperature", "DeltaT_Y", Role::kDifference},
    {"IfcStructuralLoadTemperature", "DeltaT_Z", Role::kDifference},
    {"IfcStructuralLoadTemperature", "DeltaTConstant", Role::kDifference},
    {"IfcStructuralLoadTemperature", "DeltaTY", Role::kDifference},
    {"IfcStructuralLoadTemperature", "DeltaTZ", Role::kDifference},
    // Places on the map.
    {"IfcMapConversion", "Eastings", Role::kMapCoordinate, "TargetCRS"},
    {"IfcMapConversion", "Northings", Role::kMapCoordinate, "TargetCRS"},
    {"IfcMapConversion", "OrthogonalHeight", Role::kMapCoordinate, "TargetCRS"},
    {"IfcMapConversion", "Scale", Role::kMapScale, "TargetCRS"},
    {"IfcRigidOperation", "FirstCoordinate", Role::kMapCoordinate, "TargetCRS"},
    {"IfcRigidOperation", "SecondCoordinate", Role::kMapCoordinate, "TargetCRS"},
    {"IfcRigidOperation", "Height", Role::kMapCoordinate, "TargetCRS"},
    // Numbers with a unit of their own.
    {"IfcMeasureWithUnit", "ValueComponent", Role::kStays},
    {"IfcConversionBasedUnitWithOffset", "ConversionOffset", Role::kStays},
    {"IfcPropertySingleValue", "NominalValue", Role::kBesideUnit, "Unit"},
    {"IfcPropertyBoundedValue", "UpperBoundValue", Role::kBesideUnit, "Unit"},
    {"IfcPropertyBoundedValue", "LowerBoundValue", Role::kBesideUnit, "Unit"},
    {"IfcPropertyBoundedValue", "SetPointValue", Role::kBesideUnit, "Unit"},
    {"IfcPropertyListValue", "ListValues", Role::kBesideUnit, "Unit"},
    {"IfcPropertyTableValue", "DefiningValues", Role::kBesideUnit, "DefiningUnit"},
    {"IfcPropertyTableValue", "DefinedValues", Role::kBesideUnit, "DefinedUnit"},
    {"IfcPropertyEnumeration", "EnumerationValues", Role::kBesideUnit, "Unit"},
    {"IfcPropertyEnumeratedValue", "EnumerationValues", Role::kBesideUnitOfEnumeration,
     "EnumerationReference"},
    {"IfcQuantityLength", "LengthValue", Role::kBesideUnit, "Unit"},
    {"IfcQuantityArea", "AreaValue", Role::kBesideUnit, "Unit"},
    {"IfcQuantityVolume", "VolumeValue", Role::kBesideUnit, "Unit"},
    {"IfcQuantityWeight", "WeightValue", Role::kBesideUnit, "Unit"},
    {"IfcQuantityTime", "TimeValue", Role::kBesideUnit, "Unit"},
    {"IfcTableRow", "RowCells", Role::kInTable},
    {"IfcRegularTimeSeries", "Values", Role::kInTimeSeries, "Unit"},
    {"IfcIrregularTimeSeries", "Values", Role::kInTimeSeries, "Unit"},
    {"IfcRelDeclares", "RelatedDefinitions", Role::kInLibrary, "RelatingContext"},
    // Always degrees, minutes and seconds.
    {"IfcSite", "RefLatitude", Role::kStays},
    {"IfcSite", "RefLongitude", Role::kStays},
};

const RoleRow* RoleOf(const ClassFacts& declaring, const ClassFacts& facts,
                      const AttributeFacts& attribute) {
  for (const RoleRow& row : kRoles) {
    if (row.attribute != attribute.name) continue;
    // A class of the row may declare the attribute itself, or have it from above.
    for (const ClassFacts* at = &facts; at != nullptr; at = at->supertype) {
      if (row.className == at->name) return &row;
      if (at == &declaring) break;
    }
  }
  return nullptr;
}

std::optional<PlannedValue> Planned(const ClassFacts& declaring, const ClassFacts& facts,
                                    const AttributeFacts& attribute) {
  PlannedValue planned = {.facts = &attribute};
  if (const RoleRow* const row = RoleOf(declaring, facts, attribute)) {
    planned.role = row->role;
    if (!row->other.empty()) planned.other = facts.FindAttribute(row->other);
  }
  if (attribute.kind == ValueKind::kReal) planned.measure = MeasureOf(*attribute.type);
  const bool mayHoldMeasure =
      planned.measure != Measure::kNone || attribute.kind == ValueKind::kSelect;
  if (planned.role == ValueRole::kStays) return std::nullopt;
  if (planned.role == ValueRole::kByType && !mayHoldMeasure) return std::nullopt;
  return planned;
}

}  // namespace

std::span<const RoleRow> AllRoles() { return kRoles; }

std::string_view MeaningOf(ValueRole role) {
  switch (role) {
    case Role::kByType: return "by its declared type";
    case Role::kStays: return "stays";
    case Role::kBesideUnit: return "stays where it has a unit of its own";
    case Role::kBesideUnitOfEnumeration: return "stays where the enumeration has a unit";
    case Role::kInTable: return "stays in columns with a unit";
    case Role::kInTimeSeries: return "values stay where the series has a unit";
    case Role::kLength: return "a length";
    case Role::kPerLength: return "divided by a length";
    case Role::kPerArea: return "divided by the square of a length";
    case Role::kAttenuation: return "number i, from 0, divided by a length to the power of i";
    case Role::kCoefficients: return "number i, from 0, is a length to the power of 1 - i";
    case Role::kDifference: return "by its declared type, without an offset";
    case Role::kCurveParameter: return "a parameter of the curve";
    case Role::kSurfaceParameterU: return "the first parameter of the surface";
    case Role::kSurfaceParameterV: return "the second parameter of the surface";
    case Role::kMapCoordinate: return "stays where the reference system names a unit";
    case Role::kMapScale: return "divided by a length, put in where it was absent";
    case Role::kParameterSpace: return "coordinates below it are parameters of the surface";
    case Role::kTextureSpace: return "coordinates below it stay";
    case Role::kInLibrary: return "values stay below a library with units of its own";
  }
  return {};
}

const std::vector<PlannedValue>& ValuePlans::Of(const ClassFacts& facts) {
  const auto [place, isNew] = plans_.try_emplace(&facts);
  if (!isNew) return place->second;
  for (const ClassFacts* at = &facts; at != nullptr; at = at->supertype) {
    for (std::size_t i = 0; i < at->ownCount; ++i) {
      if (const auto planned = Planned(*at, facts, at->own[i])) place->second.push_back(*planned);
    }
  }
  return place->second;
}

}  // namespace corvel
