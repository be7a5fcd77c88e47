#include "half_of_products.h"

#include <unordered_map>
#include <unordered_set>

#include "core/entity_cast.h"
#include "core/root_interfaces.h"
#include "schema/interfaces/product.h"

namespace corvel::bench {

namespace {

using Parents = std::unordered_map<const IFC::IfcEntity*, const IFC::IfcEntity*>;

// The objects with a GUID that a relation refers to, attributes in order.
std::vector<IFC::IfcEntity*> ObjectsOf(const IFC::IfcEntity& relation) {
  IFC::ChildQueue children;
  relation.collectChildren(children);
  std::vector<IFC::IfcEntity*> objects;
  for (std::size_t i = 0; i < children.Size(); ++i) {
    IFC::IfcEntity* const child = children[i].entity;
    if (EntityCast<IFC::VirtualIfcRoot>(child) != nullptr) objects.push_back(child);
  }
  return objects;
}

// Containment names the spatial object last, all other relations name the whole first.
void NoteParents(const std::vector<IFC::IfcEntity*>& relations, bool wholeIsLast,
                 Parents& parents) {
  for (const IFC::IfcEntity* const relation : relations) {
    const std::vector<IFC::IfcEntity*> objects = ObjectsOf(*relation);
    if (objects.empty()) continue;
    const IFC::IfcEntity* const whole = wholeIsLast ? objects.back() : objects.front();
    for (const IFC::IfcEntity* const object : objects) {
      if (object != whole) parents.emplace(object, whole);
    }
  }
}

}  // namespace

HalfOfProducts DropHalfOfProducts(const IfcDocument& document) {
  const IFC::MainContainer& container = *document.mainContainer;
  Parents parents;
  NoteParents(container.relAggregates, false, parents);
  NoteParents(container.relVoidsElement, false, parents);
  NoteParents(container.relFillsElement, false, parents);
  NoteParents(container.relContainedInSpatialStructure, true, parents);
  std::unordered_set<const IFC::IfcEntity*> wholes;
  for (const auto& [object, whole] : parents) wholes.insert(whole);

  HalfOfProducts choice;
  bool drop = false;
  const NumberTable& entities = container.originalEntities;
  for (auto at = entities.First(); at; at = entities.Next(at.number)) {
    if (EntityCast<IFC::VirtualIfcProduct>(at.entity) == nullptr) continue;
    if (!wholes.contains(at.entity)) drop = !drop;
    const bool dropped = drop && !wholes.contains(at.entity);
    const auto found = parents.find(at.entity);
    const std::uint32_t parent = found == parents.end() ? 0 : found->second->marker;
    (dropped ? choice.deleted : choice.saved).push_back({at.number, parent});
  }
  return choice;
}

}  // namespace corvel::bench
