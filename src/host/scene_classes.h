// What a record is for the scene of its model, told by the name of its class.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/memory_pool.h"
#include "step/factories.h"

namespace corvel::host {

// Where a relation has the parent and where its children. Counted from 0; the same in all releases.
struct RelationShape {
  std::string_view className;  // as files write it
  std::uint8_t parentArgument;
  std::uint8_t childArgument;
  bool manyChildren;  // a list of them, or one reference
};

// The relations that give an object its parent, and their subtypes.
inline constexpr RelationShape kRelations[] = {
    {"IFCRELAGGREGATES", 4, 5, true},    {"IFCRELAGGREGATESRESOURCES", 4, 5, true},
    {"IFCRELNESTS", 4, 5, true},         {"IFCRELCONTAINEDINSPATIALSTRUCTURE", 5, 4, true},
    {"IFCRELVOIDSELEMENT", 4, 5, false},
};

// Arguments of every object and relation.
inline constexpr unsigned kGuidArgument = 0;
inline constexpr unsigned kNameArgument = 2;

struct SceneClass {
  enum Kind : std::uint8_t { kOther, kProject, kProduct, kRelation };
  Kind kind = kOther;
  std::uint16_t id = 0;  // of objects: which of the names
  const RelationShape* relation = nullptr;
};

// Answers for one release; each class is asked about once.
class SceneClasses {
 public:
  // `others`: releases that know what the release of `factories` does not; none in strict readings.
  explicit SceneClasses(const FactoryTable& factories,
                        std::span<const FactoryTable* const> others = {});

  // `name` as files write it. A class that no release has is kOther.
  SceneClass Find(std::string_view name);
  // By id: the names of the classes of objects that were met, as the schema spells them.
  std::vector<std::string> TakeNames() { return std::move(names_); }

 private:
  SceneClass Ask(std::string_view name, EntityCreator create);
  SceneClass FindAmongOthers(std::string_view word);

  const FactoryTable& factories_;
  std::span<const FactoryTable* const> others_;
  MemoryPool pool_;  // of the objects that are asked
  std::vector<std::string> names_;
  std::vector<std::optional<SceneClass>> found_;  // by row of the factories
  std::map<const FactoryRow*, SceneClass> foundAmongOthers_;
};

}  // namespace corvel::host
