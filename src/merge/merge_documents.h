// The fold: all models into the first.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "core/document.h"
#include "core/entity.h"
#include "core/parent_store.h"

namespace corvel {

// What the user chose for the run.
struct MergeChoices {
  unsigned mergeLevel = 0;   // spatial objects merged by name: 0 none, 1 sites, 2 also buildings,
                             // 3 (and above) also storeys
  bool nameAndGuid = false;  // they have to agree in GUID as well
};

// Folds every further document that is `mergeable` into the first and gives the first; null
// (logged) when its merge status then is not "merged". `announce` is told each document before its
// turn and may be empty. Documents that were folded in lose their container.
IfcDocument* MergeDocuments(const std::vector<IfcDocument*>& documents, const MergeChoices& choices,
                            const std::function<void(const IfcDocument&)>& announce);

// What to do with an object whose GUID the destination's GUID index holds: kAsk until the user has
// chosen; the answer then serves the rest of the run. Process-wide.
inline constexpr int kAskAboutGuids = -1;
inline constexpr int kSkipSameGuids = 0;
inline constexpr int kGenerateGuids = 1;
int& RememberedGuidChoice();
// The choice, asked for if there is none yet.
int AskedGuidChoice();

// Asks the user for the choice: true means generate a new GUID. Installed by the shell; without one
// the answer is generate.
using GuidQuestion = bool (*)();
void SetGuidQuestion(GuidQuestion question);

// Hands the parents of `entity` to `target`: they become members of its `mergedParents`, and all of
// those become members of its `parents`.
void MergeParents(const IFC::IfcEntity& entity, IFC::IfcEntity& target, ParentStore& store);

}  // namespace corvel
