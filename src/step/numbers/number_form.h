// How the reals of a model are written.
#pragma once

#include <cstdint>

namespace corvel {

enum class NumberForm : std::uint8_t {
  kTold,  // 15 significant digits, as files have them
  kExact  // the fewest digits that read back as the same double
};

}  // namespace corvel
