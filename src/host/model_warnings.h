// What the user is told of models that go together badly, although the merge has no word for it.
#pragma once

#include <memory>
#include <vector>

#include "core/text.h"
#include "merge/run_model.h"

namespace corvel::host {

// Lines about the later models of a run, each measured by the first one: which option would let a
// model pass that was left out for its units; a length unit of another size; another map
// conversion. Nothing is changed, and none of it is an error. The models have been compared. Looks
// at each object of a model once.
// `placesByMap`: the run itself tells of map conversions, and nothing is said of them here.
std::vector<WideString> WarningsAbout(const std::vector<RunModel>& models, bool placesByMap);

}  // namespace corvel::host
