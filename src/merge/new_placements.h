// New points, directions and placements of a model, filed in it.
//
// All give null when the model is out of numbers, which has been reported. Nothing new comes into
// it from then on: where the last of several new objects is there, so are those before it. What is
// handed in may be null.
#pragma once

#include <array>

#include "merge/document.h"
#include "schema/interfaces/geometry.h"

namespace corvel {

IFC::IfcEntity* NewPoint(IfcDocument& document, const std::array<double, 3>& coordinates);
IFC::IfcEntity* NewDirection(IfcDocument& document, const std::array<double, 3>& ratios);
// In 3D. An axis or reference direction that is null is absent.
IFC::IfcEntity* NewAxes(IfcDocument& document, IFC::IfcEntity* location, IFC::IfcEntity* axis,
                        IFC::IfcEntity* refDirection);
// Relative to nothing.
IFC::VirtualLocalPlacement* NewLocalPlacement(IfcDocument& document, IFC::IfcEntity* axes);

}  // namespace corvel
