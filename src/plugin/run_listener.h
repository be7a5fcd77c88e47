// What a program that has the plug-in built in hears of a run besides what a viewer is told.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "core/text.h"
#include "merge/run_model.h"

namespace corvel::plugin {

// Any of these may be empty. A viewer has none, and nothing that it is told depends on them.
struct RunListener {
  // All models have been read and measured by the first one; none has been changed yet.
  std::function<void(const std::vector<RunModel>&)> modelsCompared;
  // The folder for LastPath.txt refuses it. Without a listener that is a report of the run.
  std::function<void(const WideString& folder)> outputNotRemembered;
};

}  // namespace corvel::plugin
