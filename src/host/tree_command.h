// The command `corvel tree`.
#pragma once

#include "core/text.h"
#include "host/exit_status.h"
#include "host/run_console.h"
#include "host/tree_choice.h"
#include "host/tree_text.h"

namespace corvel::host {

struct TreeOrder {
  WideString path;
  TreeChoice choice;
  bool tolerant = false;
  bool json = false;
  WideString workFolder;  // of the file that a reading for properties needs meanwhile
};

// Shows the objects of a model, or of a container without the name of an entry what it holds. What
// is wrong with the file is told on the console.
ExitStatus RunTree(const TreeOrder& order, RunConsole& console, const TextSink& output);

}  // namespace corvel::host
