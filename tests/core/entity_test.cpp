#include "core/entity.h"

#include <gtest/gtest.h>

#include "core/parent_store.h"
#include "support/graph.h"
#include "support/test_platform.h"

namespace corvel {
namespace {

using test::GraphNode;
using test::Of;
using test::TestPlatform;

using Point = Of<u"IfcPoint", GraphNode>;

TEST(Entity, ANewOneHasNothing) {
  const Point point;
  EXPECT_EQ(0u, point.marker);
  EXPECT_FALSE(point.inlineValue);
  EXPECT_EQ(0u, point.visitStamp);
  EXPECT_FALSE(point.visited);
  EXPECT_EQ(0, point.walkResult);
  EXPECT_TRUE(point.parents.IsEmpty());
  EXPECT_TRUE(point.mergedParents.IsEmpty());
}

TEST(Entity, SetMarkerTakesEveryValueButZero) {
  TestPlatform system;
  Point point;
  for (const std::uint32_t value : {1u, 4294967279u, IFC::kDeleted, 4294967295u}) {
    point.SetMarker(value);
    EXPECT_EQ(value, point.marker);
  }
  EXPECT_TRUE(system.boxes.empty());
}

TEST(Entity, MarkerZeroIsRefusedWithABoxAndTheOldValueStays) {
  TestPlatform system;
  Point point;
  point.SetMarker(12);
  point.SetMarker(0);
  EXPECT_EQ(12u, point.marker);
  EXPECT_EQ(
      (std::vector<TestPlatform::Box>{{u"Logfile error", u"SetMarker error: Marker has to be > 0",
                                       platform::Buttons::kOk, platform::Icon::kError}}),
      system.boxes);
}

TEST(Entity, ReservedMarkersAreTheNegativeOnesOfTheirNames) {
  EXPECT_EQ(static_cast<std::uint32_t>(-9), IFC::kDeleted);
  EXPECT_EQ(static_cast<std::uint32_t>(-5), IFC::kNewRootPlacement);
  EXPECT_EQ(static_cast<std::uint32_t>(-6), IFC::kMadePlacement);
  EXPECT_LT(IFC::kLargestNumber, IFC::kDeleted);
}

TEST(Entity, ACopyIsANewObjectWithTheSameChildren) {
  ParentStore store;
  Point child, parent, original;
  original.RefersTo(&child);
  original.marker = 5;
  original.inlineValue = true;
  original.visited = true;
  original.walkResult = 2;
  original.visitStamp = 9;
  original.parents.Insert(&parent, store);
  original.mergedParents.Insert(&parent, store);
  const Point copy(original);
  EXPECT_EQ(0u, copy.marker);
  EXPECT_FALSE(copy.inlineValue);
  EXPECT_FALSE(copy.visited);
  EXPECT_EQ(0, copy.walkResult);
  EXPECT_EQ(0u, copy.visitStamp);
  EXPECT_TRUE(copy.parents.IsEmpty());
  EXPECT_TRUE(copy.mergedParents.IsEmpty());
  ASSERT_EQ(1u, copy.children.size());
  EXPECT_EQ(&child, copy.children[0].entity);
}

TEST(Entity, AssignmentLeavesTheTargetsOwnNumberAndParents) {
  ParentStore store;
  Point parent, source, target;
  source.marker = 5;
  target.marker = 7;
  target.parents.Insert(&parent, store);
  target = source;
  EXPECT_EQ(7u, target.marker);
  EXPECT_TRUE(target.parents.Contains(&parent));
}

TEST(Entity, ThePlainBasesTellEntitiesFromValuesAndHaveNothing) {
  class Entity final : public IFC::IfcComplexType {};
  class Value final : public IFC::IfcSimpleType {};
  const Entity entity;
  const Value value;
  IFC::ChildQueue queue;
  EXPECT_EQ(u"IfcComplexType", WideView(entity.getClassName()));
  EXPECT_EQ(u"IfcSimpleType", WideView(value.getClassName()));
  EXPECT_TRUE(entity.isComplexType());
  EXPECT_FALSE(value.isComplexType());
  EXPECT_FALSE(entity.hasNoLiveMembers());
  EXPECT_FALSE(value.hasNoLiveMembers());
  entity.collectChildren(queue);
  value.collectChildren(queue);
  EXPECT_TRUE(queue.IsEmpty());
}

TEST(ChildQueue, ItIsFilledAndTakenAtTheBack) {
  Point first, second;
  IFC::ChildQueue queue;
  queue.Append(&first, false);
  queue.Append(nullptr, true);
  queue.Append(&second, true);
  EXPECT_EQ(3u, queue.Size());
  EXPECT_EQ(&first, queue[0].entity);
  EXPECT_FALSE(queue[0].canLose);
  EXPECT_EQ(&second, queue.TakeBack().entity);
  const IFC::ChildRef null = queue.TakeBack();
  EXPECT_EQ(nullptr, null.entity);
  EXPECT_TRUE(null.canLose);
  EXPECT_FALSE(queue.IsEmpty());
  queue.Clear();
  EXPECT_TRUE(queue.IsEmpty());
}

}  // namespace
}  // namespace corvel
