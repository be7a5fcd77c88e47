#include "host/run_choices.h"

#include <gtest/gtest.h>

#include "platform/threads.h"

namespace corvel::host {

namespace {

using Inputs = std::vector<std::string>;
using Items = std::vector<WideString>;

const Inputs kInputs{"a.ifc", "models/b.ifc", "C:\\x\\c.ifc", "d=e:f.ifc", "old/b.ifc"};

RunChoices Understood(const ChoiceWords& words, const Inputs& inputs = kInputs) {
  auto outcome = UnderstandChoices(words, inputs);
  if (const auto* const mistake = std::get_if<std::string>(&outcome)) ADD_FAILURE() << *mistake;
  return std::holds_alternative<RunChoices>(outcome) ? std::get<RunChoices>(outcome) : RunChoices{};
}

std::string MistakeIn(const ChoiceWords& words, const Inputs& inputs = kInputs) {
  const auto outcome = UnderstandChoices(words, inputs);
  const auto* const mistake = std::get_if<std::string>(&outcome);
  return mistake == nullptr ? "(none)" : *mistake;
}

ChoiceWords Select(const std::string& word) {
  ChoiceWords words;
  words.select = {word};
  return words;
}

ChoiceWords Offset(const std::string& word) {
  ChoiceWords words;
  words.offsets = {word};
  return words;
}

// The input that a word names, by its index.
std::size_t InputNamed(const std::string& word) {
  const RunChoices choices = Understood(Select(word + ":#1"));
  return choices.lists.empty() ? 99 : choices.lists.front().input;
}

}  // namespace

TEST(RunChoices, WithoutWordsEverythingActiveIsKept) {
  const RunChoices choices = Understood({});
  EXPECT_EQ(SavingMode::kMergeActive, choices.mode);
  EXPECT_TRUE(choices.lists.empty());
  EXPECT_TRUE(choices.offsetsMm.empty());
  EXPECT_EQ((Point{0, 0, 0}), choices.centerMetres);
  EXPECT_FALSE(choices.generateGuids.has_value());
}

TEST(RunChoices, TheModeFollowsFromTheLists) {
  ChoiceWords words;
  words.inactive = {"1:#1"};
  EXPECT_EQ(SavingMode::kMergeActive, Understood(words).mode);
  words.hide = {"1:#1"};
  EXPECT_EQ(SavingMode::kMergeVisible, Understood(words).mode);
  words.select = {"1:#1"};
  EXPECT_EQ(SavingMode::kMergeSelected, Understood(words).mode);
  words.mode = "visible";
  EXPECT_EQ(SavingMode::kMergeVisible, Understood(words).mode);
  words.mode = "active";
  EXPECT_EQ(SavingMode::kMergeActive, Understood(words).mode);
}

TEST(RunChoices, AModeIsOneOfThree) {
  ChoiceWords words;
  words.mode = "selected";
  EXPECT_EQ(SavingMode::kMergeSelected, Understood(words).mode);
  for (const char* const wrong : {"Selected", "", "all"}) {
    words.mode = wrong;
    EXPECT_EQ("--mode takes 'active', 'visible' or 'selected', not '" + std::string(wrong) + "'",
              MistakeIn(words));
  }
}

TEST(RunChoices, AnInputIsNamedByPositionNameOrFileName) {
  EXPECT_EQ(0u, InputNamed("1"));
  EXPECT_EQ(4u, InputNamed("5"));
  EXPECT_EQ(1u, InputNamed("models/b.ifc"));
  EXPECT_EQ(0u, InputNamed("a.ifc"));
  EXPECT_EQ(3u, InputNamed("d=e:f.ifc"));
  EXPECT_EQ(2u, InputNamed("C:\\x\\c.ifc"));
}

TEST(RunChoices, ANameAsGivenComesBeforeAFileName) {
  const Inputs inputs{"x/a.ifc", "a.ifc"};
  EXPECT_EQ(1u, Understood(Select("a.ifc:#1"), inputs).lists.front().input);
}

TEST(RunChoices, AnInputThatIsNotThereIsAMistake) {
  EXPECT_EQ("--select: there is no input 'z.ifc'; name it by its position (1 to 5) or by its name",
            MistakeIn(Select("z.ifc:#1")));
  EXPECT_EQ("--select: there is no input '0'; name it by its position (1 to 5) or by its name",
            MistakeIn(Select("0:#1")));
  EXPECT_EQ("--select: there is no input '6'; name it by its position (1 to 5) or by its name",
            MistakeIn(Select("6:#1")));
  EXPECT_EQ("--select: there is no input ''; name it by its position (1 to 5) or by its name",
            MistakeIn(Select(":#1")));
}

TEST(RunChoices, ANameOfSeveralInputsIsAMistake) {
  EXPECT_EQ("--select: 'b.ifc' is the name of the inputs 2 and 5; name one by its position",
            MistakeIn(Select("b.ifc:#1")));
  EXPECT_EQ("--select: 'a.ifc' is the name of the inputs 1, 2 and 3; name one by its position",
            MistakeIn(Select("a.ifc:#1"), {"a.ifc", "a.ifc", "a.ifc"}));
}

TEST(RunChoices, ItemsStandBetweenCommas) {
  const RunChoices choices = Understood(Select("1:#12, IfcWall ,2O2Fr$t4X7Zf8NOew3FL_H"));
  ASSERT_EQ(1u, choices.lists.size());
  EXPECT_EQ(ListKind::kSelect, choices.lists.front().kind);
  EXPECT_EQ((Items{u"#12", u"IfcWall", u"2O2Fr$t4X7Zf8NOew3FL_H"}), choices.lists.front().items);
}

TEST(RunChoices, ListsOfAllKindsAreKept) {
  ChoiceWords words;
  words.inactive = {"1:#1", "2:#2"};
  words.hide = {"3:#3"};
  words.select = {"4:#4"};
  const RunChoices choices = Understood(words);
  ASSERT_EQ(4u, choices.lists.size());
  const ListKind kinds[] = {ListKind::kInactive, ListKind::kInactive, ListKind::kHide,
                            ListKind::kSelect};
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(kinds[i], choices.lists[i].kind);
    EXPECT_EQ(i, choices.lists[i].input);
  }
}

TEST(RunChoices, AListNeedsAColonAndItems) {
  EXPECT_EQ("--select takes FILE:LIST, not 'a.ifc'", MistakeIn(Select("a.ifc")));
  EXPECT_EQ("--select: an item of the list is empty", MistakeIn(Select("a.ifc:")));
  EXPECT_EQ("--select: an item of the list is empty", MistakeIn(Select("a.ifc:#1,,#2")));
  // A path of Windows alone.
  EXPECT_EQ("--select: there is no input 'C'; name it by its position (1 to 5) or by its name",
            MistakeIn(Select("C:\\x\\c.ifc")));
}

TEST(RunChoices, ANumberIsThatOfARecord) {
  for (const char* const wrong : {"#", "#x", "#1x", "#-1", "#0", "# 1", "#4294967280", "#1.5"}) {
    EXPECT_EQ("--select: '" + std::string(wrong) + "' is no number of a record",
              MistakeIn(Select("1:" + std::string(wrong))));
  }
  EXPECT_EQ("(none)", MistakeIn(Select("1:#4294967279")));
}

TEST(RunChoices, AnOffsetIsThreeNumbersForOneInput) {
  ChoiceWords words;
  words.offsets = {"2=1000,-2.5,3e2", "d=e:f.ifc= 0, 0,1"};
  const RunChoices choices = Understood(words, {"a.ifc", "b.ifc", "d=e:f.ifc"});
  ASSERT_EQ(2u, choices.offsetsMm.size());
  EXPECT_EQ(1u, choices.offsetsMm[0].first);
  EXPECT_EQ((Point{1000, -2.5, 300}), choices.offsetsMm[0].second);
  EXPECT_EQ(2u, choices.offsetsMm[1].first);
  EXPECT_EQ((Point{0, 0, 1}), choices.offsetsMm[1].second);
}

TEST(RunChoices, WhatIsNoNumberIsNoOffset) {
  for (const char* const wrong :
       {"1=1,2", "1=1,2,3,4", "1=1,2,", "1=1,2,x", "1=1,2,nan", "1=inf,2,3", "1=1e999,2,3",
        "1=1,2,3mm", "1=+1,2,3", "1", "1:1,2,3", "1=1;2;3", "1=0x1,2,3", "1=1,2,-inf"}) {
    EXPECT_EQ("--offset takes FILE=X,Y,Z with three numbers, not '" + std::string(wrong) + "'",
              MistakeIn(Offset(wrong)));
  }
  EXPECT_EQ("--offset: there is no input '9'; name it by its position (1 to 5) or by its name",
            MistakeIn(Offset("9=1,2,3")));
}

TEST(RunChoices, AnInputHasOneOffset) {
  ChoiceWords words;
  words.offsets = {"1=1,2,3", "a.ifc=1,2,3"};
  EXPECT_EQ("--offset: input 1 has two offsets", MistakeIn(words));
}

TEST(RunChoices, TheCenterIsThreeNumbers) {
  ChoiceWords words;
  words.center = "-1,2.25,3";
  EXPECT_EQ((Point{-1, 2.25, 3}), Understood(words).centerMetres);
  for (const char* const wrong : {"", "1,2", "1,2,nan", "1,2,3,"}) {
    words.center = wrong;
    EXPECT_EQ("--center takes X,Y,Z with three numbers, not '" + std::string(wrong) + "'",
              MistakeIn(words));
  }
}

TEST(RunChoices, ADuplicateGuidIsGeneratedOrSkipped) {
  ChoiceWords words;
  words.onDuplicateGuid = "generate";
  EXPECT_EQ(true, Understood(words).generateGuids);
  words.onDuplicateGuid = "skip";
  EXPECT_EQ(false, Understood(words).generateGuids);
  words.onDuplicateGuid = "ask";
  EXPECT_EQ("--on-duplicate-guid takes 'generate' or 'skip', not 'ask'", MistakeIn(words));
}

namespace {

std::pair<const FederationOption*, std::string> Option(const char* name, const char* value = "") {
  return {FindFederationOption(name), value};
}

}  // namespace

TEST(RunChoices, NothingOfFederationIsOnByDefault) {
  const FederationChoices none = Understood({}).federation;
  EXPECT_FALSE(none.ChangeModel());
  EXPECT_FALSE(none.newHeader);
}

TEST(RunChoices, FederationIsChosenStepByStep) {
  ChoiceWords words;
  words.federation = {Option("contexts", "join"),
                      Option("guids", "renew"),
                      Option("header", "new"),
                      Option("prune"),
                      Option("stamp"),
                      Option("place", "map")};
  RunChoices choices = Understood(words);
  EXPECT_TRUE(choices.federation.joinContexts);
  EXPECT_EQ(GuidHandling::kRenew, choices.federation.guids);
  EXPECT_TRUE(choices.federation.newHeader);
  EXPECT_TRUE(choices.federation.prune);
  EXPECT_TRUE(choices.federation.placeByMap);
  EXPECT_TRUE(choices.federation.stamp);
  EXPECT_TRUE(choices.Over({}).federation.joinContexts);
  words.federation = {Option("contexts", "keep"), Option("guids", "keep"), Option("place", "keep"),
                      Option("header", "told")};
  choices = Understood(words);
  EXPECT_FALSE(choices.federation.ChangeModel());
  EXPECT_FALSE(choices.federation.newHeader);
}

TEST(RunChoices, AStepOfFederationTakesItsOwnWords) {
  ChoiceWords words;
  words.federation = {Option("contexts", "Join")};
  EXPECT_EQ("--contexts takes 'keep' or 'join', not 'Join'", MistakeIn(words));
  words = {};
  words.federation = {Option("guids", "")};
  EXPECT_EQ("--guids takes 'keep', 'renew' or 'join', not ''", MistakeIn(words));
  words = {};
  words.federation = {Option("place", "join")};
  EXPECT_EQ("--place takes 'keep' or 'map', not 'join'", MistakeIn(words));
  words = {};
  words.federation = {Option("header", "join")};
  EXPECT_EQ("--header takes 'told' or 'new', not 'join'", MistakeIn(words));
}

TEST(RunChoices, OneBuildingIsManyOptionsAndThoseBehindItChangeTheirPart) {
  ChoiceWords words;
  words.federation = {Option("header", "told"), Option("one-building")};
  FederationChoices choices = Understood(words).federation;
  EXPECT_TRUE(choices.convertUnits);
  EXPECT_TRUE(choices.joinContexts);
  EXPECT_TRUE(choices.placeByMap);
  EXPECT_TRUE(choices.shareEqual);
  EXPECT_EQ(TreeMatching::kOne, choices.tree);
  EXPECT_EQ(GuidHandling::kJoin, choices.guids);
  EXPECT_TRUE(choices.prune);
  EXPECT_TRUE(choices.stamp);
  EXPECT_TRUE(choices.newHeader);
  words.federation.insert(
      words.federation.end(),
      {Option("units", "keep"), Option("contexts", "keep"), Option("place", "keep"),
       Option("tree", "keep"), Option("guids", "keep"), Option("no-prune"),
       Option("no-share-equal"), Option("no-stamp"), Option("header", "told")});
  choices = Understood(words).federation;
  EXPECT_FALSE(choices.ChangeModel());
  EXPECT_FALSE(choices.convertUnits);
  EXPECT_FALSE(choices.newHeader);
}

TEST(RunChoices, OfTwoOptionsOfAStepTheLastCounts) {
  ChoiceWords words;
  words.federation = {Option("prune"), Option("stamp"), Option("no-prune"),
                      Option("contexts", "join"), Option("contexts", "keep")};
  const FederationChoices choices = Understood(words).federation;
  EXPECT_FALSE(choices.prune);
  EXPECT_TRUE(choices.stamp);
  EXPECT_FALSE(choices.joinContexts);
}

TEST(RunChoices, ChoicesOfARunGoOverTheRememberedOnes) {
  RunChoices choices;
  const MergeOptions remembered{false, true, true, false, false};
  MergeOptions now = choices.Over(remembered);
  EXPECT_FALSE(now.generateGuid);
  EXPECT_TRUE(now.remember);
  EXPECT_TRUE(now.ignoreUnits);
  EXPECT_FALSE(now.ignoreEnumErrors);
  EXPECT_FALSE(now.deleteOpenings);
  choices.generateGuids = true;
  choices.ignoreEnumErrors = true;
  choices.deleteOpenings = true;
  now = choices.Over(remembered);
  EXPECT_TRUE(now.generateGuid);
  EXPECT_TRUE(now.ignoreEnumErrors);
  EXPECT_TRUE(now.deleteOpenings);
}

TEST(RunChoices, WithoutANumberOfThreadsThereIsOneForEachCoreToUse) {
  MergeOptions remembered;
  remembered.threads = 77;
  RunChoices choices;
  EXPECT_EQ(platform::UsableCores(), choices.Over(remembered).threads);
  choices.threads = 5;
  EXPECT_EQ(5U, choices.Over(remembered).threads);
}

}  // namespace corvel::host
