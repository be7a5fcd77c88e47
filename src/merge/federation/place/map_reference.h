// Where on a map a model stands, as its file says it.
#pragma once

#include <optional>
#include <vector>

#include "core/entity.h"
#include "core/text.h"
#include "merge/document.h"
#include "merge/federation/place/map_frame.h"
#include "merge/federation/place/reference_system.h"

namespace corvel {

// One conversion: IfcMapConversion and its subtype, IfcRigidOperation, or the property set that
// says in IFC2X3 what the first of them says from IFC4 on.
struct MapOperation {
  IFC::IfcEntity* entity = nullptr;
  // Of the model, to the map: what the conversion is of. In IFC2X3 the first one in space; null
  // without one.
  IFC::IfcEntity* context = nullptr;
  MapFrame frame{};
  double metresPerMapUnit = 1.0;
};

struct MapReference {
  ReferenceSystem system;
  std::vector<MapOperation> operations;  // at least one; all say the same
  // The operations, and in IFC2X3 what states the system: what goes when another map counts.
  std::vector<IFC::IfcEntity*> records;
  std::vector<IFC::IfcEntity*> contexts;  // all of the model that are no sub-contexts

  const MapOperation& First() const { return operations.front(); }
};

struct MapReading {
  std::optional<MapReference> reference;
  // Why there is no reference though there is a conversion, as the rest of "its map conversion".
  WideString problem;

  bool HasConversion() const { return reference || !problem.empty(); }
};

// The model has been read; its length unit is the one that its file states. Looks at each object
// once.
MapReading ReadMapReference(const IfcDocument& document);

}  // namespace corvel
