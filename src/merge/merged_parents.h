// Parents that are taken over from an object that gives way.
#pragma once

#include "core/entity.h"
#include "core/parent_store.h"

namespace corvel {

// Hands the parents of `entity` to `target`: they become members of its `mergedParents`, and all of
// those become members of its `parents`. `store` is that of the container which `target` is in. The
// caller tells the container (NoteChangedReferences).
inline void MergeParents(const IFC::IfcEntity& entity, IFC::IfcEntity& target, ParentStore& store) {
  for (IFC::IfcEntity* const parent : entity.parents.Members()) {
    target.mergedParents.Insert(parent, store);
  }
  for (IFC::IfcEntity* const parent : target.mergedParents.Members()) {
    target.parents.Insert(parent, store);
  }
}

}  // namespace corvel
