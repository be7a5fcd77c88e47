// What the coordinates of a model are measured in and from, as its file states it.
//
// A merge compares SI units alone and rescales nothing; here everything counts that would put one
// model beside another at another scale or place.
#pragma once

#include <array>
#include <optional>

#include "core/text.h"
#include "merge/document.h"

namespace corvel::host {

struct LengthUnit {
  WideString name;               // "MILLIMETRE", "FOOT (0.3048 m)"; empty when none is stated
  std::optional<double> metres;  // in one unit; nothing when that cannot be told
};

// From a map's origin to the model's: IfcMapConversion, or the property set that stands for it in
// older releases.
struct MapConversion {
  static constexpr std::size_t kCount = 6;
  // Eastings, northings, height, the two numbers of the x axis, scale.
  std::array<double, kCount> values{0.0, 0.0, 0.0, 1.0, 0.0, 1.0};
  bool operator==(const MapConversion&) const = default;
};

// The model has been read.
LengthUnit LengthUnitOf(const IfcDocument& document);
// The first of the file; nothing without one. Looks at each object until it is found.
std::optional<MapConversion> MapConversionOf(const IfcDocument& document);
// The one that the object is; nothing when it is none. For those who look at all objects anyway.
std::optional<MapConversion> MapConversionIn(IFC::IfcEntity& entity);

// True when coordinates in the two units mean different things, or might.
bool Differ(const LengthUnit& a, const LengthUnit& b);

// In which values `other` differs from `first`: "Eastings 10 for 0, Scale 2 for 1".
WideString DifferenceBetween(const MapConversion& first, const MapConversion& other);

}  // namespace corvel::host
