// How a unit of one model compares with that of the model that all others are measured by.
#pragma once

#include <cstdint>

#include "core/text.h"

namespace corvel {

// The numbers are fixed.
enum class UnitDifference : std::uint32_t {
  kNone = 0,
  kOtherName = 2,    // another unit: a gram for a metre
  kOtherPrefix = 3,  // the same unit in another size: a millimetre for a metre
  kNotFound = 4,     // the later model has no unit of this type, which counts as no difference
};

// One unit of the first model and what the later one has in its place. Texts are those of the file,
// with their dots and commas.
struct UnitComparison {
  WideString unitType;            // ".LENGTHUNIT."
  WideString unitLabel;           // prefix and name in the first model: ".MILLI.,.METRE.,"
  std::uint32_t marker = 0;       // number of that unit in the first model
  WideString otherLabel;          // the same of the later model; empty when it has none
  std::uint32_t otherMarker = 0;  // 0 when it has none
  bool same = false;              // no difference found
  WideString filePath;            // of the later model
  UnitDifference code = UnitDifference::kNone;
};

}  // namespace corvel
