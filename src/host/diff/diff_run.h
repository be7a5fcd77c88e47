// The command `corvel diff`.
#pragma once

#include <optional>

#include "core/text.h"
#include "host/exit_status.h"
#include "host/run_console.h"
#include "host/tree_text.h"

namespace corvel::host::diff {

struct DiffOrder {
  WideString before;
  WideString after;
  double toleranceMm = 0.001;
  bool ignoreEnumErrors = false;
  bool tolerant = false;
  bool json = false;
  bool inColours = false;
  unsigned threads = 1;   // of each reading
  WideString workFolder;  // of the files that the readings need meanwhile
};

// Reads both models, compares them, and gives what there is to tell to `output`. Refusals, what is
// wrong with the files, and how far it has come are told on the console.
ExitStatus RunDiff(const DiffOrder& order, RunConsole& console, const TextSink& output);

}  // namespace corvel::host::diff
