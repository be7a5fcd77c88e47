#include "core/entity_cast.h"

namespace corvel {

void ClassMemory::Remember(const std::type_info* dynamicClass, std::ptrdiff_t offset) {
  entries_.Enter(HashOf(dynamicClass), [](const Entry&) { return false; }) = {dynamicClass, offset};
}

bool ClassTest::AdmitsAnother(const IFC::IfcEntity* entity, const std::type_info* dynamicClass) {
  const std::ptrdiff_t* const known = memory_.Find(dynamicClass);
  lastAnswer_ = known != nullptr ? *known != ClassMemory::kNotOfThisClass : slowTest_(entity);
  if (known == nullptr) {
    // The offset is not needed here: any number stands for yes.
    memory_.Remember(dynamicClass, lastAnswer_ ? 0 : ClassMemory::kNotOfThisClass);
  }
  lastClass_ = dynamicClass;
  return lastAnswer_;
}

}  // namespace corvel
