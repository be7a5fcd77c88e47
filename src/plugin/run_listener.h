// What a program that has the plug-in built in hears of a run, and knows for it, besides what a
// viewer is told and asked.
#pragma once

#include <functional>
#include <vector>

#include "core/text.h"
#include "merge/federation/place/place_warning.h"
#include "merge/host_scene.h"
#include "merge/run_model.h"
#include "merge/run_observer.h"

namespace corvel::plugin {

// Any of these may be empty. A viewer has none, and nothing that it is told depends on them.
struct RunListener {
  // All models have been read and measured by the first one; none has been changed yet.
  std::function<void(const std::vector<RunModel>&)> modelsCompared;
  // Which models the map places badly or not at all; the log has it as well.
  std::function<void(const std::vector<PlaceWarning>&)> placesFound;
  // The folder for LastPath.txt refuses it. Without a listener that is a report of the run.
  std::function<void(const WideString& folder)> outputNotRemembered;
  // The objects of a project, in the order of the scene. A viewer is asked for all objects and the
  // project of each, again for each model: with a thousand models that is more than all the rest.
  std::function<std::vector<HostObject>(HostObject project)> objectsOf;
  // As of MergeShell. A viewer's user goes on working in it.
  bool sceneStandsStill = false;
  // Hears of the run from within; borrowed.
  RunObserver* observer = nullptr;
};

}  // namespace corvel::plugin
