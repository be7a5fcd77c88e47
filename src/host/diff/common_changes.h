// Changes that many objects have in common, each told once.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "host/diff/changes.h"

namespace corvel::host::diff {

// From how many objects on a change is told once for all of them.
inline constexpr std::size_t kMany = 3;

struct CommonChange {
  Change change;                               // as its first object has it
  std::vector<std::size_t> objects;            // indices among ModelDiff::changed, ascending
  std::map<std::string, std::size_t> classes;  // of these, as they are now
};

struct ChangesTold {
  std::vector<CommonChange> common;  // by the first of their objects
  // By object and change as they stand in ModelDiff: whether a common change tells it.
  std::vector<std::vector<bool>> isCommon;
};

// The same change is one of the same kind and path with the same values, or one movement of the
// world that they stand in.
ChangesTold FindCommonChanges(const ModelDiff& diff);

}  // namespace corvel::host::diff
