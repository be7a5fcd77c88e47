// Whether two objects say the same, wherever they stand in a model.
#pragma once

#include <string_view>

#include "core/entity.h"

namespace corvel {

// Compares class and attributes, and in the place of each reference what it leads to. Reals are the
// same when they differ by `tolerance` or less. `ignored` is an attribute of the two themselves
// that does not count. Two nulls are the same. Costs as much as is reached; circles end.
bool SameByValue(const IFC::IfcEntity* one, const IFC::IfcEntity* other, double tolerance,
                 std::string_view ignored = {});

}  // namespace corvel
