#include "host/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

#include "host/help_texts.h"
#include "host/nearest_name.h"
#include "merge/report/shared/report_file.h"

namespace corvel::host {

namespace {

using Outcome = std::variant<CommandLine, Explanation, UsageError>;

struct CommandName {
  const char* name;
  Command command;
};

constexpr CommandName kCommands[] = {{"merge", Command::kMerge},   {"extract", Command::kExtract},
                                     {"resave", Command::kResave}, {"optimise", Command::kOptimise},
                                     {"info", Command::kInfo},     {"tree", Command::kTree},
                                     {"diff", Command::kDiff},     {"check", Command::kCheck}};

// The words of one command before they are judged.
struct Words {
  std::vector<std::string> files;
  std::string output;
  std::string answer;
  std::string userFolder;
  std::string workFolder;
  std::string log;
  std::string tolerance;
  std::string depth;
  std::string classes;
  bool properties = false;
  std::vector<std::string> reports;
  std::string progress = "bars";
  bool dryRun = false;
  std::vector<std::string> against;
  std::string explain;
  ChoiceWords merge;
  std::string listing;
  bool ignoreEnumErrors = false;
  bool tolerant = false;
  bool ignoreUnits = false;
  bool deleteOpenings = false;
  bool quiet = false;
  bool json = false;
  bool quick = false;
  bool help = false;
};

const CommandName* FindCommand(std::string_view word) {
  const auto* const found =
      std::find_if(std::begin(kCommands), std::end(kCommands),
                   [word](const CommandName& entry) { return entry.name == word; });
  return found == std::end(kCommands) ? nullptr : found;
}

std::string Quoted(std::string_view word) { return "'" + std::string(word) + "'"; }

// Nothing when no name is near: a far one would only mislead.
std::string Suggestion(std::string_view word, const std::vector<std::string>& names) {
  const std::optional<std::string> name = NearName(word, names);
  return name ? "; the nearest is " + Quoted(*name) : std::string();
}

UsageError Wrong(const std::string& text) { return {FromUtf8(text)}; }

// The error of one command, and where to read on.
UsageError Wrong(const CommandName& command, const std::string& text) {
  const std::string name = command.name;
  return Wrong(name + ": " + text + "\nSee 'corvel " + name + " --help'.");
}

// An option that may be given any number of times, with one value each.
void AddRepeated(CLI::App& app, const std::string& name, std::vector<std::string>& values) {
  app.add_option(name, values)->allow_extra_args(false)->take_all();
}

// merge and extract: objects are chosen, and models have places.
bool ChoosesObjects(Command command) {
  return command == Command::kMerge || command == Command::kExtract;
}

// resave and optimise: one file in, one out, and nothing to choose.
bool IsWholeCopy(Command command) {
  return command == Command::kResave || command == Command::kOptimise;
}

// Writes no model.
bool ShowsOnly(Command command) {
  return command == Command::kInfo || command == Command::kTree || command == Command::kDiff ||
         command == Command::kCheck;
}

bool TakesManyFiles(Command command) {
  return command == Command::kMerge || command == Command::kInfo || command == Command::kCheck;
}

void AddChoiceOptions(CLI::App& app, Words& words) {
  app.add_option("-o,--output", words.output);
  app.add_option("--mode", words.merge.mode);
  AddRepeated(app, "--inactive", words.merge.inactive);
  AddRepeated(app, "--hide", words.merge.hide);
  AddRepeated(app, "--select", words.merge.select);
  AddRepeated(app, "--offset", words.merge.offsets);
  app.add_option("--center", words.merge.center);
  app.add_flag("--delete-openings", words.deleteOpenings);
}

void AddMergeOptions(CLI::App& app, Words& words) {
  app.add_option("--on-duplicate-guid", words.merge.onDuplicateGuid);
  app.add_flag("--ignore-units", words.ignoreUnits);
  app.add_flag("--dry-run", words.dryRun);
}

void AddTreeOptions(CLI::App& app, Words& words) {
  app.add_option("--depth", words.depth);
  app.add_option("--class", words.classes);
  app.add_flag("--properties", words.properties);
}

void AddFederationOptions(CLI::App& app, Command command) {
  for (const FederationOption& option : AllFederationOptions()) {
    if (!ChoosesObjects(command) && !(IsWholeCopy(command) && option.ofResave)) continue;
    const std::string name = "--" + std::string(option.name);
    if (option.takesValue) {
      app.add_option(name)->take_last();
    } else {
      app.add_flag(name);
    }
  }
}

// What optimise means, in front of what else is typed.
constexpr std::pair<std::string_view, const char*> kOptimising[] = {
    {"prune", ""}, {"share-equal", ""}, {"numbers", "exact"}};

// In the order in which they were typed, each with the last value that was given for it.
void GatherFederation(const CLI::App& app, Command command, ChoiceWords& words) {
  if (command == Command::kOptimise) {
    for (const auto& [name, value] : kOptimising) {
      words.federation.emplace_back(FindFederationOption(name), value);
    }
  }
  for (const CLI::Option* const given : app.parse_order()) {
    const FederationOption* const option = FindFederationOption(given->get_single_name());
    if (option == nullptr) continue;
    words.federation.emplace_back(option,
                                  option->takesValue ? given->as<std::string>() : std::string());
  }
}

void AddCheckOptions(CLI::App& app, Words& words) {
  app.add_option("--against", words.against);
  app.add_option("--explain", words.explain);
  AddRepeated(app, "--report", words.reports);
}

void AddOptions(CLI::App& app, Command command, Words& words) {
  app.set_help_flag();  // the help texts are our own
  app.allow_extras();
  app.allow_windows_style_options(false);
  app.add_option("FILE", words.files);
  if (ChoosesObjects(command)) AddChoiceOptions(app, words);
  if (command == Command::kMerge) AddMergeOptions(app, words);
  if (TakesManyFiles(command)) app.add_option("--files0-from", words.listing);
  AddFederationOptions(app, command);
  if (ShowsOnly(command)) app.add_flag("--json", words.json);
  if (command == Command::kInfo) app.add_flag("--quick", words.quick);
  if (command == Command::kDiff) app.add_option("--tolerance", words.tolerance);
  if (command == Command::kCheck) AddCheckOptions(app, words);
  if (command == Command::kTree) AddTreeOptions(app, words);
  app.add_flag("--ignore-enum-errors", words.ignoreEnumErrors);
  app.add_flag("--tolerant", words.tolerant);
  app.add_flag("--quiet", words.quiet);
  app.add_option("--threads", words.merge.threads);
  app.add_option("--answer", words.answer);
  app.add_option("--user-folder", words.userFolder);
  app.add_option("--work-folder", words.workFolder);
  app.add_option("--log", words.log);
  if (ChoosesObjects(command) || IsWholeCopy(command)) {
    AddRepeated(app, "--report", words.reports);
    app.add_option("--progress", words.progress);
  }
  app.add_flag("-h,--help", words.help);
}

// Names that somebody who typed `word` may have meant: behind two dashes only long ones.
std::vector<std::string> OptionNames(const CLI::App& app, std::string_view word) {
  std::vector<std::string> names;
  for (const CLI::Option* const option : app.get_options()) {
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    if (word.starts_with("--")) continue;
    for (const std::string& name : option->get_snames()) names.push_back("-" + name);
  }
  return names;
}

// A word that looks like an option and is none.
UsageError UnknownOption(const CommandName& command, const CLI::App& app, std::string_view word) {
  const std::string_view name = word.substr(0, word.find('='));
  return Wrong(command, "unknown option " + Quoted(name) +
                            Suggestion(name, OptionNames(app, name)) +
                            ". (A file name that begins with '-' goes behind '--'.)");
}

std::optional<std::string> CountError(Command command, std::size_t files) {
  switch (command) {
    case Command::kMerge:
      if (files < 2) {
        return "two files or more are needed, and " + std::to_string(files) +
               (files == 1 ? " is given" : " are given");
      }
      break;
    case Command::kResave:
    case Command::kOptimise:
      if (files != 2) {
        return "one input and one output are needed, and " + std::to_string(files) +
               (files == 1 ? " file is given" : " files are given");
      }
      break;
    case Command::kExtract:
      if (files != 1) {
        return "one input is needed, and " + std::to_string(files) +
               (files == 1 ? " is given" : " are given");
      }
      break;
    case Command::kInfo:
      if (files == 0) return "a file is needed";
      break;
    case Command::kDiff:
      if (files != 2) {
        return "two files are needed, and " + std::to_string(files) +
               (files == 1 ? " is given" : " are given");
      }
      break;
    case Command::kCheck: break;  // see CheckError
    case Command::kTree:
      if (files != 1) {
        return "one file is needed, and " + std::to_string(files) + " are given";
      }
      break;
  }
  return {};
}

std::optional<std::uint32_t> CountFrom(const std::string& word) {
  std::uint32_t count = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), count);
  const bool isWhole = error == std::errc() && end == word.data() + word.size();
  return isWhole && count != 0 ? std::optional(count) : std::nullopt;
}

// What stands between commas. Empty where any of it is.
std::vector<WideString> ItemsOf(const std::string& list) {
  std::vector<WideString> items;
  for (std::size_t first = 0; first <= list.size();) {
    const std::size_t end = std::min(list.find(',', first), list.size());
    if (end == first) return {};
    items.push_back(FromUtf8(list.substr(first, end - first)));
    first = end + 1;
  }
  return items;
}

// A finite number above 0.
std::optional<double> LengthFrom(const std::string& word) {
  double length = 0.0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), length);
  const bool isWhole = error == std::errc() && end == word.data() + word.size();
  return isWhole && std::isfinite(length) && length > 0.0 ? std::optional(length) : std::nullopt;
}

std::optional<std::string> CheckError(const CLI::App& app, const Words& words) {
  const std::size_t files = words.files.size();
  if (app.count("--explain") != 0) {
    if (files != 0 || app.count("--against") != 0) return "--explain takes no files";
    if (app.count("--report") != 0) return "--explain writes no report";
    return {};
  }
  if (files == 0) return "a file is needed";
  if (app.count("--against") != 0 && files != 1) {
    return "one file is needed in front of --against, and " + std::to_string(files) + " are given";
  }
  return {};
}

std::optional<std::string> WordError(Command command, const CLI::App& app, const Words& words) {
  const bool answerGiven = app.count("--answer") != 0;
  if (answerGiven && words.answer != "yes" && words.answer != "no") {
    return "--answer takes 'yes' or 'no', not " + Quoted(words.answer);
  }
  if (app.count("--user-folder") != 0 && words.userFolder.empty()) {
    return "--user-folder takes the name of a folder";
  }
  if (app.count("--work-folder") != 0 && words.workFolder.empty()) {
    return "--work-folder takes the name of a folder";
  }
  if (app.count("--log") != 0 && words.log.empty()) return "--log takes the name of a file";
  if (command == Command::kTree) {
    if (app.count("--depth") != 0 && !CountFrom(words.depth)) {
      return "--depth takes a number of levels from 1 on, not " + Quoted(words.depth);
    }
    if (app.count("--class") != 0 && ItemsOf(words.classes).empty()) {
      return "--class takes names of classes, with commas between them";
    }
  }
  if (command == Command::kDiff && app.count("--tolerance") != 0 && !LengthFrom(words.tolerance)) {
    return "--tolerance takes a number of millimetres above 0, not " + Quoted(words.tolerance);
  }
  if (words.progress != "bars" && words.progress != "json") {
    return "--progress takes 'bars' or 'json', not " + Quoted(words.progress);
  }
  for (const std::string& report : words.reports) {
    if (ReportFormOf(FromUtf8(report)) == ReportForm::kNone) {
      return "--report takes a name that ends in .html or .json, not " + Quoted(report);
    }
  }
  if (auto error = CountError(command, words.files.size())) return error;
  if (command == Command::kCheck) return CheckError(app, words);
  if (!ChoosesObjects(command)) return {};
  const bool proposes = app.count("--propose-tree") != 0;
  if (words.dryRun) {
    if (proposes) return "--propose-tree writes a list: leave --dry-run out";
    return {};
  }
  if (proposes == (app.count("--output") != 0)) {
    return proposes ? "--propose-tree writes no model: leave -o out"
                    : "the output is missing: -o OUT";
  }
  return {};
}

CommandLine Understood(Command command, const Words& words, RunChoices choices) {
  CommandLine line;
  line.command = command;
  line.choices = std::move(choices);
  for (const std::string& file : words.files) line.inputs.push_back(FromUtf8(file));
  // A run that proposes writes that file and no other.
  line.output = line.choices.federation.proposeTree.value_or(FromUtf8(words.output));
  if (IsWholeCopy(command)) {
    line.output = std::move(line.inputs.back());
    line.inputs.pop_back();
  }
  if (!words.userFolder.empty()) line.userFolder = FromUtf8(words.userFolder);
  if (!words.workFolder.empty()) line.workFolder = FromUtf8(words.workFolder);
  if (!words.log.empty()) line.log = FromUtf8(words.log);
  line.choices.ignoreEnumErrors = words.ignoreEnumErrors;
  line.choices.tolerant = words.tolerant;
  line.choices.ignoreUnits = words.ignoreUnits;
  line.choices.deleteOpenings = words.deleteOpenings;
  line.isDryRun = words.dryRun;
  line.progressIsJson = words.progress == "json";
  for (const std::string& report : words.reports) line.reports.push_back(FromUtf8(report));
  for (const std::string& file : words.against) line.against.push_back(FromUtf8(file));
  if (!words.explain.empty()) line.explain = words.explain;
  line.quiet = words.quiet;
  line.json = words.json;
  line.quick = words.quick;
  line.tree.depth = CountFrom(words.depth).value_or(0);
  line.tree.classes = ItemsOf(words.classes);
  line.tree.properties = words.properties;
  if (const auto tolerance = LengthFrom(words.tolerance)) line.toleranceMm = *tolerance;
  if (!words.answer.empty()) {
    line.answer = words.answer == "yes" ? platform::Answer::kYes : platform::Answer::kNo;
  }
  return line;
}

// Puts the files that are meant in the place of what was typed. Nothing, or what is wrong.
std::optional<std::string> Find(const FileFinder& findFiles, bool hasListing, Words& words) {
  if (!findFiles) return {};
  TypedFiles typed{words.files, {}};
  if (hasListing) typed.listing = words.listing;
  auto found = findFiles(typed);
  if (auto* const mistake = std::get_if<std::string>(&found)) return std::move(*mistake);
  words.files = std::move(std::get<std::vector<std::string>>(found));
  if (words.against.empty()) return {};
  found = findFiles({words.against, {}});
  if (auto* const mistake = std::get_if<std::string>(&found)) return std::move(*mistake);
  words.against = std::move(std::get<std::vector<std::string>>(found));
  return {};
}

Outcome ParseCommand(const CommandName& command, std::vector<std::string> arguments,
                     const FileFinder& findFiles) {
  CLI::App app;
  Words words;
  AddOptions(app, command.command, words);
  try {
    std::reverse(arguments.begin(), arguments.end());  // as the library takes them
    app.parse(std::move(arguments));
  } catch (const CLI::ParseError& error) {
    return Wrong(command, error.what());
  }
  if (words.help) return Explanation{WideString(HelpOf(command.command))};
  for (const std::string& extra : app.remaining()) {
    // The library leaves the dashes that end the options among the rest.
    if (extra != "--") return UnknownOption(command, app, extra);
  }
  if (TakesManyFiles(command.command)) {
    if (const auto error = Find(findFiles, app.count("--files0-from") != 0, words)) {
      return Wrong(command, *error);
    }
  }
  if (const auto error = WordError(command.command, app, words)) return Wrong(command, *error);
  GatherFederation(app, command.command, words.merge);
  words.merge.areOfOneInput = command.command == Command::kExtract;
  auto choices = UnderstandChoices(words.merge, words.files);
  if (const auto* const mistake = std::get_if<std::string>(&choices)) {
    return Wrong(command, *mistake);
  }
  return Understood(command.command, words, std::move(std::get<RunChoices>(choices)));
}

Outcome ParseWithoutCommand(const std::string& word) {
  if (word == "--help" || word == "-h") return Explanation{WideString(GeneralHelp())};
  if (word == "--version") return Explanation{VersionText()};
  std::vector<std::string> names;
  for (const CommandName& command : kCommands) names.emplace_back(command.name);
  const bool isOption = word.starts_with('-');
  if (isOption) names = {"--help", "-h", "--version"};
  const std::string kind = isOption ? "option before the command" : "command";
  return Wrong("unknown " + kind + " " + Quoted(word) + Suggestion(word, names) +
               ".\nSee 'corvel --help'.");
}

}  // namespace

std::string NameOf(Command command) {
  const auto* const found =
      std::find_if(std::begin(kCommands), std::end(kCommands),
                   [command](const CommandName& entry) { return entry.command == command; });
  return found->name;
}

Outcome ParseCommandLine(const std::vector<WideString>& arguments, const FileFinder& findFiles) {
  if (arguments.empty()) return Wrong("a command is needed.\nSee 'corvel --help'.");
  std::vector<std::string> words;
  words.reserve(arguments.size());
  for (const WideString& argument : arguments) words.push_back(ToUtf8(argument));
  const CommandName* const command = FindCommand(words.front());
  if (command == nullptr) return ParseWithoutCommand(words.front());
  words.erase(words.begin());
  return ParseCommand(*command, std::move(words), findFiles);
}

}  // namespace corvel::host
