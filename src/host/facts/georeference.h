// Where on earth a model stands, as its file states it.
#pragma once

#include <optional>

#include "core/text.h"
#include "host/model_frame.h"
#include "merge/document.h"

namespace corvel::host {

struct Georeference {
  std::optional<MapConversion> conversion;  // see model_frame.h
  WideString system;  // "EPSG:28992", of the first coordinate reference system
  // From the model's y axis to the true north, clockwise; nothing when no context states it.
  std::optional<double> trueNorthDegrees;
  bool operator==(const Georeference&) const = default;
};

// The angle of the TrueNorth of a representation context; nothing when it has none, or one without
// a length.
std::optional<double> TrueNorthOf(const IFC::IfcEntity& context);

}  // namespace corvel::host
