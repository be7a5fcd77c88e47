// What an optimised model takes less than before.
#pragma once

#include <cstdint>

#include "core/text.h"

namespace corvel::host {

struct BeforeAndNow {
  std::uint64_t before = 0;
  std::uint64_t now = 0;
};

// "Records: 38898 before, 26887 now, 30.9 % saved." and the same of bytes, a line each. Where
// nothing is saved it is told how much more there is.
WideString SavingsAsText(const BeforeAndNow& records, const BeforeAndNow& bytes);

// Of the text of a model, also of one in an archive; 0 when it cannot be opened.
std::uint64_t BytesOfModel(const WideString& path);

}  // namespace corvel::host
