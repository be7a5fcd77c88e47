#include "merge/federation/units/map_units.h"

#include <cmath>
#include <string_view>

#include "core/entity_cast.h"
#include "merge/federation/attribute_values.h"
#include "merge/federation/map_properties.h"
#include "schema/interfaces/properties.h"

namespace corvel {

namespace {

constexpr double kMostShrinking = 0.01;

bool LeadsToAnotherUnit(double scale) { return std::abs(scale - 1.0) > kMostShrinking; }

IFC::IfcEntity* PropertyOf(const IFC::IfcEntity& set, WideView name) {
  const EntityList* const properties = ReferencesOf(set, "HasProperties");
  if (properties == nullptr) return nullptr;
  for (IFC::IfcEntity* const property : *properties) {
    if (property != nullptr && ToLowerAscii(TextOf(*property, "Name")) == name) return property;
  }
  return nullptr;
}

const IFC::IfcEntity* ValueOf(const IFC::IfcEntity* property) {
  return property == nullptr ? nullptr : ReferenceOf(*property, "NominalValue");
}

bool IsLength(const IFC::IfcEntity* value) {
  const ClassFacts* const facts = value == nullptr ? nullptr : FindFacts(*value);
  return facts != nullptr && facts->AttributeCount() != 0 &&
         MeasureOf(*facts->Attribute(0).type) == Measure::kLength;
}

}  // namespace

void MapUnits::Note(IFC::IfcEntity& entity) {
  const ClassFacts* const facts = FindFacts(entity);
  if (facts == nullptr || !IsToBeNoted(*facts)) return;
  const WideString name = TextOf(entity, "Name");
  if (!IsNameOfMapProperties(name)) return;
  if (ToLowerAscii(name) == u"epset_mapconversion") conversions_.push_back(&entity);
  const IFC::IfcEntity* const unit = ValueOf(PropertyOf(entity, u"mapunit"));
  if (unit != nullptr && !TextOf(*unit, "value").empty()) isUnitNamed_ = true;
}

bool MapUnits::PutInScales(IfcDocument& document) {
  if (lengthFactor_ == 1.0) return true;
  MemoryPool& pool = document.mainContainer->Pool();
  for (IFC::IfcEntity* const set : conversions_) {
    IFC::IfcEntity* const scale = PropertyOf(*set, u"scale");
    const IFC::IfcEntity* const value = ValueOf(scale);
    const IFC::IfcEntity* const eastings = ValueOf(PropertyOf(*set, u"eastings"));
    const bool areInUnitOfMap = isUnitNamed_ ||
                                (value != nullptr && LeadsToAnotherUnit(RealOf(*value, "value"))) ||
                                (eastings != nullptr && !IsLength(eastings));
    if (!areInUnitOfMap) continue;
    for (const WideView name : {u"eastings", u"northings", u"orthogonalheight"}) {
      if (const IFC::IfcEntity* const property = PropertyOf(*set, name)) {
        coordinates_.insert(property);
      }
    }
    if (scale != nullptr) {
      scales_.insert(scale);
      continue;
    }
    IFC::IfcEntity* const made = document.CreateESet("IFCPROPERTYSINGLEVALUE");
    if (made == nullptr) return false;
    auto* const property = EntityCast<IFC::VIfcPropertySingleValue>(made);
    property->setPropertyName(u"Scale");
    property->setNominalValueReal(ScaleFactor(), pool);
    EntityCast<IFC::VirtualIfcPropertySet>(set)->addProperty(made, pool);
    document.mainContainer->NoteChangedReferences();
  }
  return true;
}

bool MapUnits::IsInUnitOfMap(const IFC::IfcEntity& operation, std::string_view attribute) const {
  if (const IFC::IfcEntity* const system = ReferenceOf(operation, "TargetCRS")) {
    // Of a reference system in degrees heights have a unit apart.
    const std::string_view inDegrees = attribute == "Height" ? "HeightUnit" : "AngleUnit";
    if (ReferenceOf(*system, "MapUnit") != nullptr) return true;
    if (ReferenceOf(*system, inDegrees) != nullptr) return true;
  }
  const auto scale = AttributesOf(operation).Find("Scale");
  return scale && scale->HasValue() && LeadsToAnotherUnit(RealOf(operation, "Scale"));
}

}  // namespace corvel
