// What a user may ask for beyond the plain fold. Everything is off unless it is asked for.
#pragma once

#include <optional>

#include "core/text.h"
#include "step/numbers/number_form.h"

namespace corvel {

enum class GuidHandling {
  kKeep,   // what several objects share they keep
  kRenew,  // every object but the first gets one of its own
  kJoin    // one that says the same as the first gives way to it; others get one of their own
};

// What sites, buildings and storeys of several models become one by.
enum class TreeMatching {
  kKeep,  // they stay apart
  kGuid,
  kName,       // GUID, name, height
  kElevation,  // GUID, height
  kOne         // as by name, and as the only ones of their level
};

struct FederationChoices {
  bool convertUnits = false;  // later models are rewritten in the units of the first
  bool joinContexts = false;
  TreeMatching tree = TreeMatching::kKeep;
  bool placeByMap = false;    // later models stand where the map of the first one says
  double toleranceMm = 10.0;  // storeys that differ by no more are at one height
  // What would become one is written to this file, and nothing else is written anywhere.
  std::optional<WideString> proposeTree{};
  // The file that tells what becomes one and what does not, before anything is looked for.
  std::optional<WideString> treeMap{};
  GuidHandling guids = GuidHandling::kKeep;
  bool prune = false;       // what nothing needs is left out
  bool shareEqual = false;  // what says the same is written once
  bool stamp = false;       // a group for each input
  bool newHeader = false;   // the header tells of this run, not of the first input's
  NumberForm numbers = NumberForm::kTold;

  bool JoinTrees() const { return tree != TreeMatching::kKeep || treeMap; }
  bool ChangeModel() const {
    return joinContexts || placeByMap || JoinTrees() || proposeTree ||
           guids != GuidHandling::kKeep || prune || shareEqual || stamp;
  }
};

}  // namespace corvel
