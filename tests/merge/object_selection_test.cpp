// Which objects of the host's scene are saved and which are deleted.
#include "merge/object_selection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include "recorded_scene.h"

namespace corvel {
namespace {

using Objects = std::vector<HostObject>;

class ObjectSelectionTest : public testing::Test {
 protected:
  // What getObjectsID gives for project 1.
  void Select(SavingMode mode, HostObject project = 1) {
    selection.getObjectsID(mode, project, save, leftOut);
  }
  void ExpectPairs(const std::vector<MarkerPair>& expected, const Objects& objects) {
    const std::vector<MarkerPair> pairs = selection.ToMarkerPairs(objects);
    ASSERT_EQ(expected.size(), pairs.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
      EXPECT_EQ(expected[i].number, pairs[i].number) << i;
      EXPECT_EQ(expected[i].parentNumber, pairs[i].parentNumber) << i;
    }
  }

  test::RecordedScene scene;
  ObjectSelection selection{scene};
  Objects save;
  Objects leftOut;
};

TEST_F(ObjectSelectionTest, MergeActiveKeepsWhatIsActive) {
  scene.Add({.handle = 11});
  scene.Add({.handle = 12, .active = false});
  scene.Add({.handle = 13, .visible = 0});
  Select(SavingMode::kMergeActive);
  EXPECT_EQ((Objects{11, 13}), save);
  EXPECT_EQ((Objects{12}), leftOut);
}

TEST_F(ObjectSelectionTest, MergeVisibleKeepsWhatIsActiveAndVisible) {
  scene.Add({.handle = 11});
  scene.Add({.handle = 12, .active = false});
  scene.Add({.handle = 13, .visible = 0});
  Select(SavingMode::kMergeVisible);
  EXPECT_EQ((Objects{11}), save);
  EXPECT_EQ((Objects{12, 13}), leftOut);
}

TEST_F(ObjectSelectionTest, AVisibilityThatIsNeitherZeroNorOneIsInNoList) {
  scene.Add({.handle = 11, .visible = 2});
  Select(SavingMode::kMergeVisible);
  EXPECT_EQ(Objects{}, save);
  EXPECT_EQ(Objects{}, leftOut);
}

TEST_F(ObjectSelectionTest, MergeSelectedLooksAtTheSelectionAlone) {
  scene.Add({.handle = 11, .active = false, .visible = 0, .selected = true});
  scene.Add({.handle = 12});
  Select(SavingMode::kMergeSelected);
  EXPECT_EQ((Objects{11}), save);
  EXPECT_EQ((Objects{12}), leftOut);
}

TEST_F(ObjectSelectionTest, WhatIsNoModeThrowsAlsoWithoutAnObject) {
  try {
    Select(static_cast<SavingMode>(3));
    FAIL() << "nothing was thrown";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ("Wrong SavingMode in function getObjectsID", error.what());
  }
  scene.Add({.handle = 11});
  EXPECT_THROW(Select(static_cast<SavingMode>(3)), std::runtime_error);
}

TEST_F(ObjectSelectionTest, ObjectsOfOtherProjectsAreInNoList) {
  scene.Add({.handle = 11});
  scene.Add({.handle = 21, .project = 2});
  scene.Add({.handle = 12, .active = false});
  scene.Add({.handle = 22, .project = 2, .active = false});
  Select(SavingMode::kMergeActive);
  EXPECT_EQ((Objects{11}), save);
  EXPECT_EQ((Objects{12}), leftOut);
}

TEST_F(ObjectSelectionTest, ProjectZeroStandsForAllObjects) {
  scene.Add({.handle = 11});
  scene.Add({.handle = 21, .project = 2});
  scene.Add({.handle = 22, .project = 2, .active = false});
  Select(SavingMode::kMergeActive, 0);
  EXPECT_EQ((Objects{11, 21}), save);
  EXPECT_EQ((Objects{22}), leftOut);
}

TEST_F(ObjectSelectionTest, TheHostIsAskedToRefreshFirst) {
  Select(SavingMode::kMergeActive);
  ASSERT_FALSE(scene.calls.empty());
  EXPECT_EQ("redraw", scene.calls.front());
}

TEST_F(ObjectSelectionTest, AHiddenOpeningOfAVisibleWallIsShownAndInBothLists) {
  scene.Add({.handle = 11});
  scene.Add({.handle = 12, .className = "IfcOpeningElement", .parent = 11, .visible = 0});
  Select(SavingMode::kMergeVisible);
  EXPECT_EQ(1u, scene.Of(12).visible);
  EXPECT_EQ((Objects{11, 12}), save);
  EXPECT_EQ((Objects{12}), leftOut);
}

TEST_F(ObjectSelectionTest, AnOpeningOfAHiddenWallIsHidden) {
  scene.Add({.handle = 11, .visible = 0});
  scene.Add({.handle = 12, .className = "IfcOpeningElement", .parent = 11});
  Select(SavingMode::kMergeVisible);
  EXPECT_EQ(0u, scene.Of(12).visible);
  EXPECT_EQ(Objects{}, save);
  EXPECT_EQ((Objects{11}), leftOut);
}

TEST_F(ObjectSelectionTest, AnOpeningInSomethingThatTheHostDoesNotKnowStaysAsItIs) {
  scene.Add({.handle = 12, .className = "IfcOpeningElement", .parent = 99});
  scene.Add({.handle = 13, .className = "IfcOpeningElement", .parent = 0, .visible = 0});
  Select(SavingMode::kMergeVisible);
  EXPECT_EQ(1u, scene.Of(12).visible);
  EXPECT_EQ(0u, scene.Of(13).visible);
  EXPECT_EQ((Objects{12}), save);
}

TEST_F(ObjectSelectionTest, SubtypesOfOpeningsAreNone) {
  scene.Add({.handle = 11});
  scene.Add({.handle = 12, .className = "IfcOpeningStandardCase", .parent = 11, .visible = 0});
  scene.Add({.handle = 13, .className = nullptr, .parent = 11, .visible = 0});
  Select(SavingMode::kMergeVisible);
  EXPECT_EQ(0u, scene.Of(12).visible);
  EXPECT_EQ(0u, scene.Of(13).visible);
}

TEST_F(ObjectSelectionTest, OpeningsAreTouchedByMergeVisibleOnly) {
  scene.Add({.handle = 11});
  scene.Add({.handle = 12, .className = "IfcOpeningElement", .parent = 11, .visible = 0});
  Select(SavingMode::kMergeActive);
  Select(SavingMode::kMergeSelected);
  EXPECT_EQ(0u, scene.Of(12).visible);
}

TEST_F(ObjectSelectionTest, AProjectCountsWhenOneOfItsObjectsDoes) {
  scene.Add({.handle = 11, .active = false});
  scene.Add({.handle = 12, .selected = true});
  scene.Add({.handle = 21, .project = 2, .visible = 0});
  scene.Add({.handle = 31, .project = 3, .active = false});
  EXPECT_EQ((std::set<HostObject>{1, 2}), selection.ProjectsOf(SavingMode::kMergeActive));
  EXPECT_EQ((std::set<HostObject>{1}), selection.ProjectsOf(SavingMode::kMergeVisible));
  EXPECT_EQ((std::set<HostObject>{1}), selection.ProjectsOf(SavingMode::kMergeSelected));
  EXPECT_EQ(std::set<HostObject>{}, selection.ProjectsOf(static_cast<SavingMode>(3)));
}

TEST_F(ObjectSelectionTest, PairsHoldTheNumberOfTheObjectAndOfItsParent) {
  scene.Add({.handle = 11, .number = 5});
  scene.Add({.handle = 12, .number = 7, .parent = 11});
  ExpectPairs({{7, 5}, {5, 0}}, {12, 11});
}

TEST_F(ObjectSelectionTest, AnObjectWithoutANumberIsLeftOutOfThePairs) {
  scene.Add({.handle = 11, .number = 0});
  scene.Add({.handle = 12, .number = 7, .parent = 11});
  ExpectPairs({{7, 0}}, {11, 12});
}

TEST_F(ObjectSelectionTest, AParentThatTheHostDoesNotKnowIsNone) {
  scene.Add({.handle = 12, .number = 7, .parent = 99});
  ExpectPairs({{7, 0}}, {12});
}

TEST_F(ObjectSelectionTest, NoObjectsAreNoPairsAndNoQuestion) {
  ExpectPairs({}, {});
  EXPECT_TRUE(scene.calls.empty());
}

}  // namespace
}  // namespace corvel
