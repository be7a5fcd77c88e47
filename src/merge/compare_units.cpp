#include "merge/compare_units.h"

#include <utility>

#include "core/entity_cast.h"
#include "merge/unit_texts.h"
#include "schema/interfaces/units.h"

namespace corvel {

namespace {

WideString Label(const IFC::VIfcSIUnit& unit) { return unit.getPrefixText() + unit.getNameText(); }

UnitComparison RowOf(IFC::VIfcSIUnit& unit, WideString unitType, IFC::ChildQueue& otherUnits,
                     const WideString& otherPath) {
  UnitMatch match;
  UnitComparison row;
  row.same = CompareOneUnit(otherUnits, &unit, match);
  row.unitType = std::move(unitType);
  row.unitLabel = Label(unit);
  row.marker = unit.marker;
  row.filePath = otherPath;
  row.code = match.code;
  if (match.unit != nullptr) {
    row.otherLabel = Label(*EntityCast<IFC::VIfcSIUnit>(match.unit));
    row.otherMarker = match.unit->marker;
  }
  return row;
}

}  // namespace

bool CompareOneUnit(IFC::ChildQueue& otherUnits, IFC::IfcEntity* unit, UnitMatch& result) {
  result = {};
  const auto* const wanted = EntityCast<IFC::VIfcSIUnit>(unit);
  if (wanted == nullptr) return true;
  const WideString type = UnitTypeText(unit);
  const WideString name = wanted->getNameText();
  if (type.empty() || name.empty()) return true;
  while (!otherUnits.IsEmpty()) {
    IFC::IfcEntity* const entity = otherUnits.TakeBack().entity;
    const auto* const other = EntityCast<IFC::VIfcSIUnit>(entity);
    if (other == nullptr || UnitTypeText(entity) != type) continue;
    result = {entity, UnitDifference::kNone};
    if (other->getNameText() != name) {
      result.code = UnitDifference::kOtherName;
      return false;
    }
    if (other->getPrefixText() != wanted->getPrefixText()) {
      result.code = UnitDifference::kOtherPrefix;
      return false;
    }
  }
  return true;
}

std::vector<UnitComparison> CompareUnitAssignments(const IfcDocument& first,
                                                   const IfcDocument& other) {
  std::vector<UnitComparison> rows;
  const IFC::IfcEntity* const firstAssignment = first.getIfcUnitAssignment();
  const IFC::IfcEntity* const otherAssignment = other.getIfcUnitAssignment();
  if (firstAssignment == nullptr || otherAssignment == nullptr) return rows;
  const WideString otherPath = other.getFilePath();
  IFC::ChildQueue units;
  firstAssignment->collectChildren(units);
  while (!units.IsEmpty()) {
    auto* const unit = EntityCast<IFC::VIfcSIUnit>(units.TakeBack().entity);
    if (unit == nullptr) continue;
    WideString type = UnitTypeText(unit);
    if (!type.empty()) type.pop_back();  // the comma
    if (type.empty()) continue;
    IFC::ChildQueue otherUnits;
    otherAssignment->collectChildren(otherUnits);
    rows.push_back(RowOf(*unit, std::move(type), otherUnits, otherPath));
  }
  return rows;
}

}  // namespace corvel
