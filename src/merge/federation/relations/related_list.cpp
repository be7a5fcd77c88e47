#include "merge/federation/relations/related_list.h"

#include <string_view>

#include "schema/attributes.h"

namespace corvel {

const AttributeFacts* ListOfRelated(const ClassFacts* facts) {
  for (std::size_t i = 0; facts != nullptr && i < facts->AttributeCount(); ++i) {
    const AttributeFacts& attribute = facts->Attribute(i);
    const bool isList = Refers(attribute.kind) && attribute.depth == 1;
    if (isList && std::string_view(attribute.name).starts_with("Related")) return &attribute;
  }
  return nullptr;
}

const AttributeFacts* ListOfRelated(const IFC::IfcEntity& relation) {
  return ListOfRelated(FindFacts(relation));
}

}  // namespace corvel
