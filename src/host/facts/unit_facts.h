// What the numbers of a model are measured in.
#pragma once

#include <string>
#include <vector>

#include "core/text.h"
#include "merge/document.h"

namespace corvel::host {

struct UnitFacts {
  std::string type;  // "LENGTHUNIT"; "MONETARYUNIT" of a currency; empty when none is stated
  WideString name;  // "MILLIMETRE", "DEGREE", "KILOGRAM METRE^-3", "EUR"; empty when none is stated
  bool operator==(const UnitFacts&) const = default;
};

// One unit, of whatever class.
UnitFacts UnitFactsOf(const IFC::IfcEntity& unit);
// The units that the model's project, or its first unit assignment, states, in their order.
std::vector<UnitFacts> UnitsOf(const IfcDocument& document);

}  // namespace corvel::host
