// The scene of a model as people and as programs read it.
#pragma once

#include <functional>
#include <vector>

#include "core/text.h"
#include "host/model_scene.h"
#include "host/tree_choice.h"
#include "step/streams/archive_entries.h"

namespace corvel::host {

// Takes text piece by piece, which is borrowed; false: nobody wants any more.
using TextSink = std::function<bool(WideView)>;

// A line for each object: its number, class, GUID ("-" for none) and name, below its parent and
// two blanks further in, children by ascending number. Behind kDeepestIndent levels the depth
// stands in front of the line instead. Of objects whose parents go in a circle the one with the
// smallest number stands at the top level. False when the sink gave that.
inline constexpr unsigned kDeepestIndent = 32;
// Of a look only what it shows, flat lines without indent, and behind the name each property: "  |
// Pset.Name = 'value'".
bool WriteTreeText(const ModelScene& scene, const TextSink& sink, const TreeLook& look = {});

// One JSON object with a line feed behind it; each of its objects has a line. Keys and their order
// are fixed: {"file", "schema" or null, "remarks": [], "problems": [], "objects": [{"number",
// "class", "guid", "name", "parent": number or null}]}, objects by ascending number. Bytes that are
// no valid text become U+FFFD.
// Of a look only what it shows, and as the last key {"properties": {name: value}}.
bool WriteTreeJson(WideView path, const ModelScene& scene, const TextSink& sink,
                   const TreeLook& look = {});

// What a container holds: a line for each entry as an input is named, `CONTAINER|ENTRY`, and its
// bytes; for programs {"file", "entries": [{"name", "bytes"}]}.
bool WriteEntriesText(WideView path, const std::vector<FileStream::ArchiveEntry>& entries,
                      const TextSink& sink);
bool WriteEntriesJson(WideView path, const std::vector<FileStream::ArchiveEntry>& entries,
                      const TextSink& sink);

}  // namespace corvel::host
