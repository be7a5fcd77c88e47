// How the record of each class begins.
#pragma once

#include <array>
#include <cstddef>
#include <typeinfo>
#include <vector>

#include "core/entity.h"
#include "core/entity_cast.h"

namespace corvel {

// "IFCWALL(" of a class. Copied whole, which needs no call.
struct ClassOpening {
  static constexpr std::size_t kRoom = 64;

  std::array<char, kRoom> text{};
  std::size_t size = 0;
};

// Makes each once. Of one thread: every writer has its own.
class ClassOpenings {
 public:
  // Void after the next call. Throws std::logic_error for a name that is no class of a schema.
  const ClassOpening& Of(const IFC::IfcEntity& entity) {
    const std::ptrdiff_t* const known = indices_.Find(&typeid(entity));
    if (known == nullptr) [[unlikely]]
      return Make(entity);
    return openings_[static_cast<std::size_t>(*known)];
  }

 private:
  const ClassOpening& Make(const IFC::IfcEntity& entity);

  ClassMemory indices_;
  std::vector<ClassOpening> openings_;
};

}  // namespace corvel
