#include "host/scene_classes.h"

#include <algorithm>
#include <iterator>

#include "schema/interfaces/product.h"
#include "step/reader/record_mender.h"

namespace corvel::host {

namespace {

constexpr std::uint64_t kPoolBlock = 4096;
const RelationShape* RelationOf(std::string_view name) {
  const auto* const found =
      std::find_if(std::begin(kRelations), std::end(kRelations),
                   [name](const RelationShape& shape) { return shape.className == name; });
  return found == std::end(kRelations) ? nullptr : found;
}

}  // namespace

SceneClasses::SceneClasses(const FactoryTable& factories,
                           std::span<const FactoryTable* const> others)
    : factories_(factories),
      others_(others),
      pool_(kPoolBlock),
      found_(factories.mask + std::size_t{1}) {}

SceneClass SceneClasses::Find(std::string_view name) {
  if (name.empty()) return {};  // no class has been read
  const FactoryRow* const row = factories_.FindRow(name);
  if (row == nullptr) return FindAmongOthers(name);
  std::optional<SceneClass>& found = found_[static_cast<std::size_t>(row - factories_.slots)];
  if (!found) found = Ask(name, row->create);
  return *found;
}

// A tolerant reading takes names in any case.
SceneClass SceneClasses::FindAmongOthers(std::string_view word) {
  if (others_.empty()) return {};
  const std::string name = TableName(word);
  if (const FactoryRow* const own = factories_.FindRow(name)) return Find(own->name);
  for (const FactoryTable* const other : others_) {
    const FactoryRow* const row = other->FindRow(name);
    if (row == nullptr) continue;
    const auto [known, isNew] = foundAmongOthers_.try_emplace(row);
    if (isNew) known->second = Ask(name, row->create);
    return known->second;
  }
  return {};
}

SceneClass SceneClasses::Ask(std::string_view name, EntityCreator create) {
  SceneClass found;
  if (const RelationShape* const relation = RelationOf(name)) {
    found.kind = SceneClass::kRelation;
    found.relation = relation;
    return found;
  }
  IFC::IfcEntity* const blank = create(pool_);
  // Asked once for a class, and by several threads.
  if (dynamic_cast<IFC::IfcProjectVirtual*>(blank) != nullptr) {
    found.kind = SceneClass::kProject;
  } else if (dynamic_cast<IFC::VirtualIfcProduct*>(blank) != nullptr) {
    found.kind = SceneClass::kProduct;
  } else {
    return found;
  }
  found.id = static_cast<std::uint16_t>(names_.size());
  names_.push_back(Narrow(blank->getClassName()));
  return found;
}

}  // namespace corvel::host
