#include "merge/duplicate_cleanup.h"

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "core/entity_cast.h"
#include "core/root_interfaces.h"
#include "merge/marking.h"

namespace corvel {

namespace {

// By number: of two parents that say the same the later one goes, on every run, wherever the
// objects lie in memory.
std::vector<IFC::IfcEntity*> ParentsOf(const IFC::IfcEntity& entity) {
  const auto members = entity.parents.Members();
  std::vector<IFC::IfcEntity*> parents(members.begin(), members.end());
  std::stable_sort(
      parents.begin(), parents.end(),
      [](const IFC::IfcEntity* a, const IFC::IfcEntity* b) { return a->marker < b->marker; });
  return parents;
}

// True when every child of `a` is one of `b`.
bool CoversChildrenOf(const IFC::IfcEntity& b, const IFC::IfcEntity& a) {
  IFC::ChildQueue children;
  a.CollectAllChildren(children);
  while (!children.IsEmpty()) {
    IFC::IfcEntity* const child = children.TakeBack().entity;
    if (child != nullptr && !ParentIncludesChild(b, child)) return false;
  }
  return true;
}

// The GUIDs that a relation holds beside that of `entity`, ascending, joined by "|".
std::string KeyOfOthers(const IFC::IfcEntity& relation, const IFC::IfcEntity& entity) {
  IFC::ChildQueue children;
  relation.CollectAllChildren(children);
  std::vector<std::string_view> guids;
  while (!children.IsEmpty()) {
    IFC::IfcEntity* const child = children.TakeBack().entity;
    if (child == nullptr || child == &entity) continue;
    if (auto* const root = EntityCast<IFC::VirtualIfcRoot>(child)) {
      guids.emplace_back(root->getGlobalId());
    }
  }
  std::sort(guids.begin(), guids.end());
  std::string key;
  for (std::size_t i = 0; i < guids.size(); ++i) {
    if (i != 0) key.push_back('|');
    key += guids[i];
  }
  return key;
}

}  // namespace

void DeleteDuplicatedParents(IFC::IfcEntity& entity) {
  const std::vector<IFC::IfcEntity*> parents = ParentsOf(entity);
  for (std::size_t i = 0; i < parents.size(); ++i) {
    const IFC::IfcEntity& first = *parents[i];
    if (IsDeleted(first)) continue;
    for (std::size_t j = i + 1; j < parents.size(); ++j) {
      IFC::IfcEntity& second = *parents[j];
      // By address: a class has one name, and one address for it.
      if (IsDeleted(second) || first.getClassName() != second.getClassName()) continue;
      if (CoversChildrenOf(second, first)) second.marker = IFC::kDeleted;
    }
  }
}

bool ParentIncludesChild(const IFC::IfcEntity& relation, IFC::IfcEntity* child) {
  auto* const childRoot = EntityCast<IFC::VirtualIfcRoot>(child);
  IFC::ChildQueue members;
  relation.CollectAllChildren(members);
  while (!members.IsEmpty()) {
    IFC::IfcEntity* const member = members.TakeBack().entity;
    if (member == nullptr) continue;
    auto* const memberRoot = EntityCast<IFC::VirtualIfcRoot>(member);
    const bool same = childRoot == nullptr || memberRoot == nullptr
                          ? child->getClassName() == member->getClassName()
                          : std::string_view(childRoot->getGlobalId()) == memberRoot->getGlobalId();
    if (same) return true;
  }
  return false;
}

void CheckEntityForDuplicates(IFC::IfcEntity* entity) {
  if (entity == nullptr) return;
  std::map<std::string, std::vector<IFC::IfcEntity*>> groups;
  for (IFC::IfcEntity* const parent : ParentsOf(*entity)) {
    if (IsDeleted(*parent) || WideView(parent->getClassName()) != u"IfcRelAggregates") continue;
    std::string key = KeyOfOthers(*parent, *entity);
    // A relation that holds nothing else says nothing twice.
    if (!key.empty()) groups[std::move(key)].push_back(parent);
  }
  for (const auto& [key, relations] : groups) {
    for (std::size_t i = 1; i < relations.size(); ++i) relations[i]->marker = IFC::kDeleted;
  }
}

}  // namespace corvel
