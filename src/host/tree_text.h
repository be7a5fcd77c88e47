// The scene of a model as people and as programs read it.
#pragma once

#include <functional>

#include "core/text.h"
#include "host/model_scene.h"

namespace corvel::host {

// Takes text piece by piece, which is borrowed; false: nobody wants any more.
using TextSink = std::function<bool(WideView)>;

// A line for each object: its number, class, GUID ("-" for none) and name, below its parent and
// two blanks further in, children by ascending number. Behind kDeepestIndent levels the depth
// stands in front of the line instead. Of objects whose parents go in a circle the one with the
// smallest number stands at the top level. False when the sink gave that.
inline constexpr unsigned kDeepestIndent = 32;
bool WriteTreeText(const ModelScene& scene, const TextSink& sink);

// One JSON object with a line feed behind it; each of its objects has a line. Keys and their order
// are fixed: {"file", "schema" or null, "remarks": [], "problems": [], "objects": [{"number",
// "class", "guid", "name", "parent": number or null}]}, objects by ascending number. Bytes that are
// no valid text become U+FFFD.
bool WriteTreeJson(WideView path, const ModelScene& scene, const TextSink& sink);

}  // namespace corvel::host
