// Which sites, buildings and storeys of several models are the same one.
#pragma once

#include "core/ticker.h"
#include "merge/federation/choices.h"
#include "merge/federation/tree/spatial_structure.h"

namespace corvel {

// Sets the survivor of every object that is one with an object of an earlier input, and why. Goes
// through the levels from the top down, over all inputs at once, so that the order of the inputs
// decides who survives and nothing else:
// - Objects are compared whose wholes became one. A level that one of two models lacks altogether
//   is passed over between them.
// - Class and composition agree, and no two objects of one input become one.
// - In turn by GUID, real name, height, and as the only ones of their level, as far as `matching`
//   says. Who would match several takes no part in what follows, and neither do those.
// - A name joins no two storeys that stand at different heights.
// - What the user told of an object comes first, wherever it stands, and is all that happens to it.
// Needs the heights of the storeys. False: the user cancelled.
bool MatchTrees(SpatialStructure& structure, TreeMatching matching, double toleranceMetres,
                Ticker& ticker);

}  // namespace corvel
