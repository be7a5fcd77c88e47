#include "merge/federation/relations/related_list.h"

#include <string_view>

#include "schema/attributes.h"

namespace corvel {

const AttributeFacts* ListOfRelated(const IFC::IfcEntity& relation) {
  for (const ConstAttribute attribute : AttributesOf(relation)) {
    const bool isList = Refers(attribute.Facts().kind) && attribute.Facts().depth == 1;
    if (isList && attribute.Name().starts_with("Related")) return &attribute.Facts();
  }
  return nullptr;
}

}  // namespace corvel
