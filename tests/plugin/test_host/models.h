// Small models.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace corvel::test_host {

// A whole file around records.
std::string ModelFile(std::string_view records, std::string_view schema = "IFC4");

// Objects of every house, by their numbers.
inline constexpr std::uint32_t kProjectNumber = 1;
inline constexpr std::uint32_t kBuildingNumber = 4;

// A project with one building and `pointCount` points, which hang on the project's context. All
// GUIDs begin with `name`, of up to eight letters.
std::string House(std::string_view name, unsigned pointCount = 0, std::string_view schema = "IFC4");

}  // namespace corvel::test_host
