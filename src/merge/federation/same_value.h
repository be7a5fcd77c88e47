// Whether two objects say the same, wherever they stand in a model.
#pragma once

#include <span>
#include <string_view>

#include "core/entity.h"

namespace corvel {

// Compares class and attributes, and in the place of each reference what it leads to. Reals are the
// same when they differ by `tolerance` or less. `ignored` are attributes of the two
// themselves that do not count. Two nulls are the same. Costs as much as is reached; circles end.
bool SameByValue(const IFC::IfcEntity* one, const IFC::IfcEntity* other, double tolerance,
                 std::span<const std::string_view> ignored = {});
inline bool SameByValue(const IFC::IfcEntity* one, const IFC::IfcEntity* other, double tolerance,
                        std::string_view ignored) {
  return SameByValue(one, other, tolerance, {&ignored, 1});
}

}  // namespace corvel
