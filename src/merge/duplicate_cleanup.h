// Relations that say the same thing twice after two entities became one.
#pragma once

#include "core/entity.h"

namespace corvel {

// "Earlier" and "first" below go by number, so that the outcome is the same on every run.

// Among the parents of an entity that was folded onto another: marks as deleted each parent whose
// class is that of an earlier parent and that covers all the children of that one. It may hold more
// and goes all the same. The parents lists are filled, here and below. Compares the parents two by
// two, and their children too.
void DeleteDuplicatedParents(IFC::IfcEntity& entity);

// Among the IfcRelAggregates that refer to `entity` (null: nothing happens): of those that
// otherwise aggregate the same GUIDs all but the first are marked as deleted.
void CheckEntityForDuplicates(IFC::IfcEntity* entity);

// True when a child of `relation` counts as `child`: the same GUID, or, where one of the two has no
// GUID, the same class.
bool ParentIncludesChild(const IFC::IfcEntity& relation, IFC::IfcEntity* child);

}  // namespace corvel
