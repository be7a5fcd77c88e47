// Placements that have lost their product.
#pragma once

#include <cstddef>
#include <vector>

#include "core/ticker.h"
#include "merge/federation/federated_model.h"

namespace corvel {

// Whether each placement places exactly one product in the release of the model, as in IFC2X3
// alone. In all others it may stand by itself.
bool PlacementsNeedProducts(const FederatedModel& model);
bool PlacementsNeedProducts(const IfcDocument& document);

// Takes the placements out of the model that place no product any more, and puts in their place
// what stands on them: each of those gets a relative placement that says the same place, on what
// the one taken out stood on. `left` are local placements of objects that are not in the model any
// more. Those that are on a grid or go in a circle stay. `folded`: how many got a new relative
// placement. False: the user cancelled, or there were no numbers left, which has been reported.
bool FoldPlacements(FederatedModel& model, const std::vector<IFC::IfcEntity*>& left, Ticker& ticker,
                    std::size_t& folded);

}  // namespace corvel
