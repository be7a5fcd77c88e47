// What relations are called where people read of them.
#pragma once

#include <string>

#include "host/diff/changes.h"
#include "step/class_facts.h"

namespace corvel::host::diff {

struct RelationWord {
  std::string text;  // "contained in"; of relations that nobody has a word for the class
  ChangeKind kind = ChangeKind::kRelation;
};

// Of the relation as the object sees it that it is a fact about.
RelationWord WordOfRelation(const ClassFacts& relation);

}  // namespace corvel::host::diff
