// The walks over a whole container: parents sets and the reset of all markers.
#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <set>
#include <vector>

#include "core/cancellation.h"
#include "core/main_container.h"
#include "core/outcome.h"
#include "support/graph.h"
#include "support/recorded_progress.h"
#include "support/recorded_reports.h"
#include "support/small_stack.h"
#include "support/test_platform.h"

namespace corvel {
namespace {

using IFC::MainContainer;
using test::Graph;
using test::GraphNode;
using test::Of;
using test::RecordedProgress;
using test::RecordedReports;
using test::TestPlatform;
using test::Tick;

using Point = Of<u"IfcPoint", GraphNode>;

class Walks : public testing::Test {
 protected:
  Walks() { MainContainer::ResetUniqueMarker(); }
  ~Walks() override { MainContainer::ResetUniqueMarker(); }

  Point& Outside() { return graph_.Add<Point>(); }
  Point& Filed(std::uint32_t number = 0) {
    Point& point = graph_.Add<Point>();
    point.marker = number;
    container_.AddEntity(&point);
    return point;
  }
  void File(int count) {
    for (int i = 0; i < count; ++i) Filed();
  }
  static IFC::ParentsTicks Told(int from, int to) { return {from, to, 7, u"1/3 ", true}; }
  Outcome FillParents(int from = 0, int to = 100) {
    return container_.RebuildParentsLists(Told(from, to));
  }
  // The values of the ticks; all else in them is as FillParents gave it.
  std::vector<int> TickValues(int maximum = 100) const {
    std::vector<int> values;
    for (const Tick& tick : *progress_) {
      EXPECT_EQ((Tick{tick.value, 7, u"1/3 ", true, maximum}), tick);
      values.push_back(tick.value);
    }
    return values;
  }

  TestPlatform system_;
  RecordedReports reports_;
  RecordedProgress progress_;
  Graph graph_;
  MainContainer container_{RecordedReports::Reporter, RecordedProgress::Callback, 1 << 12};
};

std::set<IFC::IfcEntity*> ParentSetOf(const IFC::IfcEntity& entity) {
  const auto members = entity.parents.Members();
  return {members.begin(), members.end()};
}

using Set = std::set<IFC::IfcEntity*>;

std::vector<int> OneTo(int last) {
  std::vector<int> values;
  for (int value = 1; value <= last; ++value) values.push_back(value);
  return values;
}

std::vector<int> OneHundredAndOneMore() {
  std::vector<int> values = OneTo(100);
  values.push_back(100);
  return values;
}

TEST_F(Walks, ParentsAreWhatRefersDirectly) {
  Point& wheel = Filed();
  Point& car = Filed();
  Point& fleet = Filed();
  car.RefersTo(&wheel);
  car.RefersTo(nullptr);
  car.RefersTo(&wheel);
  fleet.RefersTo(&car);
  EXPECT_EQ(Outcome::kComplete, FillParents());
  EXPECT_EQ((Set{&car}), ParentSetOf(wheel));
  EXPECT_EQ((Set{&fleet}), ParentSetOf(car));
  EXPECT_EQ(Set{}, ParentSetOf(fleet));
}

TEST_F(Walks, AnEntityMayBeItsOwnParent) {
  Point& loop = Filed();
  loop.RefersTo(&loop);
  FillParents();
  EXPECT_EQ((Set{&loop}), ParentSetOf(loop));
}

TEST_F(Walks, AChildOutsideTheContainerGainsParentsAndIsNotWalked) {
  Point& filed = Filed();
  Point& outside = Outside();
  Point& below = Outside();
  filed.RefersTo(&outside);
  outside.RefersTo(&below);
  FillParents();
  EXPECT_EQ((Set{&filed}), ParentSetOf(outside));
  EXPECT_EQ(Set{}, ParentSetOf(below));
}

TEST_F(Walks, DeletedEntitiesAreParentsToo) {
  Point& child = Filed();
  Point& parent = Filed();
  parent.RefersTo(&child);
  parent.marker = IFC::kDeleted;
  FillParents();
  EXPECT_EQ((Set{&parent}), ParentSetOf(child));
}

TEST_F(Walks, ARebuildForgetsParentsThatAreGone) {
  Point& child = Filed();
  Point& parent = Filed();
  parent.RefersTo(&child);
  FillParents();
  parent.children.clear();
  FillParents();
  EXPECT_EQ(Set{}, ParentSetOf(child));
}

TEST_F(Walks, ARebuildLeavesTheParentsOfWhatIsOutsideAndTheMergedOnes) {
  Point& outside = Outside();
  Point& parent = Filed();
  parent.RefersTo(&outside);
  parent.mergedParents.Insert(&outside, container_.Parents());
  FillParents();
  parent.children.clear();
  FillParents();
  EXPECT_EQ((Set{&parent}), ParentSetOf(outside));
  EXPECT_TRUE(parent.mergedParents.Contains(&outside));
}

TEST_F(Walks, WithoutRebuildTheSecondCallDoesNothing) {
  Point& child = Filed();
  Point& parent = Filed();
  container_.FillParentsLists();
  parent.RefersTo(&child);
  container_.FillParentsLists();
  EXPECT_EQ(Set{}, ParentSetOf(child));
  EXPECT_EQ(Outcome::kComplete, FillParents());
  EXPECT_EQ((Set{&parent}), ParentSetOf(child));
}

TEST_F(Walks, WithoutRebuildNothingTicksAndNothingIsEmptied) {
  File(200);
  Point& stranger = Outside();
  IFC::IfcEntity* const first = container_.entities.First().entity;
  first->parents.Insert(&stranger, container_.Parents());
  container_.FillParentsLists();
  EXPECT_EQ((Set{&stranger}), ParentSetOf(*first));
  EXPECT_TRUE(progress_->empty());
}

TEST_F(Walks, EachHundredthOfTheEntitiesTicksOnce) {
  File(300);
  EXPECT_EQ(Outcome::kComplete, FillParents());
  EXPECT_EQ(OneTo(100), TickValues());
}

TEST_F(Walks, TicksFollowEachOtherByWholeBlocks) {
  const struct {
    int entities, from, to;
    std::vector<int> values;
  } cases[] = {
      {0, 0, 100, {}},
      {1, 0, 100, {}},
      {99, 0, 100, {}},  // a block of 0
      {100, 0, 100, OneTo(100)},
      {10, 0, 3, {1, 2, 3}},
      {10, 5, 8, {6, 7, 8}},
      {10, 0, 1, {1}},
      {3, 97, 100, {98, 99, 100}},
      // There may be one tick more than steps. The value never exceeds the maximum.
      {11, 0, 4, {1, 2, 3, 4, 4}},
      {199, 0, 100, OneHundredAndOneMore()},
      {250, 0, 100, OneHundredAndOneMore()},
      {10, 100, 100, {100}},
      {10, 0, 0, {0}},
      // No way to go: no tick.
      {10, 7, 5, {}},
  };
  for (const auto& wanted : cases) {
    MainContainer container(RecordedReports::Reporter, RecordedProgress::Callback, 64);
    for (int i = 0; i < wanted.entities; ++i) container.AddEntity(&graph_.Add<Point>());
    progress_.Forget();
    EXPECT_EQ(Outcome::kComplete, container.RebuildParentsLists(Told(wanted.from, wanted.to)));
    EXPECT_EQ(wanted.values, TickValues(wanted.to))
        << wanted.entities << " from " << wanted.from << " to " << wanted.to;
  }
}

TEST_F(Walks, ATickComesWhenItsBlockHasBeenEmptied) {
  for (int cancelled = 0; cancelled < 10; ++cancelled) {
    Graph graph;
    MainContainer container(RecordedReports::Reporter, RecordedProgress::Callback, 64);
    std::vector<Point*> points;
    for (int i = 0; i < 37; ++i) {
      points.push_back(&graph.Add<Point>());
      container.AddEntity(points.back());
      points.back()->parents.Insert(points.front(), container.Parents());
    }
    progress_.Forget();
    progress_.CancelAt(static_cast<std::size_t>(cancelled));
    EXPECT_EQ(Outcome::kCancelled, container.RebuildParentsLists({.to = 10}));
    std::size_t emptied = 0;
    while (emptied < points.size() && points[emptied]->parents.IsEmpty()) ++emptied;
    EXPECT_EQ(3u * static_cast<std::size_t>(cancelled + 1), emptied);
    EXPECT_EQ(static_cast<std::size_t>(cancelled + 1), progress_->size());
  }
}

TEST_F(Walks, CancelIsAskedAboutAndYesLeavesTheListsUnfilled) {
  Point& child = Filed();
  Filed().RefersTo(&child);
  progress_.CancelAt(0);
  system_.answers = {platform::Answer::kYes};
  EXPECT_EQ(Outcome::kCancelled, FillParents(0, 1));
  EXPECT_EQ(Set{}, ParentSetOf(child));
  EXPECT_EQ((std::vector<TestPlatform::Box>{
                {Cancellation::OfProcess().texts.caption, Cancellation::OfProcess().texts.prompt,
                 platform::Buttons::kYesNo, platform::Icon::kQuestion}}),
            system_.boxes);
  // The lists do not count as filled.
  container_.FillParentsLists();
  EXPECT_EQ(1u, child.parents.Size());
}

TEST_F(Walks, ACancelledRebuildOfFilledListsLeavesThemCountingAsFilled) {
  Point& child = Filed();
  Filed().RefersTo(&child);
  FillParents();
  progress_.CancelAt(0);
  EXPECT_EQ(Outcome::kCancelled, FillParents(0, 1));
  EXPECT_EQ(Set{}, ParentSetOf(child));
  container_.FillParentsLists();
  EXPECT_EQ(Set{}, ParentSetOf(child));
}

TEST_F(Walks, CancelAnsweredWithNoGoesOn) {
  Point& child = Filed();
  for (int i = 0; i < 8; ++i) Filed().RefersTo(&child);
  progress_.CancelAt(1);
  system_.answers = {platform::Answer::kNo};
  EXPECT_EQ(Outcome::kComplete, FillParents(0, 3));
  EXPECT_EQ(1u, system_.boxes.size());
  EXPECT_EQ(OneTo(3), TickValues(3));
  EXPECT_EQ(8u, child.parents.Size());
}

TEST_F(Walks, WithoutAProgressNothingTicks) {
  MainContainer container(RecordedReports::Reporter, nullptr, 64);
  for (int i = 0; i < 200; ++i) container.AddEntity(&graph_.Add<Point>());
  EXPECT_EQ(Outcome::kComplete, container.RebuildParentsLists({}));
  EXPECT_TRUE(progress_->empty());
}

// What a refresh takes for granted is seen where a reference changes and nobody tells of it.
TEST_F(Walks, ARefreshWorksOnlyAfterAChange) {
  Point& child = Filed();
  Point& parent = Filed();
  const auto refresh = [this] { return container_.RefreshParentsLists(Told(0, 1)); };
  parent.RefersTo(&child);
  EXPECT_EQ(Outcome::kComplete, refresh());
  EXPECT_EQ((Set{&parent}), ParentSetOf(child));
  parent.children.clear();
  EXPECT_EQ(Outcome::kComplete, refresh());
  EXPECT_EQ((Set{&parent}), ParentSetOf(child));
  container_.NoteChangedReferences();
  EXPECT_EQ(Outcome::kComplete, refresh());
  EXPECT_EQ(Set{}, ParentSetOf(child));
  Point& added = Outside();
  added.RefersTo(&child);
  container_.AddEntity(&added);
  EXPECT_EQ(Outcome::kComplete, refresh());
  EXPECT_EQ((Set{&added}), ParentSetOf(child));
  container_.EraseEntity(added.marker);
  EXPECT_EQ(Outcome::kComplete, refresh());
  EXPECT_EQ(Set{}, ParentSetOf(child));
  EXPECT_EQ((std::vector<int>{1, 1, 1, 1, 1}), TickValues(1));
}

TEST_F(Walks, ACancelledRefreshEmptiesTheSetsThatHadTheirTurn) {
  std::vector<Point*> points;
  for (int i = 0; i < 9; ++i) points.push_back(&Filed());
  for (Point* const point : points) point->RefersTo(point);
  EXPECT_EQ(Outcome::kComplete, FillParents());
  progress_.Forget();
  progress_.CancelAt(1);
  EXPECT_EQ(Outcome::kCancelled, container_.RefreshParentsLists(Told(0, 3)));
  EXPECT_EQ((std::vector<int>{1, 2}), TickValues(3));
  for (std::size_t i = 0; i < points.size(); ++i) {
    EXPECT_EQ(i < 6, points[i]->parents.IsEmpty()) << i;
  }
  // The next one does not take them for current.
  EXPECT_EQ(Outcome::kComplete, container_.RefreshParentsLists(Told(0, 0)));
  for (Point* const point : points) EXPECT_EQ((Set{point}), ParentSetOf(*point));
}

TEST_F(Walks, OneWalkResetsAllThatIsReachedAndFillsTheParents) {
  Point& filed = Filed(10);
  Point& deleted = Filed(11);
  Point& outside = Outside();
  Point& below = Outside();
  Point& stranger = Outside();
  filed.RefersTo(&deleted);
  filed.RefersTo(nullptr);
  deleted.RefersTo(&outside);
  outside.RefersTo(&below);
  below.RefersTo(&outside);
  deleted.marker = IFC::kDeleted;
  outside.marker = 5;
  below.marker = 6;
  stranger.marker = 7;
  container_.ResetMarkersAndFillParents();
  for (const Point* const point : {&filed, &deleted, &outside, &below}) {
    EXPECT_EQ(0u, point->marker);
  }
  EXPECT_EQ(7u, stranger.marker);
  EXPECT_EQ(Set{}, ParentSetOf(filed));
  EXPECT_EQ((Set{&filed}), ParentSetOf(deleted));
  EXPECT_EQ((Set{&deleted}), ParentSetOf(outside));
  EXPECT_EQ(Set{}, ParentSetOf(below));
  EXPECT_TRUE(progress_->empty());
}

TEST_F(Walks, OnceFilledTheSameWalkOnlyResets) {
  Point& child = Filed();
  Point& parent = Filed();
  Point& outside = Outside();
  FillParents(0, 0);
  parent.RefersTo(&child);
  parent.RefersTo(&outside);
  outside.marker = 5;
  container_.ResetMarkersAndFillParents();
  EXPECT_EQ(Set{}, ParentSetOf(child));
  EXPECT_EQ(0u, child.marker);
  EXPECT_EQ(0u, outside.marker);
}

TEST_F(Walks, HalfAMillionParentsOfOneEntity) {
  Point& history = Filed();
  for (int i = 0; i < 500000; ++i) Filed().RefersTo(&history);
  EXPECT_EQ(Outcome::kComplete, FillParents());
  EXPECT_EQ(500000u, history.parents.Size());
}

TEST_F(Walks, ResetReachesAllThatTheContainerLeadsTo) {
  Point& filed = Filed(10);
  Point& deleted = Filed(11);
  Point& outside = Outside();
  Point& below = Outside();
  Point& stranger = Outside();
  filed.RefersTo(&outside);
  filed.RefersTo(nullptr);
  outside.RefersTo(&below);
  deleted.marker = IFC::kDeleted;
  outside.marker = 5;
  below.marker = 6;
  stranger.marker = 7;
  EXPECT_TRUE(container_.ResetAllMarkers());
  EXPECT_EQ(0u, filed.marker);
  EXPECT_EQ(0u, deleted.marker);
  EXPECT_EQ(0u, outside.marker);
  EXPECT_EQ(0u, below.marker);
  EXPECT_EQ(7u, stranger.marker);
  // The entries stay.
  EXPECT_EQ(&filed, container_.entities.Find(10));
  EXPECT_EQ(&deleted, container_.entities.Find(11));
}

TEST_F(Walks, ResetReachesWhatStandsBelowADeletedEntity) {
  Point& deleted = Filed();
  Point& below = Outside();
  deleted.RefersTo(&below);
  deleted.marker = IFC::kDeleted;
  below.marker = 9;
  container_.ResetAllMarkers();
  EXPECT_EQ(0u, below.marker);
}

TEST_F(Walks, ResetEndsOnCyclesAndRunsAnewEachTime) {
  Point& a = Filed();
  Point& b = Filed();
  a.RefersTo(&a);
  a.RefersTo(&b);
  b.RefersTo(&a);
  for (int round = 0; round < 3; ++round) {
    a.marker = b.marker = 4;
    EXPECT_TRUE(container_.ResetAllMarkers());
    EXPECT_EQ(0u, a.marker);
    EXPECT_EQ(0u, b.marker);
  }
}

TEST_F(Walks, ResetOfAnEmptyContainerIsTrue) { EXPECT_TRUE(container_.ResetAllMarkers()); }

TEST_F(Walks, AChainOfAMillionNeedsNoDeepStack) {
  const std::unique_ptr<Point[]> chain(new Point[1000000]);
  for (std::size_t i = 0; i < 1000000; ++i) {
    chain[i].marker = 1;
    if (i + 1 < 1000000) chain[i].RefersTo(&chain[i + 1]);
  }
  container_.AddEntity(&chain[0]);
  test::RunOnSmallStack([this] { container_.ResetAllMarkers(); });
  std::size_t reset = 0;
  for (std::size_t i = 0; i < 1000000; ++i) reset += chain[i].marker == 0 ? 1 : 0;
  EXPECT_EQ(1000000u, reset);
}

TEST_F(Walks, AnEntityWithAMillionChildrenIsReset) {
  Point& crowd = Filed();
  const std::unique_ptr<Point[]> members(new Point[1000000]);
  for (std::size_t i = 0; i < 1000000; ++i) {
    members[i].marker = 1;
    crowd.RefersTo(&members[i]);
  }
  test::RunOnSmallStack([this] { container_.ResetAllMarkers(); });
  std::size_t reset = 0;
  for (std::size_t i = 0; i < 1000000; ++i) reset += members[i].marker == 0 ? 1 : 0;
  EXPECT_EQ(1000000u, reset);
}

}  // namespace
}  // namespace corvel
