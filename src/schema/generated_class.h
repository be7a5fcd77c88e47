// What the declarations of the generated classes need.
#pragma once

#include <cstdint>

#include "core/entity.h"  // IWYU pragma: export
#include "core/list.h"    // IWYU pragma: export

// Before the constructor of every generated class. Constructors of a chain of classes with virtual
// bases set the table pointers again at each level, from tables made for that moment. Put into one
// another as a whole, what remains is one store for each member and each table. Compilers do not
// do so by themselves beyond a few levels. The constructors are user-provided, since otherwise
// `T()` would clear the whole object before it.
#if defined(_MSC_VER) && !defined(__clang__)
#define CORVEL_CONSTRUCTOR __forceinline
#else
#define CORVEL_CONSTRUCTOR [[gnu::always_inline]]
#endif
