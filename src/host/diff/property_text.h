// Properties and quantities by name, as people read them.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/diff/compared_model.h"

namespace corvel::host::diff {

// Lists of properties and quantities in a set.
bool HoldsProperties(std::string_view attribute);
// What a property or quantity is there for: "NominalValue".
bool IsMainValue(std::string_view attribute);

// The properties and quantities in a set of them. Nothing for null, and for sets that say what they
// say by attributes of their own.
std::vector<const IFC::IfcEntity*> PropertiesIn(const IFC::IfcEntity* set);
// Its value; of one that has another form its class and name.
std::string TextOfProperty(const ComparedModel& model, const IFC::IfcEntity& property);

}  // namespace corvel::host::diff
