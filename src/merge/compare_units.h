// The units of two models side by side.
//
// Only SI units are looked at: units that are made by conversion or put together from others are
// not compared, and neither are currencies. Units of a model are taken from the last of its
// assignment to the first, so of two units of one type the last one speaks.
#pragma once

#include <array>
#include <vector>

#include "core/child_queue.h"
#include "core/text.h"
#include "merge/unit_comparison.h"

namespace corvel {

// The types whose differences count, in the order in which they are told.
inline constexpr std::array<WideView, 5> comparedUnitTypes = {
    u".LENGTHUNIT.", u".VOLUMEUNIT.", u".AREAUNIT.", u".MASSUNIT.", u".PLANEANGLEUNIT."};

// What another model has in the place of a unit.
struct UnitMatch {
  IFC::IfcEntity* unit = nullptr;  // null when it has none of that type
  UnitDifference code = UnitDifference::kNotFound;
};

// Looks for the counterpart of `unit` among `otherUnits`, which are used up from the back until one
// differs. False: it does, by `result.code`. What is no SI unit, or has no type or no name, is not
// looked for and never differs.
bool CompareOneUnit(IFC::ChildQueue& otherUnits, IFC::IfcEntity* unit, UnitMatch& result);

// A row for each SI unit of the assignment `first`, of whatever type. None when one of the two is
// null. `otherPath`: file of the later model.
std::vector<UnitComparison> CompareUnitAssignments(const IFC::IfcEntity* first,
                                                   const IFC::IfcEntity* other,
                                                   const WideString& otherPath);

}  // namespace corvel
