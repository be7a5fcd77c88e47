#include "merge/compare_units.h"

#include <map>
#include <utility>

#include "core/entity_cast.h"
#include "merge/unit_texts.h"
#include "schema/interfaces/units.h"

namespace corvel {

namespace {

WideString Label(const IFC::VIfcSIUnit& unit) { return unit.getPrefixText() + unit.getNameText(); }

// The units of one type, as far as a comparison can tell them apart. It takes them from the back
// and ends at the first that differs, so only three of them ever come out of it: the last, the
// first before it that is not like it, and where all are alike the one in front.
class UnitsOfType {
 public:
  // Units come in from the last to the first.
  void Add(IFC::IfcEntity* unit) {
    WideString label = Label(*EntityCast<IFC::VIfcSIUnit>(unit));
    if (last_ == nullptr) {
      last_ = unit;
      labelOfLast_ = std::move(label);
    } else if (other_ == nullptr && label != labelOfLast_) {
      other_ = unit;
    }
    front_ = unit;
  }
  IFC::ChildQueue Queue() const {
    IFC::ChildQueue queue;
    queue.Append(other_ != nullptr ? other_ : front_, true);
    queue.Append(last_, true);
    return queue;
  }

 private:
  IFC::IfcEntity* last_ = nullptr;
  WideString labelOfLast_;
  IFC::IfcEntity* other_ = nullptr;
  IFC::IfcEntity* front_ = nullptr;
};

// By the type's text in the file.
using UnitsByType = std::map<WideString, UnitsOfType>;

UnitsByType SiUnitsOf(const IFC::IfcEntity& assignment) {
  UnitsByType units;
  IFC::ChildQueue members;
  assignment.CollectAllChildren(members);
  while (!members.IsEmpty()) {
    IFC::IfcEntity* const unit = members.TakeBack().entity;
    if (EntityCast<IFC::VIfcSIUnit>(unit) != nullptr) units[UnitTypeText(unit)].Add(unit);
  }
  return units;
}

UnitComparison RowOf(IFC::VIfcSIUnit& unit, WideString unitType, const UnitsByType& otherUnits,
                     const WideString& otherPath) {
  const auto others = otherUnits.find(UnitTypeText(&unit));
  IFC::ChildQueue queue = others == otherUnits.end() ? IFC::ChildQueue() : others->second.Queue();
  UnitMatch match;
  UnitComparison row;
  row.same = CompareOneUnit(queue, &unit, match);
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
  // On past those that are alike: a unit of the same type further in front may still differ.
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

std::vector<UnitComparison> CompareUnitAssignments(const IFC::IfcEntity* first,
                                                   const IFC::IfcEntity* other,
                                                   const WideString& otherPath) {
  std::vector<UnitComparison> rows;
  if (first == nullptr || other == nullptr) return rows;
  const UnitsByType otherUnits = SiUnitsOf(*other);
  IFC::ChildQueue units;
  first->CollectAllChildren(units);
  while (!units.IsEmpty()) {
    auto* const unit = EntityCast<IFC::VIfcSIUnit>(units.TakeBack().entity);
    if (unit == nullptr) continue;
    WideString type = UnitTypeText(unit);
    if (!type.empty()) type.pop_back();  // the comma
    if (type.empty()) continue;
    rows.push_back(RowOf(*unit, std::move(type), otherUnits, otherPath));
  }
  return rows;
}

}  // namespace corvel
