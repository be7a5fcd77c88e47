#include "host/facts/georeference.h"

#include <cmath>
#include <numbers>

#include "merge/federation/attribute_values.h"

namespace corvel::host {

std::optional<double> TrueNorthOf(const IFC::IfcEntity& context) {
  const IFC::IfcEntity* const north = ReferenceOf(context, "TrueNorth");
  const List<double>* const ratios =
      north == nullptr ? nullptr : RealsOf(*north, "DirectionRatios");
  if (ratios == nullptr || ratios->size() < 2) return {};
  const double x = (*ratios)[0];
  const double y = (*ratios)[1];
  const double degrees = std::atan2(x, y) * 180.0 / std::numbers::pi;
  const bool hasLength = x != 0.0 || y != 0.0;
  return hasLength && std::isfinite(degrees) ? std::optional(degrees) : std::nullopt;
}

}  // namespace corvel::host
