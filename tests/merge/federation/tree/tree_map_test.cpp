// The list of what becomes one, and the same list taken back from a person.
#include "merge/federation/tree/tree_map.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "merge/federation/tree/tree_models.h"
#include "support/temporary_folder.h"

namespace corvel {
namespace {

using test::FederatedDocuments;
using test::NamesOf;
using test::RecordedReports;
using test::Spatial;
using test::TemporaryFolder;
using test::TreeModel;

using Names = std::vector<std::string>;

// A house with a ground floor, and one whose upper floor has another name and height.
class TreeMaps : public testing::Test {
 protected:
  static TreeModel House(std::uint32_t base, const std::vector<Spatial>& storeys) {
    TreeModel model(base);
    const auto site = model.Site({.name = "'Hill'", .z = 0.0});
    const auto building = model.Building({.name = "'House'", .z = 0.0}, site);
    for (const Spatial& storey : storeys) model.Storey(storey, building);
    return model;
  }

  std::string Run(const FederationChoices& choices) {
    FederatedDocuments models(SchemaNamespace::IFC4);
    char letter = 'a';
    for (const TreeModel& house : houses_) {
      models.Add(Widen(std::string(1, letter++)) + u".ifc", "", house.All());
    }
    std::string text = models.Run(choices);
    // They go with the models.
    if (!reports_->empty()) lastReport_ = reports_->back().message;
    return text;
  }

  std::string RunWithMap(const std::string& map, TreeMatching tree = TreeMatching::kKeep) {
    FederationChoices choices;
    choices.tree = tree;
    choices.treeMap = folder_.Write("map.txt", map);
    return Run(choices);
  }

  Names StoreysOf(const std::string& map, TreeMatching tree = TreeMatching::kKeep) {
    return NamesOf(RunWithMap(map, tree), "IFCBUILDINGSTOREY");
  }

  // What is reported, without the folder of the map.
  std::string MistakesIn(const std::string& map) {
    EXPECT_EQ("not federated", RunWithMap(map));
    std::string text = ToUtf8(lastReport_);
    const std::string path = ToUtf8(folder_.Path("map.txt"));
    for (auto at = text.find(path); at != std::string::npos; at = text.find(path)) {
      text.replace(at, path.size(), "map.txt");
    }
    return text;
  }

  const TemporaryFolder folder_;
  RecordedReports reports_;
  WideString lastReport_;
  // The building is #108 or #208, and storeys #113, #118 and so on.
  std::vector<TreeModel> houses_ = {
      House(100, {{.name = "'EG'", .z = 0.0}, {.name = "'OG'", .z = 3.0}}),
      House(200, {{.name = "'Ground'", .z = 0.0}, {.name = "'Upper'", .z = 3.5}})};
};

TEST_F(TreeMaps, AListTellsOfEachObjectAndWhy) {
  FederationChoices choices;
  choices.proposeTree = folder_.Path("tree.txt");
  Run(choices);
  const std::string list = folder_.Read("tree.txt");
  EXPECT_EQ(
      "input 1 a.ifc\n"
      "input 2 b.ifc\n"
      "apart 1:0000000000000000000103 ; IfcSite 'Hill': 1 gives way to it\n"
      "  apart 1:0000000000000000000108 ; IfcBuilding 'House': 1 gives way to it\n"
      "    apart 1:0000000000000000000113 ; IfcBuildingStorey 'EG' at 0.000 m: 1 gives way to it\n"
      "    apart 1:0000000000000000000118 ; IfcBuildingStorey 'OG' at 3.000 m: nothing matches\n"
      "join 2:0000000000000000000203 1:0000000000000000000103 ; IfcSite 'Hill' to 'Hill': "
      "equal name\n"
      "  join 2:0000000000000000000208 1:0000000000000000000108 ; IfcBuilding 'House' to 'House': "
      "equal name\n"
      "    join 2:0000000000000000000213 1:0000000000000000000113 ; IfcBuildingStorey 'Ground' at "
      "0.000 m to 'EG' at 0.000 m: equal height\n"
      "    apart 2:0000000000000000000218 ; IfcBuildingStorey 'Upper' at 3.500 m: "
      "nothing matches\n",
      list.substr(list.find("input 1")));
}

TEST_F(TreeMaps, AListChangesNothing) {
  FederationChoices choices;
  choices.proposeTree = folder_.Path("tree.txt");
  EXPECT_EQ(Run({}), Run(choices));
}

TEST_F(TreeMaps, AListSaysWhoWouldMatchSeveral) {
  houses_ = {House(100, {{.name = "'EG'"}, {.name = "'EG'"}}), House(200, {{.name = "'EG'"}})};
  FederationChoices choices;
  choices.proposeTree = folder_.Path("tree.txt");
  Run(choices);
  const std::string list = folder_.Read("tree.txt");
  EXPECT_NE(std::string::npos,
            list.find("    apart 2:0000000000000000000210 ; IfcBuildingStorey 'EG' without height: "
                      "several would match, see list 1\n"))
      << list;
  EXPECT_TRUE(
      list.ends_with("; list 1, equal name: 1:0000000000000000000110 "
                     "1:0000000000000000000112 2:0000000000000000000210\n"))
      << list;
}

TEST_F(TreeMaps, AGuidThatAModelHasTwiceIsNotTheNameOfAnObject) {
  houses_ = {House(100, {{.name = "'EG'", .guid = "2222222222222222222222"},
                         {.name = "'OG'", .guid = "2222222222222222222222"}}),
             House(200, {})};
  FederationChoices choices;
  choices.proposeTree = folder_.Path("tree.txt");
  Run(choices);
  const std::string list = folder_.Read("tree.txt");
  EXPECT_NE(std::string::npos, list.find("apart 1:#110 ; IfcBuildingStorey 'EG'")) << list;
  EXPECT_NE(std::string::npos, list.find("apart 1:#112 ; IfcBuildingStorey 'OG'")) << list;
}

TEST_F(TreeMaps, AListThatIsTakenBackDoesWhatItSays) {
  FederationChoices proposing;
  proposing.proposeTree = folder_.Path("tree.txt");
  Run(proposing);
  FederationChoices one;
  one.tree = TreeMatching::kOne;
  FederationChoices told;
  told.treeMap = folder_.Path("tree.txt");
  EXPECT_EQ(Run(one), Run(told));
}

TEST_F(TreeMaps, APersonJoinsWhatNothingElseWould) {
  EXPECT_EQ((Names{"EG", "OG", "Ground"}), StoreysOf("join 2:#218 1:#118\n"));
}

TEST_F(TreeMaps, APersonKeepsApartWhatWouldBeJoined) {
  EXPECT_EQ((Names{"EG", "OG", "Ground", "Upper"}),
            StoreysOf("apart 2:0000000000000000000213 ; they differ\n", TreeMatching::kOne));
}

TEST_F(TreeMaps, WhatNobodyToldOfIsLookedForAsEver) {
  EXPECT_EQ((Names{"EG", "OG"}), StoreysOf("join 2:#218 1:#118\n", TreeMatching::kOne));
}

TEST_F(TreeMaps, OthersMayGiveWayToWhatStaysApart) {
  EXPECT_EQ((Names{"EG", "OG", "Upper"}), StoreysOf("apart 1:#113\n", TreeMatching::kOne));
}

TEST_F(TreeMaps, WhoJoinsOneThatJoinsAnotherIsOneWithThat) {
  houses_.push_back(House(300, {{.name = "'Top'", .z = 9.0}}));
  EXPECT_EQ((Names{"EG", "OG", "Ground"}), StoreysOf("join 3:#313 2:#218\njoin 2:#218 1:#118\n"));
}

TEST_F(TreeMaps, BlanksCommentsAndForeignLineEndsDoNotMatter) {
  EXPECT_EQ((Names{"EG", "OG", "Ground"}),
            StoreysOf("\xEF\xBB\xBF; by hand\r\n\r\n \tjoin  2:#218\t1:#118 ;why\r\n"
                      "input 1 a.ifc\r\ninput 2 b.ifc "));
}

TEST_F(TreeMaps, EachMistakeIsToldWithItsLine) {
  EXPECT_EQ(
      "map.txt, line 1: there is no 'glue': a line says 'join', 'apart' or 'input'.\n"
      "map.txt, line 2: an object is missing.\n"
      "map.txt, line 3: 'x' names no object: it takes the position of a model, ':' and a GUID or "
      "'#' with a number.\n"
      "map.txt, line 5: '1:#118' is too much.\n"
      "map.txt, line 6: 'b.ifc' is no position of a model.",
      MistakesIn("glue 2:#218 1:#118\njoin 2:#218\napart x\n\napart 2:#218 1:#118\ninput b.ifc\n"));
}

TEST_F(TreeMaps, WhatIsNotThereIsAMistake) {
  EXPECT_EQ(
      "map.txt, line 1: 1:#999 is no site, building, storey or the like that is there.\n"
      "map.txt, line 2: 3:#113 is no site, building, storey or the like that is there.\n"
      "map.txt, line 3: 1:#100 is no site, building, storey or the like that is there.\n"
      "map.txt, line 4: 1:1111111111111111111111 is no site, building, storey or the like that is "
      "there.",
      MistakesIn("apart 1:#999\napart 3:#113\napart 1:#100\napart 1:1111111111111111111111\n"));
}

TEST_F(TreeMaps, WhatCannotBecomeOneIsAMistake) {
  EXPECT_EQ(
      "map.txt, line 1: 1:#118 cannot join 1:#113: they are of one model.\n"
      "map.txt, line 2: 1:#113 cannot join 2:#213: its model is the earlier one.\n"
      "map.txt, line 3: 2:#208 cannot join 1:#113: it is of another class.",
      MistakesIn("join 1:#118 1:#113\njoin 1:#113 2:#213\njoin 2:#208 1:#113\n"));
}

TEST_F(TreeMaps, AnObjectThatIsToldOfTwiceIsAMistake) {
  EXPECT_EQ("map.txt, line 2: 2:#213 is told of twice.",
            MistakesIn("apart 2:#213\njoin 2:#213 1:#113\n"));
}

TEST_F(TreeMaps, TwoOfOneModelNeverBecomeOne) {
  EXPECT_EQ("map.txt, line 2: 2:#218 cannot join 1:#113: two of one model would become one.",
            MistakesIn("join 2:#213 1:#113\njoin 2:#218 1:#113\n"));
}

TEST_F(TreeMaps, AnotherOrderOfTheModelsIsAMistake) {
  EXPECT_EQ(
      "map.txt, line 1: input 1 is 'a.ifc', not 'b.ifc'.\n"
      "map.txt, line 2: there is no input 3.",
      MistakesIn("input 1 b.ifc\ninput 3 c.ifc\n"));
}

TEST_F(TreeMaps, AFileThatIsNotThereIsAMistake) {
  std::vector<WideString> mistakes;
  ReadTreeMap(u"/no/such/map.txt", mistakes);
  EXPECT_EQ((std::vector<WideString>{u"/no/such/map.txt: this file cannot be read."}), mistakes);
}

TEST_F(TreeMaps, OfManyMistakesTheFirstTwentyAreTold) {
  std::string map;
  for (int i = 0; i < 25; ++i) map += "glue\n";
  const std::string told = MistakesIn(map);
  EXPECT_TRUE(told.ends_with("\n... and 5 more.")) << told;
}

}  // namespace
}  // namespace corvel
