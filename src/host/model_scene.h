// The scene of a model file: what a viewer shows as a tree, and what a merge keeps or drops.
//
// Its objects are the projects of the file and every product. Each has a parent: what an
// IfcRelAggregates or IfcRelNests relates it to, the structure of an
// IfcRelContainedInSpatialStructure or the element of an IfcRelVoidsElement. Among several such
// relations that with the smallest number counts; an object without any belongs to the first
// project, which itself never has a parent. A parent that is no object of the scene, or the object
// itself, is none.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/text.h"
#include "step/factories.h"

namespace corvel::host {

inline constexpr std::uint32_t kNoObject = 0xFFFFFFFFu;

struct SceneObject {
  std::uint32_t number = 0;          // of the record, never 0
  std::uint32_t parent = kNoObject;  // index; parents may go in a circle
  std::uint16_t classId = 0;         // index
  bool isProject = false;
};

// How much of the texts is read. What a merge without lists needs is nothing of them.
enum class SceneTexts { kNone, kGuids, kGuidsAndNames };

struct ModelScene {
  // By ascending number, each number once. Of records with the same number the first counts.
  std::vector<SceneObject> objects;
  std::vector<std::string> classes;  // "IfcWall": those of objects, by classId

  std::optional<SchemaNamespace> schema;  // nothing: the file could not be read as a model
  std::vector<WideString> remarks;        // worth knowing
  std::vector<WideString> problems;       // what is wrong with the file as a whole
  // The file could not be looked through, `problems` tell why: it may have objects that are not
  // here. A file of a release that nobody serves is not meant.
  bool isUnreadable = false;
  // Where a file ended that has no closing line.
  std::optional<std::int64_t> endWithoutClosingLine;

  const std::string& ClassOf(const SceneObject& object) const { return classes[object.classId]; }
  // Decoded; empty where the record has none or it was not read.
  WideView GuidOf(std::size_t index) const;
  WideView NameOf(std::size_t index) const;
  // Null: there is none.
  const SceneObject* Find(std::uint32_t number) const;

  // Texts of all objects in one piece; each has its name behind its GUID.
  struct Label {
    std::uint64_t start = 0;
    std::uint32_t guidLength = 0;
    std::uint32_t nameLength = 0;
  };
  WideString texts;
  std::vector<Label> labels;  // by object; empty for SceneTexts::kNone
};

// One pass over the file, without making objects of it: some hundred megabytes a second. Memory:
// 12 bytes per object and its texts, and 12 per related object until the parents are settled.
// Records that cannot be read don't count: whoever reads the model reports them.
// If `tolerant` the records are those that a tolerant reading takes, under the numbers that they
// have there; a class that the release lacks is what another release says of it.
ModelScene ReadScene(const WideString& path, SceneTexts texts, bool tolerant = false);

}  // namespace corvel::host
