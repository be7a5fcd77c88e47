// A choice as users make it: half of the products of a model are dropped.
#pragma once

#include <vector>

#include "merge/document.h"

namespace corvel::bench {

struct HalfOfProducts {
  std::vector<MarkerPair> saved;
  std::vector<MarkerPair> deleted;  // every other product that no other product hangs on
};

// Each product goes with its parent in the tree of the model: the whole or host that it belongs to,
// else the spatial object that contains it.
HalfOfProducts DropHalfOfProducts(const IfcDocument& document);

}  // namespace corvel::bench
