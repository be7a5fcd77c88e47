// JSON as this program writes it.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "core/text.h"

namespace corvel::host {

// Keeps the order in which keys are put in.
using Json = nlohmann::ordered_json;

Json TextsOf(const std::vector<WideString>& texts);

// What of a text is no UTF-8 is written as the sign for it.
std::string InOneLine(const Json& json);
// A level for each bracket, and a line feed at the end.
std::string Indented(const Json& json);

}  // namespace corvel::host
