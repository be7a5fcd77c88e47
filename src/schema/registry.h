// The only place where a release is chosen.
#pragma once

#include <span>
#include <string_view>

#include "step/factories.h"

namespace corvel {

// The classes of a release. Throws std::logic_error for one that is left out of this build, as
// builds for development do.
const FactoryTable& FactoriesOf(SchemaNamespace schema);
// The releases of this build, the oldest first; a developer's build leaves some out. Tables live as
// long as the program.
std::span<const FactoryTable* const> BuiltFactories();
// "IFC2X3"
std::string_view NameOf(SchemaNamespace schema);

}  // namespace corvel
