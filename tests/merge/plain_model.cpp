// The plain graph of a document, found out by asking its objects.
#include <cstdint>
#include <map>
#include <vector>

#include "core/entity_cast.h"
#include "literal_marking.h"
#include "schema/interfaces/interfaces.h"

namespace corvel::test {

bool InOrderOfNumber::operator()(const PlainObject* a, const PlainObject* b) const {
  return a->number < b->number;
}

PlainModel::PlainModel(IfcDocument& document) {
  const IFC::MainContainer& container = *document.mainContainer;
  for (auto at = container.entities.First(); at; at = container.entities.Next(at.number)) {
    PlainObject* const object = Known(at.entity);
    object->number = at.number;
    entities[at.number] = object;
  }
  const NumberTable& originals = container.originalEntities;
  for (auto at = originals.First(); at; at = originals.Next(at.number)) {
    originalEntities[at.number] = Known(at.entity);
  }
  // Objects that are found on the way come behind those that led to them.
  for (std::size_t i = 0; i < objects.size(); ++i) NoteChildren(objects[i]);  // NOLINT
  for (PlainObject& object : objects) {
    NoteMembers(object);
    NoteRelatedObjects(object);
  }
  if (document.getIfcProject() != nullptr) project = Known(document.getIfcProject());
}

PlainObject* PlainModel::Of(std::uint32_t originalNumber) const {
  const auto found = originalEntities.find(originalNumber);
  return found == originalEntities.end() ? nullptr : found->second;
}

PlainObject* PlainModel::Known(IFC::IfcEntity* entity) {
  if (entity == nullptr) return nullptr;
  const auto found = known_.find(entity);
  if (found != known_.end()) return found->second;
  PlainObject& object = objects.emplace_back();
  object.original = entity;
  object.className = entity->getClassName();
  object.marker = static_cast<int>(static_cast<std::int32_t>(entity->marker));
  object.visited = entity->visited;
  known_[entity] = &object;
  return &object;
}

void PlainModel::NoteChildren(PlainObject& object) {
  IFC::ChildQueue children;
  object.original->collectChildren(children);
  for (std::size_t i = 0; i < children.Size(); ++i) {
    object.children.push_back({Known(children[i].entity), children[i].canLose});
  }
}

// A member is whose life alone keeps the object alive.
void PlainModel::NoteMembers(PlainObject& object) {
  std::map<IFC::IfcEntity*, std::uint32_t> before;
  for (const PlainChild& child : object.children) {
    if (child.object != nullptr) before[child.object->original] = child.object->original->marker;
  }
  for (const auto& [child, marker] : before) child->marker = IFC::kDeleted;
  object.livesOnMembers = object.original->hasNoLiveMembers();
  for (const auto& [child, marker] : before) {
    if (!object.livesOnMembers) break;
    child->marker = IFC::kUnfiled;
    if (!object.original->hasNoLiveMembers()) object.members.insert(Known(child));
    child->marker = IFC::kDeleted;
  }
  for (const auto& [child, marker] : before) child->marker = marker;
}

void PlainModel::NoteRelatedObjects(PlainObject& object) {
  const auto* const relation = EntityCast<IFC::VirtualPropertyRelation>(object.original);
  object.isPropertyRelation = relation != nullptr;
  if (relation == nullptr) return;
  std::vector<IFC::IfcEntity*> related;
  relation->collectRelatedObjects(related);
  for (IFC::IfcEntity* const entity : related) object.relatedObjects.push_back(Known(entity));
}

}  // namespace corvel::test
