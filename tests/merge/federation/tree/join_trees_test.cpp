// Which sites, buildings and storeys become one, and which stay apart.
#include "merge/federation/tree/join_trees.h"

#include <gtest/gtest.h>

#include <deque>

#include <string>
#include <vector>

#include "core/cancellation.h"
#include "merge/federation/tree/tree_models.h"

namespace corvel {
namespace {

using test::FederatedDocuments;
using test::NamesOf;
using test::Records;
using test::Spatial;
using test::TreeModel;

using Names = std::vector<std::string>;

constexpr FederationChoices TreesBy(TreeMatching matching, double toleranceMm = 10.0) {
  FederationChoices choices;
  choices.tree = matching;
  choices.toleranceMm = toleranceMm;
  return choices;
}

constexpr FederationChoices kTreesByGuid = TreesBy(TreeMatching::kGuid);
constexpr FederationChoices kTreesByName = TreesBy(TreeMatching::kName);
constexpr FederationChoices kTreesByElevation = TreesBy(TreeMatching::kElevation);
constexpr FederationChoices kOneTree = TreesBy(TreeMatching::kOne);

// A GUID that several models may give.
std::string CommonTreeGuid(char last) { return std::string("2222222222222222222__") + last; }

class TreesOf : public testing::TestWithParam<SchemaNamespace> {
 protected:
  // A model with a site and a building that all models have, and storeys; in millimetres.
  TreeModel& AddHouse(std::uint32_t base, const std::vector<Spatial>& storeys) {
    TreeModel& model = trees_.emplace_back(base);
    const auto site = model.Site({.name = "'Hill'", .guid = CommonTreeGuid('s'), .z = 0.0});
    const auto building =
        model.Building({.name = "'House'", .guid = CommonTreeGuid('b'), .z = 0.0}, site);
    for (const Spatial& storey : storeys) model.Storey(storey, building);
    return model;
  }

  std::string Run(const FederationChoices& choices) {
    for (TreeModel& tree : trees_) {
      const auto milli = tree.Record("IFCSIUNIT", "*,.LENGTHUNIT.,.MILLI.,.METRE.");
      const auto units = tree.Record("IFCUNITASSIGNMENT", "(" + TreeModel::Ref(milli) + ")");
      const std::size_t document = count_;
      Add(tree);
      models_.MeasureBy(document, units);
    }
    return models_.Run(choices);
  }

  void Add(const TreeModel& tree) {
    models_.Add(Widen(std::string(1, static_cast<char>('a' + count_))) + u".ifc", "", tree.All());
    ++count_;
  }

  Names StoreysOf(const FederationChoices& choices) {
    return NamesOf(Run(choices), "IFCBUILDINGSTOREY");
  }

  FederatedDocuments models_{GetParam()};
  std::deque<TreeModel> trees_;
  std::size_t count_ = 0;
};

TEST_P(TreesOf, NothingIsJoinedUnlessAsked) {
  AddHouse(100, {{.name = "'Level 1'", .z = 0.0}});
  AddHouse(200, {{.name = "'Level 1'", .z = 0.0}});
  const std::string text = Run({});
  EXPECT_EQ(2u, NamesOf(text, "IFCSITE").size());
  EXPECT_EQ(2u, NamesOf(text, "IFCBUILDINGSTOREY").size());
}

TEST_P(TreesOf, EqualGuidsAreOneWhateverTheNamesAndHeights) {
  AddHouse(100, {{.name = "'Level 1'", .guid = CommonTreeGuid('1'), .z = 0.0}});
  AddHouse(200, {{.name = "'Floor'", .guid = CommonTreeGuid('1'), .z = 3000.0}});
  EXPECT_EQ((Names{"Level 1"}), StoreysOf(kTreesByGuid));
}

TEST_P(TreesOf, ByGuidEqualNamesStayApart) {
  AddHouse(100, {{.name = "'Level 1'", .z = 0.0}});
  AddHouse(200, {{.name = "'Level 1'", .z = 0.0}});
  EXPECT_EQ((Names{"Level 1", "Level 1"}), StoreysOf(kTreesByGuid));
}

TEST_P(TreesOf, NamesAreEqualWhateverTheirBlanksAndCase) {
  AddHouse(100, {{.name = "'Level 1'"}, {.name = "'Roof'"}});
  AddHouse(200, {{.name = "'LEVEL1 '"}, {.name = "' roof'"}});
  EXPECT_EQ((Names{"Level 1", "Roof"}), StoreysOf(kTreesByName));
}

TEST_P(TreesOf, ByElevationEqualNamesWithoutHeightStayApart) {
  AddHouse(100, {{.name = "'Level 1'"}, {.name = "'Roof'"}});
  AddHouse(200, {{.name = "'Level 1'"}, {.name = "'Roof'"}});
  EXPECT_EQ(4u, StoreysOf(kTreesByElevation).size());
}

TEST_P(TreesOf, StoreysAtOneHeightAreOneWhateverTheirNames) {
  AddHouse(100, {{.name = "'Level 1'", .z = 0.0}, {.name = "'Level 2'", .z = 3000.0}});
  AddHouse(200, {{.name = "'EG'", .z = 0.0}, {.name = "'OG'", .z = 3009.0}});
  EXPECT_EQ((Names{"Level 1", "Level 2"}), StoreysOf(kTreesByElevation));
}

TEST_P(TreesOf, StoreysFartherApartThanTheToleranceStayTwo) {
  AddHouse(100, {{.name = "'Level 1'", .z = 0.0}, {.name = "'Level 2'", .z = 3000.0}});
  AddHouse(200, {{.name = "'EG'", .z = 0.0}, {.name = "'OG'", .z = 3011.0}});
  EXPECT_EQ((Names{"Level 1", "Level 2", "OG"}), StoreysOf(kTreesByElevation));
}

TEST_P(TreesOf, TheToleranceIsTheUsers) {
  AddHouse(100, {{.name = "'Level 1'", .z = 0.0}, {.name = "'Level 2'", .z = 3000.0}});
  AddHouse(200, {{.name = "'EG'", .z = 0.0}, {.name = "'OG'", .z = 3011.0}});
  EXPECT_EQ((Names{"Level 1", "Level 2"}), StoreysOf(TreesBy(TreeMatching::kElevation, 11.0)));
}

TEST_P(TreesOf, NameContradictedByHeightDoesNotJoin) {
  AddHouse(100, {{.name = "'Level 1'", .z = 0.0}, {.name = "'Level 2'", .z = 2820.0}});
  AddHouse(200, {{.name = "'Level 2'", .z = 5910.0}, {.name = "'Level 3'", .z = 8910.0}});
  EXPECT_EQ((Names{"Level 1", "Level 2", "Level 2", "Level 3"}), StoreysOf(kTreesByName));
}

TEST_P(TreesOf, NameWithoutHeightJoinsTheOnlyNamesake) {
  AddHouse(100, {{.name = "'Level 1'", .z = 0.0}, {.name = "'Level 2'", .z = 2820.0}});
  AddHouse(200, {{.name = "'Level 2'"}, {.name = "'Level 9'"}});
  EXPECT_EQ((Names{"Level 1", "Level 2", "Level 9"}), StoreysOf(kTreesByName));
}

TEST_P(TreesOf, NameWithoutHeightJoinsNoneOfTwoNamesakes) {
  AddHouse(100, {{.name = "'Level 1'", .z = 0.0}, {.name = "'Level 2'", .z = 2820.0}});
  AddHouse(200, {{.name = "'Level 0'", .z = 0.0}, {.name = "'Level 2'", .z = 5910.0}});
  AddHouse(300, {{.name = "'Level 2'"}, {.name = "'Level 9'"}});
  EXPECT_EQ((Names{"Level 1", "Level 2", "Level 2", "Level 2", "Level 9"}),
            StoreysOf(kTreesByName));
}

TEST_P(TreesOf, TwoNamesakesOfOneModelJoinNobody) {
  AddHouse(100, {{.name = "'Level 1'"}});
  AddHouse(200, {{.name = "'Level 1'"}, {.name = "'Level 1'"}});
  EXPECT_EQ(3u, StoreysOf(kTreesByName).size());
}

TEST_P(TreesOf, TwoNamesakesOfTheFirstModelAreJoinedByNobody) {
  AddHouse(100, {{.name = "'Level 1'"}, {.name = "'Level 1'"}});
  AddHouse(200, {{.name = "'Level 1'"}});
  EXPECT_EQ(3u, StoreysOf(kTreesByName).size());
}

TEST_P(TreesOf, TwoStoreysOfOneModelAtOneHeightJoinNobody) {
  AddHouse(100,
           {{.name = "'A'", .z = 3000.0}, {.name = "'B'", .z = 3004.0}, {.name = "'Z'", .z = 0.0}});
  AddHouse(200, {{.name = "'C'", .z = 3002.0}, {.name = "'Z'", .z = 0.0}});
  EXPECT_EQ((Names{"A", "B", "Z", "C"}), StoreysOf(kTreesByElevation));
}

TEST_P(TreesOf, ThreeStoreysWithoutHeightsStayApart) {
  AddHouse(100, {{.name = "'Nivo 0'"}});
  AddHouse(200, {{.name = "'Nivo 1'"}});
  AddHouse(300, {{.name = "'Nivo 2'"}});
  EXPECT_EQ((Names{"Nivo 0", "Nivo 1", "Nivo 2"}), StoreysOf(kOneTree));
}

TEST_P(TreesOf, StoreysWithoutNamesAndHeightsStayApart) {
  AddHouse(100, {{.name = "'Default'"}, {}, {.name = "'Storey'"}});
  AddHouse(200, {{.name = "'Default'"}, {}, {.name = "'Storey'"}});
  EXPECT_EQ(6u, StoreysOf(kOneTree).size());
}

TEST_P(TreesOf, WhereAllStandAtTheirBuildingTheElevationIsTheHeight) {
  AddHouse(100, {{.name = "'EG'", .z = 0.0, .elevation = "0."},
                 {.name = "'OG'", .z = 0.0, .elevation = "3000."}});
  AddHouse(200, {{.name = "'Level 1'", .z = 0.0}, {.name = "'Level 2'", .z = 3000.0}});
  EXPECT_EQ((Names{"EG", "OG"}), StoreysOf(kTreesByElevation));
}

TEST_P(TreesOf, WhereOneStandsElsewhereTheElevationCountsForNothing) {
  AddHouse(100, {{.name = "'EG'", .z = 0.0, .elevation = "500."},
                 {.name = "'OG'", .z = 3000.0, .elevation = "9000."}});
  AddHouse(200, {{.name = "'Level 1'", .z = 0.0}, {.name = "'Level 2'", .z = 3000.0}});
  EXPECT_EQ((Names{"EG", "OG"}), StoreysOf(kTreesByElevation));
}

TEST_P(TreesOf, HeightsAreThoseOfTheWorld) {
  TreeModel& low = trees_.emplace_back(100);
  const auto site = low.Site({.guid = CommonTreeGuid('s'), .z = -500.0});
  const auto building = low.Building({.guid = CommonTreeGuid('b'), .z = 0.0}, site);
  low.Storey({.name = "'EG'", .z = 500.0}, building);
  low.Storey({.name = "'OG'", .z = 3500.0}, building);
  AddHouse(200, {{.name = "'Level 1'", .z = 0.0}, {.name = "'Level 2'", .z = 3000.0}});
  EXPECT_EQ((Names{"EG", "OG"}), StoreysOf(kTreesByElevation));
}

TEST_P(TreesOf, TheOnlyStoreyOfAModelDoesNotMatchByHeightWithoutARealName) {
  AddHouse(100, {{.name = "'EG'", .z = 0.0}, {.name = "'OG'", .z = 3000.0}});
  AddHouse(200, {{.name = "'Default'", .z = 0.0, .elevation = "0."}});
  EXPECT_EQ((Names{"EG", "OG", "Default"}), StoreysOf(kOneTree));
}

TEST_P(TreesOf, TheOnlyStoreyOfAModelMatchesByHeightWithARealName) {
  AddHouse(100, {{.name = "'EG'", .z = 0.0}, {.name = "'OG'", .z = 3000.0}});
  AddHouse(200, {{.name = "'Upstairs'", .z = 3000.0}});
  EXPECT_EQ((Names{"EG", "OG"}), StoreysOf(kOneTree));
}

TEST_P(TreesOf, FeetAndMillimetresMeetAtOneHeight) {
  AddHouse(100, {{.name = "'EG'", .z = 0.0}, {.name = "'OG'", .z = 3048.0}});
  const std::uint32_t base = 200;
  TreeModel feet(base);
  const auto metre = feet.Record("IFCSIUNIT", "*,.LENGTHUNIT.,$,.METRE.");
  const auto factor =
      feet.Record("IFCMEASUREWITHUNIT", "IFCLENGTHMEASURE(0.3048)," + TreeModel::Ref(metre));
  const auto exponents = feet.Record("IFCDIMENSIONALEXPONENTS", "1,0,0,0,0,0,0");
  const auto foot =
      feet.Record("IFCCONVERSIONBASEDUNIT",
                  TreeModel::Ref(exponents) + ",.LENGTHUNIT.,'FOOT'," + TreeModel::Ref(factor));
  const auto units = feet.Record("IFCUNITASSIGNMENT", "(" + TreeModel::Ref(foot) + ")");
  const auto site = feet.Site({.guid = CommonTreeGuid('s'), .z = 0.0});
  const auto building = feet.Building({.guid = CommonTreeGuid('b'), .z = 0.0}, site);
  feet.Storey({.name = "'Level 1'", .z = 0.0}, building);
  feet.Storey({.name = "'Level 2'", .z = 10.0}, building);
  models_.Add(u"feet.ifc", "", feet.All());
  models_.MeasureBy(0, units);
  count_ = 1;
  EXPECT_EQ((Names{"Level 1", "Level 2"}), StoreysOf(kTreesByElevation));
}

TEST_P(TreesOf, TwoBuildingsOnOneSiteStayTwo) {
  for (const std::uint32_t base : {100u, 200u}) {
    TreeModel& model = trees_.emplace_back(base);
    const auto site = model.Site({.name = "'Hill'"});
    model.Building({.name = base == 100 ? "'North'" : "'East'"}, site);
    model.Building({.name = base == 100 ? "'South'" : "'West'"}, site);
  }
  const std::string text = Run(kOneTree);
  EXPECT_EQ(1u, NamesOf(text, "IFCSITE").size());
  EXPECT_EQ((Names{"North", "South", "East", "West"}), NamesOf(text, "IFCBUILDING"));
}

TEST_P(TreesOf, TheOnlyBuildingsAreOneWhateverTheirNames) {
  for (const std::uint32_t base : {100u, 200u}) {
    TreeModel& model = trees_.emplace_back(base);
    model.Building({.name = base == 100 ? "'North'" : "'East'"}, model.Site({}));
  }
  EXPECT_EQ((Names{"North"}), NamesOf(Run(kOneTree), "IFCBUILDING"));
}

TEST_P(TreesOf, ByNameTheOnlyBuildingsWithRealNamesStayTwo) {
  for (const std::uint32_t base : {100u, 200u}) {
    TreeModel& model = trees_.emplace_back(base);
    model.Building({.name = base == 100 ? "'North'" : "'East'"}, model.Site({}));
  }
  EXPECT_EQ((Names{"North", "East"}), NamesOf(Run(kTreesByName), "IFCBUILDING"));
}

TEST_P(TreesOf, ByNameTheOnlyBuildingsAreOneIfANameSaysNothing) {
  for (const std::uint32_t base : {100u, 200u}) {
    TreeModel& model = trees_.emplace_back(base);
    model.Building({.name = base == 100 ? "'North'" : "'Undefined'"}, model.Site({}));
  }
  EXPECT_EQ((Names{"North"}), NamesOf(Run(kTreesByName), "IFCBUILDING"));
}

TEST_P(TreesOf, AModelWithTwoBuildingsHasNoOnlyOne) {
  TreeModel& one = trees_.emplace_back(100);
  one.Building({.name = "'North'"}, one.Site({}));
  TreeModel& two = trees_.emplace_back(200);
  const auto site = two.Site({});
  two.Building({.name = "'East'"}, site);
  two.Building({.name = "'West'"}, site);
  EXPECT_EQ((Names{"North", "East", "West"}), NamesOf(Run(kOneTree), "IFCBUILDING"));
}

TEST_P(TreesOf, EqualStoreysOfBuildingsThatStayTwoStayTwo) {
  for (const std::uint32_t base : {100u, 200u}) {
    TreeModel& model = trees_.emplace_back(base);
    const auto site = model.Site({.name = "'Hill'"});
    const auto building = model.Building({.name = base == 100 ? "'North'" : "'East'"}, site);
    model.Storey({.name = "'EG'", .guid = CommonTreeGuid('e'), .z = 0.0}, building);
    model.Storey({.name = "'OG'", .guid = CommonTreeGuid('o'), .z = 3000.0}, building);
  }
  EXPECT_EQ(4u, NamesOf(Run(kTreesByName), "IFCBUILDINGSTOREY").size());
}

TEST_P(TreesOf, ALevelThatAModelLacksIsPassedOver) {
  AddHouse(100, {{.name = "'EG'", .z = 0.0}, {.name = "'OG'", .z = 3000.0}});
  TreeModel& withoutSite = trees_.emplace_back(200);
  const auto building = withoutSite.Building({.name = "'House'"}, 1);
  withoutSite.Storey({.name = "'Level 2'", .z = 3000.0}, building);
  TreeModel& withoutBuilding = trees_.emplace_back(300);
  const auto site = withoutBuilding.Site({.name = "'Hill'"});
  withoutBuilding.Storey({.name = "'Upstairs'", .z = 3000.0}, site);
  const std::string text = Run(kOneTree);
  EXPECT_EQ((Names{"Hill"}), NamesOf(text, "IFCSITE"));
  EXPECT_EQ((Names{"House"}), NamesOf(text, "IFCBUILDING"));
  EXPECT_EQ((Names{"EG", "OG"}), NamesOf(text, "IFCBUILDINGSTOREY"));
}

TEST_P(TreesOf, WhoLacksTheSiteBelongsToNeitherOfTwo) {
  TreeModel& two = trees_.emplace_back(100);
  two.Building({.name = "'House'"}, two.Site({.name = "'Hill'"}));
  two.Building({.name = "'House'"}, two.Site({.name = "'Dale'"}));
  TreeModel& none = trees_.emplace_back(200);
  none.Building({.name = "'House'"}, 1);
  EXPECT_EQ(3u, NamesOf(Run(kOneTree), "IFCBUILDING").size());
}

TEST_P(TreesOf, AnotherCompositionStaysApart) {
  TreeModel& complex = trees_.emplace_back(100);
  complex.Site({.name = "'Hill'", .guid = CommonTreeGuid('s'), .composition = ".COMPLEX."});
  TreeModel& element = trees_.emplace_back(200);
  element.Site({.name = "'Hill'", .guid = CommonTreeGuid('s')});
  EXPECT_EQ(2u, NamesOf(Run(kOneTree), "IFCSITE").size());
}

TEST_P(TreesOf, ElementsBelowAComplexMatchThoseThatStandAlone) {
  TreeModel& complex = trees_.emplace_back(100);
  const auto whole = complex.Site({.name = "'Campus'", .composition = ".COMPLEX."});
  complex.Site({.name = "'Hill'"}, whole);
  complex.Site({.name = "'Dale'"}, whole);
  TreeModel& element = trees_.emplace_back(200);
  element.Site({.name = "'Dale'"});
  EXPECT_EQ((Names{"Campus", "Hill", "Dale"}), NamesOf(Run(kTreesByName), "IFCSITE"));
}

TEST_P(TreesOf, WhatHangsOnNothingIsComparedWithNothing) {
  AddHouse(100, {});
  TreeModel& loose = trees_.emplace_back(200);
  loose.Building({.name = "'House'", .guid = CommonTreeGuid('b')}, 0);
  EXPECT_EQ(2u, NamesOf(Run(kOneTree), "IFCBUILDING").size());
}

TEST_P(TreesOf, PartsThatGoInACircleHangOnNothing) {
  AddHouse(100, {});
  TreeModel& circle = trees_.emplace_back(200);
  const auto one = circle.Building({.name = "'House'"}, 0);
  const auto other = circle.Building({.name = "'House'"}, one);
  circle.Relate(other, one);
  EXPECT_EQ(3u, NamesOf(Run(kOneTree), "IFCBUILDING").size());
}

TEST_P(TreesOf, WhatHungOnTheLaterHangsOnTheEarlier) {
  AddHouse(100, {{.name = "'EG'", .z = 0.0}, {.name = "'OG'", .z = 3000.0}});
  AddHouse(200, {{.name = "'New'", .z = 6000.0}});
  const std::string text = Run(kOneTree);
  // The building of the first model is #108.
  const std::regex relation(R"(=IFCRELAGGREGATES\([^\n]*,#108,\((#\d+,)*#213[,)])");
  EXPECT_TRUE(std::regex_search(text, relation)) << text;
}

// Heights of three storeys, each near the next: the first decides.
TEST_P(TreesOf, StoreysJoinTheSurvivorsHeightAndNotThatOfOneAnother) {
  AddHouse(100, {{.name = "'A'", .z = 0.0}, {.name = "'Z'", .z = 9000.0}});
  AddHouse(200, {{.name = "'B'", .z = 8.0}, {.name = "'Y'", .z = 9000.0}});
  AddHouse(300, {{.name = "'C'", .z = 16.0}, {.name = "'X'", .z = 9000.0}});
  EXPECT_EQ((Names{"A", "Z", "C"}), StoreysOf(kTreesByElevation));
}

// At each of the ticks in turn.
TEST_P(TreesOf, ACancelledStepSaysSo) {
  TreeModel first(100);
  first.Building({.name = "'House'"}, first.Site({.name = "'Hill'", .x = 1.0}));
  TreeModel second(200);
  second.Building({.name = "'House'"}, second.Site({.name = "'Hill'", .x = 2.0}));
  const GuidsAsRead guids;
  std::size_t cancelled = 0;
  for (bool done = false; !done; ++cancelled) {
    ASSERT_LT(cancelled, 1000u);
    FederatedDocuments models(GetParam());
    models.Add(u"a.ifc", "", first.All());
    models.Add(u"b.ifc", "", second.All());
    models.RunStep([&](FederatedModel& model) {
      models.Progress().Forget();
      models.Progress().CancelAt(cancelled);
      Ticker ticker({.callback = test::RecordedProgress::Callback}, {.block = 1});
      JoinedTrees counts;
      done =
          JoinTrees(model, {kTreesByName, guids, test::RecordedReports::Reporter}, ticker, counts);
    });
    EXPECT_EQ(!done, Cancellation::OfProcess().WasConfirmed());
    Cancellation::OfProcess().ForgetAnswer();
  }
  EXPECT_GE(cancelled, first.All().size() + second.All().size());
}

// The walls of each storey, by the GUIDs of the walls.
std::set<std::set<std::string>> WallsByStorey(const std::string& text) {
  std::map<std::string, std::set<std::string>> byStorey;
  const std::regex relation(R"(=IFCRELCONTAINEDINSPATIALSTRUCTURE\([^()]*\((#\d+)\),(#\d+)\);)");
  for (std::sregex_iterator at(text.begin(), text.end(), relation), end; at != end; ++at) {
    const std::string wall = test::RecordOf(text, (*at)[1].str());
    byStorey[(*at)[2].str()].insert(wall.substr(wall.find('\'') + 1, 22));
  }
  std::set<std::set<std::string>> walls;
  for (auto& [storey, guids] : byStorey) walls.insert(guids);
  return walls;
}

// A storey and a wall on it, which tells the storeys that became one.
struct StoreyWithWall {
  Spatial storey;
  std::string wall;
};

TEST_P(TreesOf, TheOrderBehindTheFirstChangesNoStorey) {
  const std::vector<std::vector<StoreyWithWall>> houses = {
      {{{.name = "'EG'", .z = 0.0, .elevation = "0."}, "1111111111111111111101"}},
      {{{.name = "'Upper'", .guid = CommonTreeGuid('u')}, "1111111111111111111102"},
       {{.name = "'Roof'"}, "1111111111111111111103"}},
      {{{.name = "'upper'", .z = 3000.0}, "1111111111111111111104"},
       {{.name = "'Cellar'", .z = -3000.0}, "1111111111111111111105"}},
      {{{.name = "'First floor'", .z = 3001.0}, "1111111111111111111106"},
       {{.name = "'Kitchen'", .z = 1.0}, "1111111111111111111107"}},
      {{{.name = "'OG 1'", .guid = CommonTreeGuid('u')}, "1111111111111111111108"},
       {{.name = "'ROOF'"}, "1111111111111111111109"}}};
  std::vector<std::size_t> order = {1, 2, 3, 4};
  const std::set<std::set<std::string>> wanted = {
      {"1111111111111111111101", "1111111111111111111107"},
      {"1111111111111111111102", "1111111111111111111104", "1111111111111111111106",
       "1111111111111111111108"},
      {"1111111111111111111103", "1111111111111111111109"},
      {"1111111111111111111105"}};
  do {
    FederatedDocuments models(GetParam());
    for (std::size_t i = 0; i < houses.size(); ++i) {
      TreeModel model(static_cast<std::uint32_t>(100 * (i + 1)));
      if (GetParam() >= SchemaNamespace::IFC4) model.lastOfWall = ",$";
      const auto building =
          model.Building({.guid = CommonTreeGuid('b')}, model.Site({.guid = CommonTreeGuid('s')}));
      for (const StoreyWithWall& each : houses[i == 0 ? 0 : order[i - 1]]) {
        Spatial storey = each.storey;
        if (storey.z) *storey.z /= 1000.0;  // without units a length is a metre
        model.Wall(model.Storey(storey, building), each.wall, 1.0);
      }
      models.Add(u"x.ifc", "", model.All());
    }
    EXPECT_EQ(wanted, WallsByStorey(models.Run(kTreesByName)));
  } while (std::next_permutation(order.begin(), order.end()));
}

INSTANTIATE_TEST_SUITE_P(Releases, TreesOf,
                         testing::ValuesIn(test::BuiltSince(SchemaNamespace::IFC2X_FINAL)),
                         test::NameOfRelease);

// --- Facilities and their parts, in the releases that have them ----------------------------------

class FacilitiesOf : public TreesOf {
 protected:
  const std::string kTrack =
      GetParam() == SchemaNamespace::IFC4X4 ? ".TRACKSTRUCTURE." : ".TRACKPART.";
  const std::string kPlant =
      GetParam() == SchemaNamespace::IFC4X4 ? ".LINESIDESTRUCTURE." : ".LINESIDEPART.";

  // A railway with parts of two types.
  void AddRailway(std::uint32_t base, const std::string& name,
                  const std::vector<std::pair<std::string, std::string>>& partsAndTypes) {
    TreeModel& model = trees_.emplace_back(base);
    const auto line = model.Facility("IFCRAILWAY", {.name = name}, model.Site({}));
    for (const auto& [part, type] : partsAndTypes) {
      model.Part("IFCRAILWAYPART", {.name = part}, type, line);
    }
  }
};
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(FacilitiesOf);

TEST_P(FacilitiesOf, PartsOfOneNameAndTypeAreOne) {
  AddRailway(100, "'Line'", {{"'Track'", kTrack}, {"'Plant'", kPlant}});
  AddRailway(200, "'LINE'", {{"'plant'", kPlant}, {"'Yard'", kPlant}});
  const std::string text = Run(kTreesByName);
  EXPECT_EQ((Names{"Line"}), NamesOf(text, "IFCRAILWAY"));
  EXPECT_EQ((Names{"Track", "Plant", "Yard"}), NamesOf(text, "IFCRAILWAYPART"));
}

TEST_P(FacilitiesOf, PartsOfOneNameAndOtherTypesStayTwo) {
  AddRailway(100, "'Line'", {{"'Part'", kTrack}, {"'Plant'", kPlant}});
  AddRailway(200, "'Line'", {{"'Part'", kPlant}, {"'Yard'", kPlant}});
  EXPECT_EQ((Names{"Part", "Plant", "Part", "Yard"}), NamesOf(Run(kTreesByName), "IFCRAILWAYPART"));
}

TEST_P(FacilitiesOf, ABuildingIsNoRailway) {
  AddRailway(100, "'Line'", {});
  TreeModel& model = trees_.emplace_back(200);
  model.Building({.name = "'Line'"}, model.Site({}));
  const std::string text = Run(kOneTree);
  EXPECT_EQ((Names{"Line"}), NamesOf(text, "IFCRAILWAY"));
  EXPECT_EQ((Names{"Line"}), NamesOf(text, "IFCBUILDING"));
}

INSTANTIATE_TEST_SUITE_P(Releases, FacilitiesOf,
                         testing::ValuesIn(test::BuiltSince(SchemaNamespace::IFC4X3_ADD2)),
                         test::NameOfRelease);

}  // namespace
}  // namespace corvel
