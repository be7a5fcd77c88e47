// What a comparison has found, for people and for programs.
#pragma once

#include "host/diff/changes.h"
#include "host/tree_text.h"

namespace corvel::host::diff {

// Lines of 80 columns at most; longer values are cut, which "..." tells. First the changes that
// many objects have in common, then what was removed and added, and each object with the changes
// that it has alone. Nothing of a model reaches a terminal unprintable. False when the sink gave
// that.
bool WriteDiffText(const ModelDiff& diff, bool inColours, const TextSink& sink);

// One JSON object as docs/diff.schema.json describes it, with a line feed behind it.
bool WriteDiffJson(const ModelDiff& diff, double toleranceMm, const TextSink& sink);

}  // namespace corvel::host::diff
