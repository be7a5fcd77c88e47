// The steps that make one building of several models, in the order in which they work.
#pragma once

#include <memory>
#include <vector>

#include "core/reporting.h"
#include "merge/document.h"
#include "merge/federation/choices.h"
#include "merge/federation/place/map_places.h"
#include "merge/federation/sorted_objects.h"
#include "merge/federation/tree/spatial_structure.h"
#include "merge/run_observer.h"

namespace corvel {

// What has to be remembered of the models from before the fold.
struct PreparedFederation {
  GuidsAsRead guids;
  OneMap oneMap;  // where models were placed
  // The records of each model; empty when nobody had to look for them.
  std::vector<std::shared_ptr<SortedObjects>> records;
};

// Before the models are folded: what has to be seen in each by itself. The documents have their
// containers.
PreparedFederation PrepareFederation(const std::vector<IfcDocument*>& documents,
                                     const FederationChoices& choices);

// Behind fold and sweep. `documents`: all that were folded into the first, in order, the first
// included. What each step did goes to the log. False: the user cancelled, or what failed has been
// reported; the model is not to be written then. With a proposal asked for nothing is to be written
// at all: it has been. Linear in the models. `observer`, which may be null, is told each step.
bool RunFederation(const std::vector<IfcDocument*>& documents, const FederationChoices& choices,
                   const PreparedFederation& prepared, ErrorReporter showError,
                   ProgressCallback progress, RunObserver* observer = nullptr);

}  // namespace corvel
