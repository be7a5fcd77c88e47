// What the user typed, understood.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "core/text.h"
#include "host/file_names.h"
#include "host/run_choices.h"
#include "host/tree_choice.h"
#include "platform/platform.h"

namespace corvel::host {

enum class Command { kMerge, kExtract, kResave, kOptimise, kInfo, kTree, kDiff, kCheck };

std::string NameOf(Command command);  // "merge"

struct CommandLine {
  Command command = Command::kMerge;
  std::vector<WideString> inputs;  // info, check: one or more; merge: two or more; diff: two
  WideString output;               // of all that write a model; a dry run may have none
  RunChoices choices;     // merge and extract; resave and optimise choose no objects and no places
  bool isDryRun = false;  // merge
  std::vector<WideString> reports;  // check, and all that have an output
  bool progressIsJson = false;      // of all that have an output
  bool quiet = false;
  bool json = false;                       // info, tree, diff and check
  bool quick = false;                      // info: without what takes the whole model
  double toleranceMm = 0.001;              // diff
  TreeChoice tree;                         // tree
  bool outputIsPiped = false;              // to standard output, where nothing else goes then
  std::optional<platform::Answer> answer;  // kYes or kNo
  std::optional<WideString> userFolder;    // for config.txt and LastPath.txt
  std::optional<WideString> workFolder;    // for files that are gone when they are closed
  std::optional<WideString> log;           // where it goes instead of beside the output
  std::vector<WideString> against;         // check: what the only input was made from
  std::optional<std::string> explain;      // check: the name of a rule; there are no inputs
};

// Text that was asked for: help or the version.
struct Explanation {
  WideString text;
};

// Wrong usage, as one or more lines without the name of the program.
struct UsageError {
  WideString text;
};

// Which files are meant by the words of a command that takes any number of them.
using FileFinder =
    std::function<std::variant<std::vector<std::string>, std::string>(const TypedFiles& typed)>;

// `arguments`: those behind the program's own name. Touches no file but what `findFiles` looks at;
// everything that is wrong with the words alone is told here.
std::variant<CommandLine, Explanation, UsageError> ParseCommandLine(
    const std::vector<WideString>& arguments, const FileFinder& findFiles = {});

}  // namespace corvel::host
