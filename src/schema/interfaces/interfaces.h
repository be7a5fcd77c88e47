// All interfaces through which the engine reaches the classes of a release that it may not name.
//
// The engine holds IfcEntity pointers, asks corvel::EntityCast for the interface that it needs and
// calls it; null means that the object is of no such concept. The generated class that stands for
// the concept in each release has the interface as a virtual base. References of an object lead to
// classes of its own release only: an argument of another release fails the cast and becomes null.
//
// Arguments are borrowed for the call, but for texts, which are kept and have to live in the
// model's pool; results belong to the model. Setters change the object alone: whoever sets a
// reference tells the container (NoteChangedReferences), and whoever gets a new object files it.
// Costs are constant, or those of the list that is looked through; nothing throws but
// std::bad_alloc.
#pragma once

#include "core/root_interfaces.h"          // IWYU pragma: export
#include "schema/interfaces/geometry.h"    // IWYU pragma: export
#include "schema/interfaces/product.h"     // IWYU pragma: export
#include "schema/interfaces/properties.h"  // IWYU pragma: export
#include "schema/interfaces/units.h"       // IWYU pragma: export
