#include "host/check/object_identity.h"

#include <functional>
#include <string_view>

#include "core/entity_cast.h"
#include "core/root_interfaces.h"
#include "step/carried/carried_text.h"

namespace corvel::host {

std::uint64_t ObjectIdentity::Of(IFC::IfcEntity& entity) {
  const auto* const root = EntityCast<IFC::VirtualIfcRoot>(&entity);
  const std::string_view guid = root == nullptr ? std::string_view() : root->getGlobalId();
  if (!guid.empty()) return std::hash<std::string_view>()(guid);
  stream_.StepBack(stream_.Text().size());
  writer_.WriteEntityLine(entity);
  return std::hash<std::string>()(WithoutNumbers(stream_.Text()));
}

}  // namespace corvel::host
