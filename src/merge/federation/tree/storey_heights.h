// How high the storeys of a model stand.
#pragma once

#include "merge/federation/federated_model.h"
#include "merge/federation/tree/spatial_structure.h"
#include "merge/federation/tree/world_places.h"

namespace corvel {

// Sets the heights of all storeys that are placed among the others, in metres above the origin of
// their own model: that of the placement; where all storeys of a model stand at the height of what
// they are a part of, the Elevation above that. A storey has none that has neither, and where it
// would be a guess.
void MeasureStoreys(const FederatedModel& model, WorldPlaces& places, SpatialStructure& structure);

}  // namespace corvel
