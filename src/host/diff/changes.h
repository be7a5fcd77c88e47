// What a comparison has found. Texts are UTF-8.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "merge/federation/tree/transform.h"

namespace corvel::host::diff {

enum class ChangeKind : std::uint8_t {
  kClass,
  kAttribute,    // of the object itself, and what hangs on it: its shape, what it is called
  kProperty,     // "Pset_WallCommon.FireRating"
  kQuantity,     // "Qto_WallBaseQuantities.Length"
  kPlace,        // where it stands in the world
  kType,         // which type it is of
  kMaterial,     // and other materials behind it
  kContainment,  // where it is contained, or what it is a part of
  kRelation      // every other one
};

// From one place in the world to another.
struct Movement {
  Triple by{};           // of the object's own origin, in metres
  double degrees = 0.0;  // turned about `axis`
  Triple axis{};
  // The same for whatever moved along with it: where the origin of the world came to.
  Transform ofWorld;
};

struct Change {
  ChangeKind kind = ChangeKind::kAttribute;
  std::string path;  // "Name", "Representation.Representations[Body].Items[1].Depth"
  std::optional<std::string> before;  // nothing: there was none
  std::optional<std::string> after;   // nothing: there is none
  std::optional<Movement> movement;   // of places where both are told
};

struct ObjectLabel {
  std::uint32_t number = 0;
  std::string className;  // "IfcWall"
  std::string guid;       // empty: it has none
  std::string name;       // empty: likewise
};

struct ChangedObject {
  ObjectLabel before;
  ObjectLabel after;
  std::vector<Change> changes;
  std::size_t omitted = 0;  // changes beyond kMostChanges
};
inline constexpr std::size_t kMostChanges = 100;

struct ComparedFile {
  std::string path;
  std::string schema;  // "IFC4"
  std::size_t objects = 0;
};

struct ModelDiff {
  ComparedFile before;
  ComparedFile after;
  std::vector<ObjectLabel> added;
  std::vector<ObjectLabel> removed;
  std::vector<ChangedObject> changed;
  // That are the same under another GUID, whether they have changed or not.
  std::vector<std::pair<ObjectLabel, ObjectLabel>> renamed;
  std::size_t same = 0;  // pairs without a change

  bool IsEmpty() const {
    return added.empty() && removed.empty() && changed.empty() && renamed.empty() &&
           before.schema == after.schema;
  }
};

}  // namespace corvel::host::diff
