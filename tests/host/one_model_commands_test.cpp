// What is typed for extract and optimise.
#include <gtest/gtest.h>

#include <string>
#include <variant>
#include <vector>

#include "host/command_line.h"
#include "host/savings.h"

namespace corvel::host {

namespace {

using Typed = std::vector<WideString>;

CommandLine LineOf(const Typed& words) {
  auto outcome = ParseCommandLine(words);
  if (const auto* const error = std::get_if<UsageError>(&outcome)) {
    ADD_FAILURE() << ToUtf8(error->text);
  }
  return std::holds_alternative<CommandLine>(outcome) ? std::get<CommandLine>(outcome)
                                                      : CommandLine{};
}

std::string FirstLineOfError(const Typed& words) {
  const auto outcome = ParseCommandLine(words);
  const auto* const error = std::get_if<UsageError>(&outcome);
  if (error == nullptr) return "(none)";
  const std::string text = ToUtf8(error->text);
  return text.substr(0, text.find('\n'));
}

Typed Extracting(const Typed& options) {
  Typed words = {u"extract", u"in.ifc", u"-o", u"out.ifc"};
  words.insert(words.end(), options.begin(), options.end());
  return words;
}

}  // namespace

TEST(ExtractCommand, TakesOneInputAndAnOutput) {
  const CommandLine line = LineOf(Extracting({}));
  EXPECT_EQ(Command::kExtract, line.command);
  EXPECT_EQ((Typed{u"in.ifc"}), line.inputs);
  EXPECT_EQ(u"out.ifc", line.output);
  EXPECT_EQ("extract: one input is needed, and 2 are given",
            FirstLineOfError({u"extract", u"a.ifc", u"b.ifc", u"-o", u"out.ifc"}));
  EXPECT_EQ("extract: one input is needed, and 0 are given",
            FirstLineOfError({u"extract", u"-o", u"out.ifc"}));
  EXPECT_EQ("extract: the output is missing: -o OUT", FirstLineOfError({u"extract", u"a.ifc"}));
}

TEST(ExtractCommand, ListsNameNoFile) {
  const RunChoices choices =
      LineOf(Extracting({u"--select", u"#12,IfcWall", u"--hide", u"IfcDoor", u"--inactive", u"#3"}))
          .choices;
  EXPECT_EQ(SavingMode::kMergeSelected, choices.mode);
  ASSERT_EQ(3u, choices.lists.size());
  EXPECT_EQ((std::vector<WideString>{u"#3"}), choices.lists[0].items);
  EXPECT_EQ(ListKind::kHide, choices.lists[1].kind);
  EXPECT_EQ((std::vector<WideString>{u"#12", u"IfcWall"}), choices.lists[2].items);
  for (const ObjectList& list : choices.lists) EXPECT_EQ(0u, list.input);
}

TEST(ExtractCommand, TellsWhatIsWrongWithAList) {
  EXPECT_EQ("extract: --select: an item of the list is empty",
            FirstLineOfError(Extracting({u"--select", u""})));
  EXPECT_EQ("extract: --hide: '#x' is no number of a record",
            FirstLineOfError(Extracting({u"--hide", u"#x"})));
}

TEST(ExtractCommand, AnOffsetNamesNoFileAndIsOne) {
  const RunChoices choices = LineOf(Extracting({u"--offset", u"1,2.5,-3"})).choices;
  ASSERT_EQ(1u, choices.offsetsMm.size());
  EXPECT_EQ(std::pair(std::size_t{0}, (Point{1, 2.5, -3})), choices.offsetsMm.front());
  EXPECT_EQ("extract: --offset takes X,Y,Z with three numbers, not '1=0,0,0'",
            FirstLineOfError(Extracting({u"--offset", u"1=0,0,0"})));
  EXPECT_EQ("extract: --offset: the model has two offsets",
            FirstLineOfError(Extracting({u"--offset", u"0,0,0", u"--offset", u"0,0,0"})));
}

TEST(ExtractCommand, AProposalOfATreeIsWrittenInThePlaceOfAModel) {
  EXPECT_EQ(u"tree.txt", LineOf({u"extract", u"a.ifc", u"--propose-tree", u"tree.txt"}).output);
  EXPECT_EQ("extract: --propose-tree writes no model: leave -o out",
            FirstLineOfError(Extracting({u"--propose-tree", u"tree.txt"})));
}

TEST(ExtractCommand, TakesAllOptionsOfFederationAndNoneOfAFold) {
  const FederationChoices federation =
      LineOf(Extracting({u"--prune", u"--stamp", u"--header", u"new", u"--contexts", u"join"}))
          .choices.federation;
  EXPECT_TRUE(federation.prune && federation.stamp && federation.newHeader &&
              federation.joinContexts);
  EXPECT_TRUE(FirstLineOfError(Extracting({u"--ignore-units"}))
                  .starts_with("extract: unknown option '--ignore-units'"));
}

TEST(OptimiseCommand, IsAResaveThatPrunesAndSharesAndIsExact) {
  const CommandLine line = LineOf({u"optimise", u"in.ifc", u"out.ifc"});
  EXPECT_EQ(Command::kOptimise, line.command);
  EXPECT_EQ((Typed{u"in.ifc"}), line.inputs);
  EXPECT_EQ(u"out.ifc", line.output);
  EXPECT_TRUE(line.choices.federation.prune);
  EXPECT_TRUE(line.choices.federation.shareEqual);
  EXPECT_EQ(NumberForm::kExact, line.choices.federation.numbers);
  EXPECT_EQ("optimise: one input and one output are needed, and 1 file is given",
            FirstLineOfError({u"optimise", u"in.ifc"}));
}

TEST(OptimiseCommand, EachPartMayBeTurnedOff) {
  const FederationChoices federation = LineOf({u"optimise", u"a.ifc", u"b.ifc", u"--no-prune",
                                               u"--no-share-equal", u"--numbers", u"told"})
                                           .choices.federation;
  EXPECT_FALSE(federation.ChangeModel());
  EXPECT_EQ(NumberForm::kTold, federation.numbers);
}

TEST(SavingsOfOptimise, AreToldInRecordsAndBytes) {
  EXPECT_EQ(
      u"Records: 1000 before, 691 now, 30.9 % saved.\n"
      u"Bytes: 60000 before, 60600 now, 1.0 % more.\n",
      SavingsAsText({1000, 691}, {60000, 60600}));
  EXPECT_EQ(
      u"Records: 0 before, 0 now, 0.0 % saved.\n"
      u"Bytes: 300 before, 300 now, 0.0 % saved.\n",
      SavingsAsText({0, 0}, {300, 300}));
}

}  // namespace corvel::host
