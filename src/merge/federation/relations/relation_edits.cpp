#include "merge/federation/relations/relation_edits.h"

namespace corvel {

bool RelationEdits::Leave(IFC::IfcEntity& relation, const AttributeFacts& attribute,
                          const Members& members) {
  const Attribute place(relation, attribute);
  if (attribute.depth == 0) {
    ++mended_.left;
    if (place.Facts().IsOptional() && place.Clear()) return true;
    Delete(relation);
    return false;
  }
  mended_.left += place.RemoveReferences(
      [&](const IFC::IfcEntity* member) { return members.contains(member); });
  const auto* const list = place.As<EntityList>();
  if (list == nullptr || !list->empty()) return true;
  Delete(relation);
  return false;
}

bool RelationEdits::Leave(IFC::IfcEntity& relation, std::string_view attribute,
                          const Members& members) {
  const auto found = AttributesOf(relation).Find(attribute);
  return !found || Leave(relation, found->Facts(), members);
}

void RelationEdits::Delete(IFC::IfcEntity& entity) {
  model_.Delete(entity);
  mended_.deleted.push_back(&entity);
}

}  // namespace corvel
