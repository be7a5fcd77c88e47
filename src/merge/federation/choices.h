// What a user may ask for beyond the plain fold. Everything is off unless it is asked for.
#pragma once

#include "step/numbers/number_form.h"

namespace corvel {

enum class GuidHandling {
  kKeep,  // what several objects share they keep
  kRenew  // every object but the first gets one of its own
};

struct FederationChoices {
  bool joinContexts = false;
  GuidHandling guids = GuidHandling::kKeep;
  bool prune = false;       // what nothing needs is left out
  bool shareEqual = false;  // what says the same is written once
  bool stamp = false;       // a group for each input
  bool newHeader = false;   // the header tells of this run, not of the first input's
  NumberForm numbers = NumberForm::kTold;

  bool ChangeModel() const {
    return joinContexts || guids != GuidHandling::kKeep || prune || shareEqual || stamp;
  }
};

}  // namespace corvel
