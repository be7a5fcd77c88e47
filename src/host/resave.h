// One model in, the same model out, or what is chosen of it.
#pragma once

#include <optional>

#include "core/text.h"
#include "merge/merge_job.h"
#include "merge/merge_shell.h"
#include "merge/object_selection.h"
#include "merge/run_observer.h"

namespace corvel::host {

struct ResaveOrder {
  WideString input;
  WideString output;
  // Those count that concern reading and federation.
  MergeOptions options;
  // Which objects are kept, as the viewer that lives shows the model, its only one. Nothing: every
  // record is written.
  std::optional<SavingMode> chosen;
  // Hears of the run; borrowed, and may be null.
  RunObserver* observer = nullptr;
};

// With the plug-in's progress and reports. Needs the plug-in to be loaded. What goes wrong has been
// reported, a lack of memory too.
RunResult Resave(const ResaveOrder& order);

}  // namespace corvel::host
