// Which object came with which input, said in the model itself.
#pragma once

#include <cstddef>

#include "core/ticker.h"
#include "merge/federation/federated_model.h"

namespace corvel {

// Makes one group for each input, named after its file, with all its products: a product that
// others gave way to is in the group of each input that had it. An input without products gets
// none. The owner history is that of the input's project. GUIDs follow from the positions and names
// of the inputs. `stamped` is the number of groups. False: the user cancelled, or (reported) there
// is no number left for a group.
bool StampInputs(FederatedModel& model, Ticker& ticker, std::size_t& stamped);

}  // namespace corvel
