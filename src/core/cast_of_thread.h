// EntityCast for threads beside that of the run.
#pragma once

#include <cstddef>
#include <typeinfo>

#include "core/entity_cast.h"

namespace corvel {

// Remembers as EntityCast does, but for its owner alone: one thread at a time.
template <class Target>
class CastOfThread {
 public:
  // As dynamic_cast<Target*>(&entity).
  Target* operator()(IFC::IfcEntity& entity) {
    const std::type_info* const dynamicClass = &typeid(entity);
    const std::ptrdiff_t* const known = memory_.Find(dynamicClass);
    const std::ptrdiff_t offset = known != nullptr ? *known : Learn(entity, dynamicClass);
    if (offset == ClassMemory::kNotOfThisClass) return nullptr;
    return reinterpret_cast<Target*>(reinterpret_cast<char*>(&entity) + offset);
  }

 private:
  std::ptrdiff_t Learn(IFC::IfcEntity& entity, const std::type_info* dynamicClass) {
    auto* const target = dynamic_cast<Target*>(&entity);
    const std::ptrdiff_t offset =
        target == nullptr ? ClassMemory::kNotOfThisClass
                          : reinterpret_cast<char*>(target) - reinterpret_cast<char*>(&entity);
    memory_.Remember(dynamicClass, offset);
    return offset;
  }

  ClassMemory memory_;
};

}  // namespace corvel
