// How records of a class are filed.
#pragma once

#include <cstddef>
#include <string_view>

#include "core/entity.h"
#include "step/factories.h"

namespace corvel {

// For MainContainer::AddUnseen, of the class that files write as `name` and `entity` is an object
// of. Asked once for each class of a file.
std::ptrdiff_t SortOfClass(const FactoryTable& factories, std::string_view name,
                           IFC::IfcEntity* entity);

}  // namespace corvel
