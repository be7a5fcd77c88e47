// What happens to objects whose GUID the destination's GUID index holds. The index is filled by
// hand: reading leaves it empty.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "graph_document.h"
#include "merge/guid_choice.h"
#include "support/model.h"

namespace corvel {
namespace {

using test::Graph;
using test::GraphDocument;
using test::GraphNode;
using test::MergeWorld;
using test::Model;
using test::Of;

using Numbers = std::vector<std::uint32_t>;
using Wall = Of<u"IfcWall">;
using Project = Of<u"IfcProject">;
using Aggregates = Of<u"IfcRelAggregates">;
using Contained = Of<u"IfcRelContainedInSpatialStructure">;
using Point = Of<u"IfcPoint", GraphNode>;

constexpr char kNewGuid[] = "0000000000000000000007";
const platform::Guid kNewGuidBits{0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 7}};

// A wall `w` with the same GUID on both sides and, in the source, a relation that refers to it.
class Collisions : public testing::Test {
 protected:
  Collisions() {
    first_.AddRoot<Project>(1, "p1");
    first_.GuidIndex()["w"] = &target_;
    world_.system.guids = {kNewGuidBits};
  }
  bool Merge() { return first_->MergeDocument(*second_, 0, false); }
  Aggregates& Relate(std::uint32_t number, std::string_view guid,
                     std::initializer_list<IFC::IfcEntity*> members) {
    return second_.AddRelation<Aggregates>(number, guid, members);
  }
  // A wall #6 of the destination that a relation refers to and whose GUID leads to the target.
  Wall& AddIndexedChild() {
    Wall& child = first_.AddRoot<Wall>(6, "other");
    first_.AddRelation<Aggregates>(7, "r", {&child});
    first_.GuidIndex()["other"] = &target_;
    return child;
  }

  MergeWorld world_;
  GraphDocument first_{u"first.ifc"};
  GraphDocument second_{u"second.ifc"};
  Wall& target_ = first_.AddRoot<Wall>(5, "w");
  Project& project_ = second_.AddRoot<Project>(10, "p2");
};

TEST_F(Collisions, GenerateKeepsTheObjectUnderANewGuid) {
  Wall& wall = second_.AddRoot<Wall>(15, "w");
  Relate(16, "r", {&wall});
  RememberedGuidChoice() = kGenerateGuids;
  EXPECT_TRUE(Merge());
  EXPECT_STREQ(kNewGuid, wall.guid);
  EXPECT_STREQ("w", target_.guid);
  EXPECT_EQ((Numbers{1, 5, 15, 16}), first_.Numbers());
  EXPECT_EQ((std::set<std::string>{kNewGuid}), first_->generatedGuids);
  // The object points into the document's own copy.
  EXPECT_EQ(first_->generatedGuids.begin()->c_str(), wall.guid);
  EXPECT_TRUE(target_.mergedParents.IsEmpty());
}

TEST_F(Collisions, SkipFoldsTheObjectOntoTheDestinations) {
  Wall& wall = second_.AddRoot<Wall>(15, "w");
  Aggregates& relation = Relate(16, "r", {&wall});
  RememberedGuidChoice() = kSkipSameGuids;
  EXPECT_TRUE(Merge());
  EXPECT_EQ((Numbers{1, 5, 16}), first_.Numbers());
  EXPECT_EQ(5u, wall.marker);
  EXPECT_STREQ("w", wall.guid);
  EXPECT_TRUE(target_.parents.Contains(&relation));
  EXPECT_TRUE(target_.mergedParents.Contains(&relation));
  EXPECT_EQ(16u, relation.marker);
  EXPECT_TRUE(first_->generatedGuids.empty());
  EXPECT_EQ(MergeStatus::kMerged, first_->mergeStatus);
}

TEST_F(Collisions, WhatNothingRefersToIsKeptUnderANewGuidEvenUnderSkip) {
  Wall& wall = second_.AddRoot<Wall>(15, "w");
  RememberedGuidChoice() = kSkipSameGuids;
  EXPECT_TRUE(Merge());
  EXPECT_STREQ(kNewGuid, wall.guid);
  EXPECT_EQ((Numbers{1, 5, 15}), first_.Numbers());
}

TEST_F(Collisions, ASecondProjectIsFoldedEvenUnderGenerate) {
  Project& other = second_.AddRoot<Project>(15, "w");
  Relate(16, "r", {&other});
  RememberedGuidChoice() = kGenerateGuids;
  EXPECT_TRUE(Merge());
  EXPECT_EQ((Numbers{1, 5, 16}), first_.Numbers());
  EXPECT_EQ(5u, other.marker);
}

TEST_F(Collisions, ASecondProjectThatNothingRefersToGetsANewGuid) {
  Project& other = second_.AddRoot<Project>(15, "w");
  RememberedGuidChoice() = kGenerateGuids;
  EXPECT_TRUE(Merge());
  EXPECT_STREQ(kNewGuid, other.guid);
  EXPECT_EQ((Numbers{1, 5, 15}), first_.Numbers());
}

TEST_F(Collisions, TheFirstProjectOfTheSourceNeverCollides) {
  first_.GuidIndex()["p2"] = &target_;
  Relate(16, "r", {&project_});
  EXPECT_TRUE(Merge());
  EXPECT_EQ(0, world_.Questions());
  EXPECT_EQ((Numbers{1, 5, 16}), first_.Numbers());
}

TEST_F(Collisions, TheUserIsAskedOnceForAllFilesOfARun) {
  GraphDocument third(u"third.ifc");
  third.AddRoot<Project>(20, "p3");
  Wall& a = second_.AddRoot<Wall>(15, "w");
  Wall& b = third.AddRoot<Wall>(21, "w");
  Relate(16, "r", {&a});
  third.AddRelation<Aggregates>(22, "r3", {&b});
  world_.UserWantsNewGuids(false);
  Merge();
  EXPECT_EQ(1, world_.Questions());
  EXPECT_EQ(kSkipSameGuids, RememberedGuidChoice());
  first_->MergeDocument(*third, 0, false);
  EXPECT_EQ(1, world_.Questions());
  EXPECT_EQ((Numbers{1, 5, 16, 22}), first_.Numbers());
}

TEST_F(Collisions, TheAnswerGenerateIsRememberedToo) {
  second_.AddRoot<Wall>(15, "w");
  Merge();
  EXPECT_EQ(1, world_.Questions());
  EXPECT_EQ(kGenerateGuids, RememberedGuidChoice());
}

TEST_F(Collisions, WithoutAnyoneToAskNewGuidsAreMade) {
  SetGuidQuestion(nullptr);
  Wall& wall = second_.AddRoot<Wall>(15, "w");
  Relate(16, "r", {&wall});
  Merge();
  EXPECT_STREQ(kNewGuid, wall.guid);
  EXPECT_EQ(kGenerateGuids, RememberedGuidChoice());
}

TEST_F(Collisions, WithoutACollisionNobodyIsAsked) {
  second_.AddRoot<Wall>(15, "other");
  Merge();
  EXPECT_EQ(0, world_.Questions());
  EXPECT_EQ(kAskAboutGuids, RememberedGuidChoice());
}

TEST_F(Collisions, AnyOtherRememberedNumberMeansGenerate) {
  Wall& wall = second_.AddRoot<Wall>(15, "w");
  Relate(16, "r", {&wall});
  RememberedGuidChoice() = 4;
  Merge();
  EXPECT_STREQ(kNewGuid, wall.guid);
  EXPECT_EQ(0, world_.Questions());
}

TEST_F(Collisions, AnObjectThatTheIndexItselfHoldsIsNoStandIn) {
  Wall& wall = second_.AddRoot<Wall>(15, "own");
  Relate(16, "r", {&wall});
  first_.GuidIndex()["own"] = &wall;
  RememberedGuidChoice() = kSkipSameGuids;
  Merge();
  EXPECT_EQ(15u, wall.marker);
  EXPECT_EQ((Numbers{1, 5, 16}), first_.Numbers());
}

TEST_F(Collisions, WhenNoGuidCanBeMadeTheObjectKeepsItsOwn) {
  world_.system.guids = {platform::Guid{}};
  Wall& wall = second_.AddRoot<Wall>(15, "w");
  RememberedGuidChoice() = kGenerateGuids;
  EXPECT_TRUE(Merge());
  EXPECT_STREQ("w", wall.guid);
  EXPECT_EQ((Numbers{1, 5, 15}), first_.Numbers());
  ASSERT_EQ(1u, world_.reports->size());
  EXPECT_EQ(u"CreateGUID function returned NULL", (*world_.reports)[0].message);
}

// Objects that only others refer to, outside the container.
TEST_F(Collisions, AChildWithAnIndexedGuidBecomesAStandIn) {
  Graph graph;
  Wall& outside = graph.AddRoot<Wall>("w");
  Point& value = graph.Add<Point>();
  value.RefersTo(&outside);
  Point& point = second_.Add<Point>(16);
  point.RefersTo(&value);
  outside.marker = 99;
  Merge();
  EXPECT_EQ(5u, outside.marker);
  EXPECT_EQ(0, world_.Questions());
}

TEST_F(Collisions, AnObjectOfTheDestinationBecomesAStandInAsWell) {
  Wall& other = AddIndexedChild();
  Merge();
  EXPECT_EQ(5u, other.marker);
  EXPECT_EQ(&other, first_.At(6));  // filed all the same
}

TEST_F(Collisions, ADeletedTargetTakesNobodyOn) {
  Wall& other = AddIndexedChild();
  target_.marker = IFC::kDeleted;
  Merge();
  EXPECT_EQ(6u, other.marker);
}

TEST_F(Collisions, ADeletedChildIsRevivedByALiveTargetAndWalked) {
  Graph graph;
  Wall& below = graph.AddRoot<Wall>("below");
  below.marker = 77;
  Wall& deleted = AddIndexedChild();
  deleted.RefersTo(&below);
  deleted.marker = IFC::kDeleted;
  first_.GuidIndex()["below"] = &target_;
  Merge();
  EXPECT_EQ(5u, deleted.marker);
  EXPECT_EQ(5u, below.marker);
}

TEST_F(Collisions, NothingBelowADeletedChildIsWalked) {
  Graph graph;
  Wall& below = graph.AddRoot<Wall>("w");
  below.marker = 77;
  Wall& deleted = first_.AddRoot<Wall>(6, "other");
  deleted.RefersTo(&below);
  deleted.marker = IFC::kDeleted;
  first_.AddRelation<Aggregates>(7, "r", {&deleted});
  Merge();
  EXPECT_EQ(77u, below.marker);
}

TEST_F(Collisions, RelationsThatSayTheSameOfAFoldedObjectAreThinnedOut) {
  Wall& a = second_.AddRoot<Wall>(11, "w");
  Wall& b = second_.AddRoot<Wall>(12, "b");
  Aggregates& first = Relate(16, "r1", {&a, &b});
  Aggregates& more = Relate(17, "r2", {&b, &project_, &a});
  Contained& other = second_.AddRelation<Contained>(18, "r3", {&a, &b});
  RememberedGuidChoice() = kSkipSameGuids;
  Merge();
  EXPECT_EQ(16u, first.marker);
  EXPECT_EQ(IFC::kDeleted, more.marker);
  EXPECT_EQ(18u, other.marker);
  EXPECT_EQ((Numbers{1, 5, 12, 16, 17, 18}), first_.Numbers());
}

// A later version of a model on top of the earlier one, with the index of the earlier.
TEST_F(Collisions, OfALaterVersionUnderSkipNewObjectsAndAllRelationsAreAdded) {
  IFC::MainContainer::ResetUniqueMarker();
  Model first(
      "#1=IFCPROJECT('p',$,'P',$,$,$,$,$,$);\n"
      "#2=IFCBUILDING('b',$,'B',$,$,$,$,$,$,$,$,$);\n"
      "#3=IFCWALL('w',$,'Old name',$,$,$,$,$,$);\n"
      "#4=IFCRELAGGREGATES('r1',$,$,$,#1,(#2));\n"
      "#5=IFCRELCONTAINEDINSPATIALSTRUCTURE('r2',$,$,$,(#3),#2);\n");
  Model second(
      "#1=IFCPROJECT('p',$,'P',$,$,$,$,$,$);\n"
      "#2=IFCBUILDING('b',$,'B',$,$,$,$,$,$,$,$,$);\n"
      "#3=IFCWALL('w',$,'New name',$,$,$,$,$,$);\n"
      "#4=IFCRELAGGREGATES('r1',$,$,$,#1,(#2));\n"
      "#5=IFCRELCONTAINEDINSPATIALSTRUCTURE('r2',$,$,$,(#3,#6),#2);\n"
      "#6=IFCWALL('w2',$,'New wall',$,$,$,$,$,$);\n");
  const char* const guids[] = {"p", "b", "w", "r1", "r2"};
  for (std::uint32_t i = 0; i < 5; ++i) first->GetParser().guidIndex[guids[i]] = first[i + 1];
  RememberedGuidChoice() = kSkipSameGuids;
  world_.system.guids = {{0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 1}}, {0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 2}}};
  first->MergeDocument(*second, 0, false);
  // Nothing refers to relations, so they stay, with new GUIDs.
  EXPECT_EQ(
      "#1=IFCPROJECT('p',$,'P',$,$,$,$,$,$);\n"
      "#2=IFCBUILDING('b',$,'B',$,$,$,$,$,$,$,$,$);\n"
      "#3=IFCWALL('w',$,'Old name',$,$,$,$,$,$);\n"
      "#4=IFCRELAGGREGATES('r1',$,$,$,#1,(#2));\n"
      "#5=IFCRELCONTAINEDINSPATIALSTRUCTURE('r2',$,$,$,(#3),#2);\n"
      "#6=IFCWALL('w2',$,'New wall',$,$,$,$,$,$);\n"
      "#7=IFCRELAGGREGATES('0000000000000000000001',$,$,$,#1,(#2));\n"
      "#8=IFCRELCONTAINEDINSPATIALSTRUCTURE('0000000000000000000002',$,$,$,(#3,#6),#2);\n",
      first.Lines());
}

}  // namespace
}  // namespace corvel
