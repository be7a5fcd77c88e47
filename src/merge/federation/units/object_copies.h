// Objects once more.
#pragma once

#include "core/entity.h"
#include "merge/document.h"

namespace corvel {

// A new object of the class of `original` in `document`, filed, with the same values: lists and
// typed values are its own, references lead where those of the original lead. Texts stay where they
// are, so that the model of the original has to live as long. Null when the release of the document
// lacks the class, or when there are no numbers left, which has been reported.
IFC::IfcEntity* CopyObject(const IFC::IfcEntity& original, IfcDocument& document);

}  // namespace corvel
