// What the measures of a model are in metres, square metres, cubic metres and degrees.
#pragma once

#include "core/entity.h"
#include "host/diff/class_words.h"

namespace corvel::host::diff {

// Factors by Dimension, 1 for what has none. Degrees are what people read.
struct MeasureScales {
  double length = 1.0;
  double area = 1.0;
  double volume = 1.0;
  double angle = 1.0;

  double Of(Dimension dimension) const {
    switch (dimension) {
      case Dimension::kLength: return length;
      case Dimension::kArea: return area;
      case Dimension::kVolume: return volume;
      case Dimension::kAngle: return angle;
      case Dimension::kNone: break;
    }
    return 1.0;
  }
};

// By the last unit of each kind in `unitAssignment` that can be told (SI, or made from it by
// conversion); the one of SI for a kind without one, and without an assignment (null).
MeasureScales ScalesOf(const IFC::IfcEntity* unitAssignment);

}  // namespace corvel::host::diff
