// Models as deep as they come, marked on a stack of 256 KiB.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "graph_document.h"
#include "marker_pairs.h"
#include "support/small_stack.h"

namespace corvel {
namespace {

using test::GraphDocument;
using test::GraphNode;
using test::Of;
using test::Pairs;

using Placement = Of<u"IfcLocalPlacement", GraphNode>;
using Building = Of<u"IfcBuilding">;
using Aggregates = Of<u"IfcRelAggregates">;
using Wall = Of<u"IfcWall">;

// Each placement hangs on the one of the number before it, and a wall on the last one.
class ChainOfPlacements : public testing::Test {
 protected:
  static constexpr std::uint32_t kLength = 1000000;
  static constexpr std::uint32_t kWall = kLength + 1;

  void Link(bool canLose) {
    for (std::uint32_t i = 0; i < kLength; ++i) {
      if (i > 0) chain_[i].children.push_back({&chain_[i - 1], canLose});
      document_.File(i + 1, chain_[i]);
    }
    document_.AddRoot<Wall>(kWall, "wall").RefersTo(&chain_[kLength - 1]);
  }
  // The same with the numbers the other way round.
  void LinkBackwards(bool canLose) {
    for (std::uint32_t i = 0; i < kLength; ++i) {
      if (i + 1 < kLength) chain_[i].children.push_back({&chain_[i + 1], canLose});
      document_.File(i + 1, chain_[i]);
    }
  }

  void DeleteObjects(Pairs deletePairs, Pairs savePairs, bool deleteUnrelated = false) {
    bool done = false;
    test::RunOnSmallStack([&] {
      done = document_->DeleteObjects(deletePairs, savePairs, deleteUnrelated, false, 1);
    });
    EXPECT_TRUE(done);
  }
  std::size_t CountOf(std::uint32_t marker) const {
    std::size_t count = 0;
    for (std::uint32_t i = 0; i < kLength; ++i) count += chain_[i].marker == marker ? 1 : 0;
    return count;
  }

  test::MergeWorld world_;
  const std::unique_ptr<Placement[]> chain_{new Placement[kLength]};
  GraphDocument document_{u"deep.ifc"};
};

TEST_F(ChainOfPlacements, IsSavedWithItsWall) {
  Link(true);
  DeleteObjects({}, {{kWall, 0}});
  EXPECT_EQ(kLength, CountOf(IFC::kToSave));
}

TEST_F(ChainOfPlacements, IsSavedAsWhatAParentCannotDoWithout) {
  Link(false);
  document_.AddRoot<Wall>(kWall + 1, "other");
  DeleteObjects({}, {{kWall + 1, kLength}});
  EXPECT_EQ(kLength, CountOf(IFC::kToSave));
}

TEST_F(ChainOfPlacements, IsDeletedWithItsWall) {
  Link(true);
  DeleteObjects({{kWall, 0}}, {});
  EXPECT_EQ(kLength, CountOf(IFC::kDeleted));
}

TEST_F(ChainOfPlacements, IsDeletedWhenEachLosesTheOneThatItNeeds) {
  Link(false);
  DeleteObjects({{1, 0}}, {});
  EXPECT_EQ(kLength, CountOf(IFC::kDeleted));
}

// Told as passes over the model, this takes a million of them.
TEST_F(ChainOfPlacements, IsDeletedAgainstTheOrderOfTheNumbers) {
  LinkBackwards(false);
  document_.AddRoot<Wall>(kWall, "wall");
  DeleteObjects({{kLength, 0}}, {{kWall, 0}});
  EXPECT_EQ(kLength, CountOf(IFC::kDeleted));
}

TEST_F(ChainOfPlacements, StaysWhenItsEndIsSaved) {
  Link(true);
  DeleteObjects({}, {{1, 0}});
  EXPECT_EQ(1u, CountOf(IFC::kToSave));
  EXPECT_EQ(kLength - 1, CountOf(IFC::kUnfiled));
}

TEST_F(ChainOfPlacements, GoesWhenNothingIsSaved) {
  Link(true);
  DeleteObjects({}, {});
  EXPECT_EQ(kLength, CountOf(IFC::kDeleted));
}

TEST_F(ChainOfPlacements, IsVisitedFromTheProject) {
  Link(true);
  document_->GetParser().ifcProject = document_.At(kWall);
  DeleteObjects({}, {}, true);
  EXPECT_EQ(kLength, CountOf(IFC::kToSave));
}

// A building in a building in a building, each related to the next.
class TreeOfBuildings : public testing::Test {
 protected:
  static constexpr std::uint32_t kDepth = 100000;

  TreeOfBuildings() {
    for (std::uint32_t level = 0; level < kDepth; ++level) {
      Building& building = document_.AddRoot<Building>(Number(level), "b");
      Aggregates& relation = document_.AddRoot<Aggregates>(Number(level) + 1, "r");
      relation.children.push_back({&building, false});
      if (level > 0) lastRelation_->RefersTo(&building);
      lastRelation_ = &relation;
    }
  }
  static std::uint32_t Number(std::uint32_t level) { return 2 * level + 1; }

  void DeleteObjects(Pairs deletePairs, Pairs savePairs) {
    bool done = false;
    test::RunOnSmallStack(
        [&] { done = document_->DeleteObjects(deletePairs, savePairs, false, false, 1); });
    EXPECT_TRUE(done);
  }
  std::size_t CountOf(std::uint32_t marker) const {
    std::size_t count = 0;
    for (std::uint32_t number = 1; number <= 2 * kDepth; ++number) {
      count += document_.At(number)->marker == marker ? 1 : 0;
    }
    return count;
  }

  test::MergeWorld world_;
  GraphDocument document_{u"deep.ifc"};
  Aggregates* lastRelation_ = nullptr;
};

TEST_F(TreeOfBuildings, TheDeepestKeepsAllThatItIsIn) {
  Pairs inactive;
  for (std::uint32_t level = 1; level < kDepth; ++level) {
    inactive.push_back({Number(level), Number(level - 1)});
  }
  const MarkerPair deepest = inactive.back();
  inactive.pop_back();
  DeleteObjects(inactive, {deepest});
  EXPECT_EQ(kDepth, CountOf(IFC::kToSave));
  EXPECT_EQ(kDepth, CountOf(IFC::kUnfiled));
}

TEST_F(TreeOfBuildings, TheOutermostTakesNothingElseAlong) {
  Pairs active;
  for (std::uint32_t level = 1; level < kDepth; ++level) {
    active.push_back({Number(level), Number(level - 1)});
  }
  const MarkerPair outermost{Number(0), 0};
  active.front().parentNumber = 0;
  DeleteObjects({outermost}, active);
  EXPECT_EQ(kDepth - 1, CountOf(IFC::kToSave));
  EXPECT_EQ(2u, CountOf(IFC::kDeleted));
  EXPECT_EQ(kDepth - 1, CountOf(IFC::kUnfiled));
}

TEST_F(TreeOfBuildings, AllHangTogether) {
  DeleteObjects({}, {{Number(kDepth / 2), 0}});
  EXPECT_EQ(1u, CountOf(IFC::kToSave));
  EXPECT_EQ(2 * kDepth - 1, CountOf(IFC::kUnfiled));
}

TEST_F(TreeOfBuildings, AllGoTogether) {
  DeleteObjects({}, {});
  EXPECT_EQ(2 * kDepth, CountOf(IFC::kDeleted));
}

}  // namespace
}  // namespace corvel
