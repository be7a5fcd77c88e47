#include "host/scene_classes.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>

#include "core/entity_cast.h"
#include "schema/interfaces/product.h"

namespace corvel::host {

namespace {

constexpr std::uint64_t kPoolBlock = 4096;
constexpr std::size_t kFirstSize = 256;

// From the ends of a name and its length: enough to tell classes apart, and a file has millions of
// names to be looked up.
std::size_t HashOf(std::string_view name) {
  std::uint64_t head = 0;
  std::uint64_t tail = 0;
  const std::size_t count = std::min(name.size(), sizeof head);
  std::memcpy(&head, name.data(), count);
  std::memcpy(&tail, name.data() + name.size() - count, count);
  const std::uint64_t mixed =
      (head * 0x9E3779B97F4A7C15ull) ^ ((tail + name.size()) * 0xC2B2AE3D27D4EB4Full);
  return static_cast<std::size_t>(mixed >> 40);
}

const RelationShape* RelationOf(std::string_view name) {
  const auto* const found =
      std::find_if(std::begin(kRelations), std::end(kRelations),
                   [name](const RelationShape& shape) { return shape.className == name; });
  return found == std::end(kRelations) ? nullptr : found;
}

}  // namespace

SceneClasses::SceneClasses(const FactoryTable& factories)
    : factories_(factories), pool_(kPoolBlock), entries_(kFirstSize) {}

SceneClasses::Entry& SceneClasses::SlotOf(std::string_view name) {
  const std::size_t mask = entries_.size() - 1;
  std::size_t slot = HashOf(name) & mask;
  while (!entries_[slot].name.empty() && entries_[slot].name != name) slot = (slot + 1) & mask;
  return entries_[slot];
}

void SceneClasses::Grow() {
  std::vector<Entry> smaller(entries_.size() * 2);
  smaller.swap(entries_);
  for (Entry& entry : smaller) {
    if (!entry.name.empty()) SlotOf(entry.name) = std::move(entry);
  }
}

// Names that the release does not have are not kept: a file may hold any number of them.
SceneClass SceneClasses::Find(std::string_view name) {
  if (name.empty()) return {};
  Entry& entry = SlotOf(name);
  if (!entry.name.empty()) return entry.found;
  const EntityCreator create = factories_.Find(name);
  if (create == nullptr) return {};
  entry = {std::string(name), Ask(name, create)};
  const SceneClass found = entry.found;
  if (++used_ * 2 > entries_.size()) Grow();
  return found;
}

SceneClass SceneClasses::Ask(std::string_view name, EntityCreator create) {
  SceneClass found;
  if (const RelationShape* const relation = RelationOf(name)) {
    found.kind = SceneClass::kRelation;
    found.relation = relation;
    return found;
  }
  IFC::IfcEntity* const blank = create(pool_);
  if (EntityCast<IFC::IfcProjectVirtual>(blank) != nullptr) {
    found.kind = SceneClass::kProject;
  } else if (EntityCast<IFC::VirtualIfcProduct>(blank) != nullptr) {
    found.kind = SceneClass::kProduct;
  } else {
    return found;
  }
  found.id = static_cast<std::uint16_t>(names_.size());
  names_.push_back(Narrow(blank->getClassName()));
  return found;
}

}  // namespace corvel::host
