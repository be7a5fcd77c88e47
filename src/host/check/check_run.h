// The command `corvel check`.
#pragma once

#include <vector>

#include "core/text.h"
#include "host/exit_status.h"
#include "host/run_console.h"
#include "host/tree_text.h"

namespace corvel::host {

struct CheckRunOrder {
  std::vector<WideString> inputs;   // one or more
  std::vector<WideString> against;  // what the only input was made from; empty: nothing
  bool json = false;
  bool inColours = false;
  WideString workFolder;            // of the files that the readings need meanwhile
  std::vector<WideString> reports;  // .html or .json: files that are written beside
};

// Checks one file after the other, and gives what there is to tell to `output`, text as soon as a
// file is done. What cannot be read is told on the console. Once a process at a time.
ExitStatus RunCheck(const CheckRunOrder& order, RunConsole& console, const TextSink& output);

}  // namespace corvel::host
