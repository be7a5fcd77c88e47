// How long the unit is in which a model gives its lengths.
#pragma once

#include <optional>

#include "core/entity.h"

namespace corvel {

// Of the last length unit in `unitAssignment` that can be told: an SI unit with any prefix, or one
// made from such by conversion, by the factor in the file. 1 without one, or without an assignment
// (null). This is for comparing models whatever they are in: the numbers that a merge works with
// are told by LengthUnitsPerMetre.
double MetresPerLengthUnit(const IFC::IfcEntity* unitAssignment);

// Of one unit. Nothing for null, for a unit of something else, and for one that leads to no metre.
std::optional<double> MetresPerUnit(const IFC::IfcEntity* unit);

}  // namespace corvel
