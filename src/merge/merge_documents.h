// The fold: all models into the first.
#pragma once

#include <functional>
#include <vector>

#include "merge/document.h"

namespace corvel {

// What the user chose for the run.
struct MergeChoices {
  unsigned mergeLevel = 0;   // spatial objects merged by name: 0 none, 1 sites, 2 also buildings,
                             // 3 (and above) also storeys
  bool nameAndGuid = false;  // they have to agree in GUID as well
};

// Folds every further document into the first and gives the first; null (logged) when its merge
// status then is not "merged". `announce` is told each document before its turn and may be empty.
// Documents that were folded in lose their container. Borrows all of them; at least one. A fold
// that fails does not keep the next from its turn.
IfcDocument* MergeDocuments(const std::vector<IfcDocument*>& documents, const MergeChoices& choices,
                            const std::function<void(const IfcDocument&)>& announce);

}  // namespace corvel
