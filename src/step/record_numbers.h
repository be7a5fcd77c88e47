// The record of an object in numbers: what every class of every release can be asked for.
#pragma once

#include <optional>
#include <vector>

#include "core/entity.h"

namespace corvel {

// Of each argument in order the first number in it, be it bare, in a list, typed or quoted: 1.5,
// (1.5,2.), IFCREAL(1.5), IFCLABEL('1.5'). Nothing where there is none. Never empty: an object
// without arguments has one without a number. Costs as much as writing the object and reading it
// back.
std::vector<std::optional<double>> NumbersOf(const IFC::IfcEntity& entity);

}  // namespace corvel
