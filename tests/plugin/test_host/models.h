// Small models.
#pragma once

#include <string>
#include <string_view>

namespace corvel::test_host {

// A whole file around records.
std::string ModelFile(std::string_view records, std::string_view schema = "IFC4");

// A project with one building and `pointCount` points. All GUIDs begin with `name`, of up to eight
// letters.
std::string House(std::string_view name, unsigned pointCount = 0, std::string_view schema = "IFC4");

}  // namespace corvel::test_host
