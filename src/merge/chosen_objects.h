// One model without what the user has not chosen.
#pragma once

#include "core/outcome.h"
#include "merge/document.h"
#include "merge/host_scene.h"
#include "merge/object_selection.h"
#include "merge/run_observer.h"

namespace corvel {

struct ObjectChoice {
  SavingMode mode = SavingMode::kMergeActive;
  bool deleteOpenings = false;
  bool placeByMap = false;  // the model stays where it is on the map though it is moved
};

// Moves the model as the host shows it, and deletes what does not count: what a merge does with
// each of its models. `document` has been read, and is `project` in the scene. Its markers are true
// afterwards. Failed (reported): there is no number left. `observer` may be null.
Outcome KeepChosenObjects(IfcDocument& document, HostObject project, HostScene& scene,
                          const ObjectChoice& choice, RunObserver* observer = nullptr);

// What the observer, if there is one, is told of a model that is about to be marked, and what hears
// the steps of it for him.
void TellChoice(RunObserver* observer, const IfcDocument& document, HostObject project,
                HostScene& scene, SavingMode mode, const std::vector<HostObject>& leftOut);
MarkingListener ListenerFor(RunObserver* observer, const IfcDocument& document);

}  // namespace corvel
