// The many that a relation relates to one.
#pragma once

#include "core/entity.h"
#include "step/class_facts.h"

namespace corvel {

// The attribute with the list of them, such as RelatedObjects. Null for a relation between two, and
// for what is no relation.
const AttributeFacts* ListOfRelated(const IFC::IfcEntity& relation);
// The same of a class; null for one of no release.
const AttributeFacts* ListOfRelated(const ClassFacts* facts);

}  // namespace corvel
