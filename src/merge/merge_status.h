// What the folds into a model have come to.
#pragma once

#include <cstdint>

namespace corvel {

enum class MergeStatus : std::uint32_t { kNotMerged = 0, kMerged = 1, kFailed = 2 };

}  // namespace corvel
