// The bodies of the interface operations, written once for all releases.
//
// Each is a template over the generated class that it belongs to; classes of the same release that
// it has to make or cast to are template arguments. Where releases differ in what they declare, a
// body asks the class ("has it this member?") instead of the release. The generated forwarders are
// the only callers, so what an operation promises is told at the interface, not here.
#pragma once

#include <utility>  // IWYU pragma: export

#include "schema/interfaces/implement_geometry.h"    // IWYU pragma: export
#include "schema/interfaces/implement_product.h"     // IWYU pragma: export
#include "schema/interfaces/implement_properties.h"  // IWYU pragma: export
#include "schema/interfaces/implement_units.h"       // IWYU pragma: export
#include "schema/interfaces/interfaces.h"            // IWYU pragma: export
