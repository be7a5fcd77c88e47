#include "host/command_line.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "host/help_texts.h"

namespace corvel::host {

namespace {

using Arguments = std::vector<WideString>;

CommandLine Parsed(const Arguments& arguments) {
  auto outcome = ParseCommandLine(arguments);
  if (const auto* const error = std::get_if<UsageError>(&outcome)) {
    ADD_FAILURE() << ToUtf8(error->text);
  }
  return std::holds_alternative<CommandLine>(outcome) ? std::get<CommandLine>(outcome)
                                                      : CommandLine{};
}

std::string ErrorOf(const Arguments& arguments) {
  const auto outcome = ParseCommandLine(arguments);
  const auto* const error = std::get_if<UsageError>(&outcome);
  return error == nullptr ? "(no error)" : ToUtf8(error->text);
}

WideString Explained(const Arguments& arguments) {
  const auto outcome = ParseCommandLine(arguments);
  const auto* const explanation = std::get_if<Explanation>(&outcome);
  return explanation == nullptr ? u"(no explanation)" : explanation->text;
}

}  // namespace

TEST(CommandLine, MergeTakesFilesAndAnOutput) {
  const CommandLine line = Parsed({u"merge", u"a.ifc", u"b.ifc", u"-o", u"out.ifc", u"c.ifc"});
  EXPECT_EQ(Command::kMerge, line.command);
  EXPECT_EQ((Arguments{u"a.ifc", u"b.ifc", u"c.ifc"}), line.inputs);
  EXPECT_EQ(u"out.ifc", line.output);
  EXPECT_FALSE(line.choices.ignoreEnumErrors);
  EXPECT_FALSE(line.quiet);
  EXPECT_FALSE(line.answer.has_value());
}

TEST(CommandLine, ResaveTakesTheLastFileAsOutput) {
  const CommandLine line = Parsed({u"resave", u"in.ifc", u"out.ifc"});
  EXPECT_EQ(Command::kResave, line.command);
  EXPECT_EQ((Arguments{u"in.ifc"}), line.inputs);
  EXPECT_EQ(u"out.ifc", line.output);
}

TEST(CommandLine, EveryCommandTakesFoldersOfItsOwn) {
  EXPECT_FALSE(Parsed({u"resave", u"a.ifc", u"b.ifc"}).workFolder.has_value());
  const CommandLine line =
      Parsed({u"resave", u"a.ifc", u"b.ifc", u"--work-folder", u"w \u0142", u"--user-folder=u"});
  EXPECT_EQ(u"w \u0142", line.workFolder);
  EXPECT_EQ(u"u", line.userFolder);
  EXPECT_EQ(u"w", Parsed({u"info", u"a.ifc", u"--work-folder=w"}).workFolder);
  EXPECT_EQ("merge: --work-folder takes the name of a folder\nSee 'corvel merge --help'.",
            ErrorOf({u"merge", u"a.ifc", u"b.ifc", u"-o", u"c.ifc", u"--work-folder", u""}));
}

TEST(CommandLine, EveryCommandTakesANumberOfThreads) {
  EXPECT_FALSE(Parsed({u"resave", u"a.ifc", u"b.ifc"}).choices.threads.has_value());
  EXPECT_EQ(1U, Parsed({u"resave", u"a.ifc", u"b.ifc", u"--threads", u"1"}).choices.threads);
  EXPECT_EQ(256U, Parsed({u"tree", u"a.ifc", u"--threads=256"}).choices.threads);
  EXPECT_EQ(
      3U, Parsed({u"merge", u"a.ifc", u"b.ifc", u"-o", u"c.ifc", u"--threads=3"}).choices.threads);
  for (const char16_t* const word : {u"0", u"257", u"-1", u"two", u"2.5", u" 2"}) {
    EXPECT_EQ("resave: --threads takes a number from 1 to 256, not '" + ToUtf8(word) +
                  "'\nSee 'corvel resave --help'.",
              ErrorOf({u"resave", u"a.ifc", u"b.ifc", WideString(u"--threads=") + word}));
  }
}

TEST(CommandLine, InfoTakesAnyNumberOfFiles) {
  EXPECT_EQ((Arguments{u"a.ifc"}), Parsed({u"info", u"a.ifc"}).inputs);
  const CommandLine line = Parsed({u"info", u"a.ifc", u"--json", u"b.ifc"});
  EXPECT_EQ(Command::kInfo, line.command);
  EXPECT_EQ((Arguments{u"a.ifc", u"b.ifc"}), line.inputs);
  EXPECT_TRUE(line.json);
}

TEST(CommandLine, CheckTakesFilesOrOneAgainstOthers) {
  const CommandLine line = Parsed({u"check", u"a", u"b", u"--json"});
  EXPECT_EQ(Command::kCheck, line.command);
  EXPECT_EQ((std::vector<WideString>{u"a", u"b"}), line.inputs);
  EXPECT_TRUE(line.json);
  EXPECT_TRUE(line.against.empty());
  const CommandLine compared = Parsed({u"check", u"a", u"--against", u"b", u"c", u"--quiet"});
  EXPECT_EQ(std::vector<WideString>{u"a"}, compared.inputs);
  EXPECT_EQ((std::vector<WideString>{u"b", u"c"}), compared.against);
  EXPECT_EQ("CRV.list.few", Parsed({u"check", u"--explain", u"CRV.list.few"}).explain);
}

TEST(CommandLine, CheckRefusesWhatDoesNotGoTogether) {
  const auto errorOf = [](const std::vector<WideString>& words) {
    const std::string text = ErrorOf(words);
    return text.substr(0, text.find('\n'));
  };
  EXPECT_EQ("check: a file is needed", errorOf({u"check"}));
  EXPECT_EQ("check: one file is needed in front of --against, and 2 are given",
            errorOf({u"check", u"a", u"b", u"--against", u"c"}));
  EXPECT_EQ("check: a file is needed", errorOf({u"check", u"--against", u"c"}));
  EXPECT_EQ("check: --explain takes no files", errorOf({u"check", u"a", u"--explain", u"x"}));
}

TEST(CommandLine, TreeTakesOneFile) {
  const CommandLine line = Parsed({u"tree", u"a.ifc", u"--json"});
  EXPECT_EQ(Command::kTree, line.command);
  EXPECT_EQ((Arguments{u"a.ifc"}), line.inputs);
  EXPECT_TRUE(line.json);
}

TEST(CommandLine, TheLogTakesAPlace) {
  EXPECT_EQ(u"x.log", Parsed({u"resave", u"a.ifc", u"b.ifc", u"--log", u"x.log"}).log);
  EXPECT_FALSE(Parsed({u"resave", u"a.ifc", u"b.ifc"}).log.has_value());
  EXPECT_EQ("resave: --log takes the name of a file\nSee 'corvel resave --help'.",
            ErrorOf({u"resave", u"a.ifc", u"b.ifc", u"--log", u""}));
}

TEST(CommandLine, ADryRunNeedsNoOutputAndMayHaveOne) {
  const CommandLine line = Parsed({u"merge", u"a.ifc", u"b.ifc", u"--dry-run"});
  EXPECT_TRUE(line.isDryRun);
  EXPECT_EQ(u"", line.output);
  EXPECT_EQ(u"o.ifc", Parsed({u"merge", u"a.ifc", u"b.ifc", u"--dry-run", u"-o", u"o.ifc"}).output);
  EXPECT_FALSE(Parsed({u"merge", u"a.ifc", u"b.ifc", u"-o", u"o.ifc"}).isDryRun);
  EXPECT_EQ(
      "extract: unknown option '--dry-run'. (A file name that begins with '-' goes behind '--'.)\n"
      "See 'corvel extract --help'.",
      ErrorOf({u"extract", u"a.ifc", u"--dry-run"}));
}

TEST(CommandLine, ReportsHaveOneOfTwoEndings) {
  EXPECT_EQ(
      (Arguments{u"r.HTML", u"r.json"}),
      Parsed({u"resave", u"a.ifc", u"b.ifc", u"--report", u"r.HTML", u"--report=r.json"}).reports);
  EXPECT_EQ(
      "resave: --report takes a name that ends in .html or .json, not 'r.txt'\n"
      "See 'corvel resave --help'.",
      ErrorOf({u"resave", u"a.ifc", u"b.ifc", u"--report", u"r.txt"}));
}

TEST(CommandLine, ProgressIsInBarsOrForPrograms) {
  EXPECT_FALSE(Parsed({u"resave", u"a.ifc", u"b.ifc"}).progressIsJson);
  EXPECT_TRUE(Parsed({u"resave", u"a.ifc", u"b.ifc", u"--progress", u"json"}).progressIsJson);
  EXPECT_FALSE(Parsed({u"resave", u"a.ifc", u"b.ifc", u"--progress=bars"}).progressIsJson);
  EXPECT_EQ("resave: --progress takes 'bars' or 'json', not 'xml'\nSee 'corvel resave --help'.",
            ErrorOf({u"resave", u"a.ifc", u"b.ifc", u"--progress", u"xml"}));
}

TEST(CommandLine, MergeTakesItsChoices) {
  const CommandLine line = Parsed({u"merge",
                                   u"--hide",
                                   u"1:IfcWall",
                                   u"a.ifc",
                                   u"--select",
                                   u"b.ifc:#1",
                                   u"--select=-c.ifc:#2",
                                   u"b.ifc",
                                   u"--offset",
                                   u"2=-1,2,3",
                                   u"--center",
                                   u"-1,2,3",
                                   u"-o",
                                   u"o.ifc",
                                   u"--ignore-units",
                                   u"--delete-openings",
                                   u"--on-duplicate-guid",
                                   u"skip",
                                   u"--mode",
                                   u"active",
                                   u"--inactive",
                                   u"-c.ifc:#3",
                                   u"--",
                                   u"-c.ifc"});
  EXPECT_EQ((Arguments{u"a.ifc", u"b.ifc", u"-c.ifc"}), line.inputs);
  const RunChoices& choices = line.choices;
  EXPECT_EQ(SavingMode::kMergeActive, choices.mode);
  ASSERT_EQ(4u, choices.lists.size());
  EXPECT_EQ(2u, choices.lists[0].input);
  EXPECT_EQ(Arguments{u"#3"}, choices.lists[0].items);
  EXPECT_EQ(0u, choices.lists[1].input);
  EXPECT_EQ(Arguments{u"IfcWall"}, choices.lists[1].items);
  EXPECT_EQ(1u, choices.lists[2].input);
  EXPECT_EQ(2u, choices.lists[3].input);
  ASSERT_EQ(1u, choices.offsetsMm.size());
  EXPECT_EQ((Point{-1, 2, 3}), choices.offsetsMm.front().second);
  EXPECT_EQ((Point{-1, 2, 3}), choices.centerMetres);
  EXPECT_TRUE(choices.ignoreUnits);
  EXPECT_TRUE(choices.deleteOpenings);
  EXPECT_EQ(false, choices.generateGuids);
}

TEST(CommandLine, MistakesInChoicesAreToldWithTheCommand) {
  EXPECT_EQ(
      "merge: --mode takes 'active', 'visible' or 'selected', not 'all'\n"
      "See 'corvel merge --help'.",
      ErrorOf({u"merge", u"a.ifc", u"b.ifc", u"-o", u"c.ifc", u"--mode", u"all"}));
  EXPECT_EQ(
      "merge: --mode takes 'active', 'visible' or 'selected', not ''\n"
      "See 'corvel merge --help'.",
      ErrorOf({u"merge", u"a.ifc", u"b.ifc", u"-o", u"c.ifc", u"--mode", u""}));
}

TEST(CommandLine, ChoicesOfAMergeAreNoneOfOtherCommands) {
  EXPECT_EQ(
      "resave: unknown option '--hide'. "
      "(A file name that begins with '-' goes behind '--'.)\nSee 'corvel resave --help'.",
      ErrorOf({u"resave", u"a.ifc", u"b.ifc", u"--hide", u"1:#1"}));
}

TEST(CommandLine, EveryCommandTakesTheCommonOptions) {
  for (const Arguments& words :
       {Arguments{u"merge", u"a.ifc", u"b.ifc", u"-o", u"c.ifc"},
        Arguments{u"extract", u"a.ifc", u"-o", u"c.ifc"}, Arguments{u"resave", u"a.ifc", u"b.ifc"},
        Arguments{u"optimise", u"a.ifc", u"b.ifc"}, Arguments{u"info", u"a.ifc"},
        Arguments{u"tree", u"a.ifc"}}) {
    Arguments all = words;
    all.insert(all.end(), {u"--quiet", u"--ignore-enum-errors", u"--answer", u"no"});
    const CommandLine line = Parsed(all);
    EXPECT_TRUE(line.quiet);
    EXPECT_TRUE(line.choices.ignoreEnumErrors);
    EXPECT_EQ(platform::Answer::kNo, line.answer);
  }
}

TEST(CommandLine, OptionsMayStandAnywhereAndTakeTheirValueBehindAnEqualSign) {
  const CommandLine line =
      Parsed({u"merge", u"--answer=yes", u"--output=c.ifc", u"a.ifc", u"--quiet", u"b.ifc"});
  EXPECT_EQ((Arguments{u"a.ifc", u"b.ifc"}), line.inputs);
  EXPECT_EQ(u"c.ifc", line.output);
  EXPECT_EQ(platform::Answer::kYes, line.answer);
}

TEST(CommandLine, BehindTwoDashesEverythingIsAFile) {
  const CommandLine line =
      Parsed({u"merge", u"-o", u"c.ifc", u"--", u"-a.ifc", u"--quiet", u"--", u"info"});
  EXPECT_EQ((Arguments{u"-a.ifc", u"--quiet", u"--", u"info"}), line.inputs);
  EXPECT_FALSE(line.quiet);
}

TEST(CommandLine, TheOutputMayBeginWithADash) {
  EXPECT_EQ(u"-c.ifc", Parsed({u"merge", u"a.ifc", u"b.ifc", u"-o", u"-c.ifc"}).output);
  EXPECT_EQ(u"-b.ifc", Parsed({u"resave", u"--", u"-a.ifc", u"-b.ifc"}).output);
}

TEST(CommandLine, AFileMayHaveTheNameOfACommand) {
  EXPECT_EQ((Arguments{u"merge", u"info"}),
            Parsed({u"merge", u"merge", u"info", u"-o", u"c.ifc"}).inputs);
}

TEST(CommandLine, NamesOfAnyKindComeThroughAsTheyAre) {
  const WideString accents = u"B\u00fcro \u4e2d.ifc";
  const WideString noText = WideString(u"a") + char16_t{0xDCE9} + u".ifc";
  const CommandLine line = Parsed({u"info", accents, noText, u"", u"[a,b].ifc", u"/c:ifc"});
  EXPECT_EQ((Arguments{accents, noText, u"", u"[a,b].ifc", u"/c:ifc"}), line.inputs);
}

TEST(CommandLine, AWrongOptionNamesItselfAndTheNearestRightOne) {
  EXPECT_EQ(
      "merge: unknown option '--quite'; the nearest is '--quiet'. "
      "(A file name that begins with '-' goes behind '--'.)\nSee 'corvel merge --help'.",
      ErrorOf({u"merge", u"a.ifc", u"--quite", u"b.ifc"}));
  EXPECT_EQ(
      "info: unknown option '--jsn'; the nearest is '--json'. "
      "(A file name that begins with '-' goes behind '--'.)\nSee 'corvel info --help'.",
      ErrorOf({u"info", u"--jsn"}));
}

TEST(CommandLine, TheValueOfAWrongOptionIsNoPartOfItsName) {
  EXPECT_EQ(
      "resave: unknown option '--anser'; the nearest is '--answer'. "
      "(A file name that begins with '-' goes behind '--'.)\nSee 'corvel resave --help'.",
      ErrorOf({u"resave", u"a", u"b", u"--anser=yes"}));
}

TEST(CommandLine, AnOptionOfAnotherCommandIsWrong) {
  EXPECT_EQ(
      "merge: unknown option '--json'. "
      "(A file name that begins with '-' goes behind '--'.)\nSee 'corvel merge --help'.",
      ErrorOf({u"merge", u"a", u"b", u"-o", u"c", u"--json"}));
}

TEST(CommandLine, AWrongCommandNamesItselfAndTheNearestRightOne) {
  EXPECT_EQ("unknown command 'mrege'; the nearest is 'merge'.\nSee 'corvel --help'.",
            ErrorOf({u"mrege", u"a.ifc", u"b.ifc", u"-o", u"c.ifc"}));
  EXPECT_EQ("unknown command 'INFO'; the nearest is 'info'.\nSee 'corvel --help'.",
            ErrorOf({u"INFO", u"a.ifc"}));
}

TEST(CommandLine, AnOptionBeforeTheCommandIsWrong) {
  EXPECT_EQ(
      "unknown option before the command '--versoin'; the nearest is '--version'.\n"
      "See 'corvel --help'.",
      ErrorOf({u"--versoin"}));
}

TEST(CommandLine, NothingAtAllIsWrong) {
  EXPECT_EQ("a command is needed.\nSee 'corvel --help'.", ErrorOf({}));
}

TEST(CommandLine, TheNumberOfFilesHasToFit) {
  EXPECT_EQ("merge: two files or more are needed, and 1 is given\nSee 'corvel merge --help'.",
            ErrorOf({u"merge", u"a.ifc", u"-o", u"c.ifc"}));
  EXPECT_EQ("merge: two files or more are needed, and 0 are given\nSee 'corvel merge --help'.",
            ErrorOf({u"merge"}));
  EXPECT_EQ(
      "resave: one input and one output are needed, and 1 file is given\n"
      "See 'corvel resave --help'.",
      ErrorOf({u"resave", u"a.ifc"}));
  EXPECT_EQ(
      "resave: one input and one output are needed, and 3 files are given\n"
      "See 'corvel resave --help'.",
      ErrorOf({u"resave", u"a.ifc", u"b.ifc", u"c.ifc"}));
  EXPECT_EQ("info: a file is needed\nSee 'corvel info --help'.", ErrorOf({u"info"}));
  EXPECT_EQ("tree: one file is needed, and 0 are given\nSee 'corvel tree --help'.",
            ErrorOf({u"tree"}));
  EXPECT_EQ("tree: one file is needed, and 2 are given\nSee 'corvel tree --help'.",
            ErrorOf({u"tree", u"a.ifc", u"b.ifc"}));
}

TEST(CommandLine, MergeWithoutAnOutputIsWrong) {
  EXPECT_EQ("merge: the output is missing: -o OUT\nSee 'corvel merge --help'.",
            ErrorOf({u"merge", u"a.ifc", u"b.ifc"}));
}

TEST(CommandLine, AnAnswerIsYesOrNo) {
  EXPECT_EQ("merge: --answer takes 'yes' or 'no', not 'maybe'\nSee 'corvel merge --help'.",
            ErrorOf({u"merge", u"a.ifc", u"b.ifc", u"-o", u"c.ifc", u"--answer", u"maybe"}));
}

TEST(CommandLine, AnOptionWithoutItsValueIsNamed) {
  const std::string error = ErrorOf({u"merge", u"a.ifc", u"b.ifc", u"-o"});
  EXPECT_NE(std::string::npos, error.find("--output")) << error;
  EXPECT_NE(std::string::npos, error.find("See 'corvel merge --help'.")) << error;
}

TEST(CommandLine, HelpComesBeforeWhatElseIsWrong) {
  EXPECT_EQ(HelpOf(Command::kMerge), Explained({u"merge", u"--help"}));
  EXPECT_EQ(HelpOf(Command::kMerge), Explained({u"merge", u"a.ifc", u"--wrong", u"-h"}));
  EXPECT_EQ(HelpOf(Command::kResave), Explained({u"resave", u"--help"}));
  EXPECT_EQ(HelpOf(Command::kInfo), Explained({u"info", u"--help"}));
  EXPECT_EQ(HelpOf(Command::kTree), Explained({u"tree", u"--help"}));
  EXPECT_EQ(GeneralHelp(), Explained({u"--help"}));
  EXPECT_EQ(GeneralHelp(), Explained({u"-h"}));
  EXPECT_EQ(VersionText(), Explained({u"--version"}));
}

constexpr Command kAllCommands[] = {Command::kMerge,    Command::kExtract, Command::kResave,
                                    Command::kOptimise, Command::kInfo,    Command::kTree,
                                    Command::kDiff,     Command::kCheck};

// Every option of federation stands in the help of each command that takes it.
TEST(HelpTexts, TellTheOptionsOfFederation) {
  for (const FederationOption& option : AllFederationOptions()) {
    if (option.name.starts_with("no-")) continue;
    const WideString name = u"--" + Widen(std::string(option.name));
    for (const Command command : {Command::kMerge, Command::kExtract}) {
      EXPECT_NE(WideView::npos, HelpOf(command).find(name)) << option.name;
    }
    if (!option.ofResave) continue;
    EXPECT_NE(WideView::npos, HelpOf(Command::kResave).find(name)) << option.name;
  }
}

// Every option that a command takes stands in its help.
TEST(HelpTexts, TellAllOptionsAndAllStatuses) {
  for (const Command command : kAllCommands) {
    const std::string help = ToUtf8(HelpOf(command));
    for (const char* const word :
         {"Usage:", "--tolerant", "--ignore-enum-errors", "--quiet", "--answer yes|no",
          "-h, --help", "Exit status:", "Examples:", "  0   ", "  1   ", "  2   "}) {
      EXPECT_NE(std::string::npos, help.find(word)) << word;
    }
  }
  EXPECT_NE(WideView::npos, HelpOf(Command::kMerge).find(u"-o, --output OUT"));
  for (const char16_t* const option :
       {u"--mode active|visible|selected", u"--inactive FILE:LIST", u"--hide FILE:LIST",
        u"--select FILE:LIST", u"--offset FILE=X,Y,Z", u"--center X,Y,Z", u"--ignore-units",
        u"--delete-openings", u"--on-duplicate-guid generate|skip"}) {
    EXPECT_NE(WideView::npos, HelpOf(Command::kMerge).find(option)) << ToUtf8(option);
  }
  EXPECT_NE(WideView::npos, HelpOf(Command::kInfo).find(u"--json"));
  EXPECT_NE(WideView::npos, HelpOf(Command::kTree).find(u"--json"));
  for (const Command command :
       {Command::kMerge, Command::kExtract, Command::kResave, Command::kOptimise}) {
    EXPECT_NE(WideView::npos, HelpOf(command).find(u"  3   "));
    EXPECT_NE(WideView::npos, HelpOf(command).find(u"  4   "));
  }
}

TEST(HelpTexts, EveryReleaseIsNamed) {
  std::vector<std::string> names;
#define CORVEL_RELEASE(name) names.emplace_back(#name);
#include "step/releases.inc"
#undef CORVEL_RELEASE
  std::string list;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (i != 0) list += i + 1 == names.size() ? " and " : ", ";
    list += names[i];
  }
  std::string help = ToUtf8(GeneralHelp());
  std::replace(help.begin(), help.end(), '\n', ' ');
  EXPECT_NE(std::string::npos, help.find("of the releases " + list + ".")) << list;
}

TEST(CommandLine, OptionsOfFederationCountInTheirOrder) {
  const auto prunes = [](std::vector<WideString> options) {
    std::vector<WideString> words = {u"merge", u"a.ifc", u"b.ifc", u"-o", u"out.ifc"};
    words.insert(words.end(), options.begin(), options.end());
    return Parsed(words).choices.federation.prune;
  };
  EXPECT_FALSE(prunes({}));
  EXPECT_TRUE(prunes({u"--prune"}));
  EXPECT_FALSE(prunes({u"--prune", u"--stamp", u"--no-prune"}));
  EXPECT_TRUE(prunes({u"--no-prune", u"--prune"}));
  EXPECT_TRUE(Parsed({u"resave", u"a.ifc", u"b.ifc", u"--prune"}).choices.federation.prune);
}

TEST(CommandLine, OfTwoValuesOfAnOptionOfFederationTheLastCounts) {
  const auto joins = [](const WideString& first, const WideString& last) {
    return Parsed({u"merge", u"a", u"b", u"-o", u"c", u"--contexts", first, u"--prune",
                   u"--contexts", last})
        .choices.federation.joinContexts;
  };
  EXPECT_TRUE(joins(u"keep", u"join"));
  EXPECT_FALSE(joins(u"join", u"keep"));
}

TEST(CommandLine, TheToleranceIsANumberOfMillimetres) {
  const auto line = [](const WideString& millimetres) {
    return std::vector<WideString>{u"merge",  u"a",   u"b",           u"-o",      u"c",
                                   u"--tree", u"one", u"--tolerance", millimetres};
  };
  const FederationChoices choices = Parsed(line(u"12.5")).choices.federation;
  EXPECT_EQ(TreeMatching::kOne, choices.tree);
  EXPECT_EQ(12.5, choices.toleranceMm);
  for (const char16_t* const wrong : {u"1cm", u"", u"nan"}) {
    EXPECT_EQ("merge: --tolerance takes a number of millimetres, not '" + Narrow(wrong) +
                  "'\nSee 'corvel merge --help'.",
              ErrorOf(line(wrong)));
  }
}

TEST(CommandLine, AProposalTakesThePlaceOfTheOutput) {
  const CommandLine line = Parsed({u"merge", u"a", u"b", u"--propose-tree", u"tree.txt"});
  EXPECT_EQ(u"tree.txt", line.output);
  EXPECT_EQ(u"tree.txt", line.choices.federation.proposeTree);
  EXPECT_EQ("merge: --propose-tree writes no model: leave -o out\nSee 'corvel merge --help'.",
            ErrorOf({u"merge", u"a", u"b", u"--propose-tree", u"tree.txt", u"-o", u"c.ifc"}));
  EXPECT_EQ("merge: --tree-map takes the name of a file, not ''\nSee 'corvel merge --help'.",
            ErrorOf({u"merge", u"a", u"b", u"-o", u"c", u"--tree-map", u""}));
}

TEST(CommandLine, AnOptionOfFederationNeedsAWordOfItsOwn) {
  EXPECT_TRUE(Parsed({u"merge", u"a", u"b", u"-o", u"c", u"--contexts=join"})
                  .choices.federation.joinContexts);
  EXPECT_EQ(
      "merge: --contexts takes 'keep' or 'join', not 'both'\n"
      "See 'corvel merge --help'.",
      ErrorOf({u"merge", u"a", u"b", u"-o", u"c", u"--contexts", u"both"}));
  EXPECT_EQ(
      "resave: unknown option '--stamp'. "
      "(A file name that begins with '-' goes behind '--'.)\nSee 'corvel resave --help'.",
      ErrorOf({u"resave", u"a.ifc", u"b.ifc", u"--stamp"}));
}

TEST(HelpTexts, NoLineIsLongerThanATerminal) {
  std::vector<WideView> helps = {GeneralHelp()};
  for (const Command command : kAllCommands) helps.push_back(HelpOf(command));
  for (const WideView help : helps) {
    WideView rest = help;
    while (!rest.empty()) {
      const WideView line = rest.substr(0, rest.find(u'\n'));
      EXPECT_LE(line.size(), 79u) << ToUtf8(line);
      rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    }
    EXPECT_EQ(u'\n', help.back());
  }
}

}  // namespace corvel::host
