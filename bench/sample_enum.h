// An enumeration of the usual size for the benchmarks of single attributes.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "step/enum_table.h"

namespace corvel::bench {

inline constexpr std::array<EnumRow, 8> kSampleRows = {{{".MOVABLE.,", 0},
                                                        {".PARAPET.,", 1},
                                                        {".PARTITIONING.,", 2},
                                                        {".PLUMBINGWALL.,", 3},
                                                        {".SHEAR.,", 4},
                                                        {".SOLIDWALL.,", 5},
                                                        {".USERDEFINED.,", 6},
                                                        {".NOTDEFINED.,", 7}}};
inline constexpr EnumTable kSampleEnum{u"SampleEnum", kSampleRows};

// As it stands in a file, without the comma: ".SHEAR."
inline std::string_view SampleLiteral(std::size_t index) {
  const std::string_view literal = kSampleRows[index % kSampleRows.size()].literal;
  return literal.substr(0, literal.size() - 1);
}

}  // namespace corvel::bench
