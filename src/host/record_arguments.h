// The record of an object as text: what every class of every release can be asked for.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/entity.h"

namespace corvel::host {

// The arguments in order, each as the writer writes it: "$", "#12", "'text'", "(1.,2.)",
// "IFCREAL(3.)".
std::vector<std::string> ArgumentsOf(const IFC::IfcEntity& entity);

// The number in an argument, be it bare, typed or quoted: "1.5", "IFCREAL(1.5)", "IFCLABEL('1.5')".
std::optional<double> NumberIn(std::string_view argument);

}  // namespace corvel::host
