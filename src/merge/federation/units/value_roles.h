// What a number stands for where its declared type alone would mislead.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "merge/federation/units/measures.h"
#include "step/class_facts.h"

namespace corvel {

enum class ValueRole : std::uint8_t {
  kByType,  // as its declared type says
  kStays,
  // Numbers that stay where they have a unit of their own, and go by their type where they have
  // none. The unit is told by another attribute, or by one of what that leads to.
  kBesideUnit,
  kBesideUnitOfEnumeration,
  kInTable,       // by the columns of the table
  kInTimeSeries,  // what is below, by the series
  // Numbers of a plain type that change with the unit of length.
  kLength,
  kPerLength,
  kPerArea,
  kAttenuation,   // number i is per length to the power of i
  kCoefficients,  // number i is length to the power of 1 - i
  kDifference,    // by its type, but offsets count for nothing
  // By the curve or surface that another attribute leads to.
  kCurveParameter,
  kSurfaceParameterU,
  kSurfaceParameterV,
  // By the reference system.
  kMapCoordinate,
  kMapScale,
  // What is below has coordinates of its own.
  kParameterSpace,
  kTextureSpace,
  // What is below counts in the units of a library.
  kInLibrary,
};

struct RoleRow {
  std::string_view className;  // and its subtypes
  std::string_view attribute;
  ValueRole role;
  std::string_view other = {};  // the attribute that decides; empty: none
};

// Of all releases: a class may lack an attribute, or a release the class.
std::span<const RoleRow> AllRoles();
// One sentence without its full stop.
std::string_view MeaningOf(ValueRole role);

// What a step does with one attribute of a class.
struct PlannedValue {
  const AttributeFacts* facts = nullptr;
  ValueRole role = ValueRole::kByType;
  Measure measure = Measure::kNone;       // of the declared type; of a select none
  const AttributeFacts* other = nullptr;  // null: there is none
};

// The attributes of a class that a change of units may concern. Worked out once for each class.
class ValuePlans {
 public:
  const std::vector<PlannedValue>& Of(const ClassFacts& facts);

 private:
  std::unordered_map<const ClassFacts*, std::vector<PlannedValue>> plans_;
};

}  // namespace corvel
