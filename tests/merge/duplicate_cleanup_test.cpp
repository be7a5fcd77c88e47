#include "merge/duplicate_cleanup.h"

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

#include "core/parent_store.h"
#include "support/graph.h"

namespace corvel {
namespace {

using test::Graph;
using test::GraphNode;
using test::Of;

using Wall = Of<u"IfcWall">;
using Aggregates = Of<u"IfcRelAggregates">;
using Contained = Of<u"IfcRelContainedInSpatialStructure">;
using Point = Of<u"IfcPoint", GraphNode>;
using Curve = Of<u"IfcCurve", GraphNode>;

class DuplicateCleanup : public testing::Test {
 protected:
  Wall& AddWall(std::string_view guid) { return graph_.AddRoot<Wall>(guid); }
  // Numbered in the order of making; enters itself as parent of its members.
  template <class Class>
  Class& Relate(std::vector<IFC::IfcEntity*> members) {
    Class& relation = graph_.AddRoot<Class>("relation" + std::to_string(++number_));
    relation.marker = number_;
    for (IFC::IfcEntity* const member : members) {
      relation.RefersTo(member);
      if (member != nullptr) member->parents.Insert(&relation, store_);
    }
    return relation;
  }
  static bool IsDeleted(const IFC::IfcEntity& entity) { return entity.marker == IFC::kDeleted; }

  Graph graph_;
  ParentStore store_;
  std::uint32_t number_ = 0;
  Wall& a_ = AddWall("a");
  Wall& b_ = AddWall("b");
  Wall& c_ = AddWall("c");
};

TEST_F(DuplicateCleanup, AnObjectWithoutParentsIsLeftAlone) {
  DeleteDuplicatedParents(a_);
  CheckEntityForDuplicates(&a_);
  CheckEntityForDuplicates(nullptr);
  EXPECT_EQ(0u, a_.marker);
}

TEST_F(DuplicateCleanup, OneParentIsNoDuplicate) {
  const auto& only = Relate<Contained>({&a_, &b_});
  DeleteDuplicatedParents(a_);
  EXPECT_FALSE(IsDeleted(only));
}

TEST_F(DuplicateCleanup, AParentThatHoldsMoreThanAnEarlierOneGoes) {
  const auto& less = Relate<Contained>({&a_, &b_});
  const auto& more = Relate<Contained>({&a_, &b_, &c_});
  DeleteDuplicatedParents(a_);
  EXPECT_FALSE(IsDeleted(less));
  EXPECT_TRUE(IsDeleted(more));
}

TEST_F(DuplicateCleanup, AParentThatHoldsLessThanAnEarlierOneStays) {
  const auto& more = Relate<Contained>({&a_, &b_, &c_});
  const auto& less = Relate<Contained>({&a_, &b_});
  DeleteDuplicatedParents(a_);
  EXPECT_FALSE(IsDeleted(more));
  EXPECT_FALSE(IsDeleted(less));
}

TEST_F(DuplicateCleanup, TheOrderIsThatOfTheNumbersAndNotOfTheAddresses) {
  for (const bool moreComesFirst : {true, false}) {
    Aggregates relations[2];
    const int lower = moreComesFirst ? 1 : 0;
    relations[lower].marker = 100;
    relations[1 - lower].marker = 200;
    for (auto& relation : relations) {
      relation.RefersTo(&a_);
      a_.parents.Insert(&relation, store_);
    }
    relations[1].RefersTo(&b_);
    DeleteDuplicatedParents(a_);
    EXPECT_FALSE(IsDeleted(relations[0])) << moreComesFirst;
    EXPECT_EQ(!moreComesFirst, IsDeleted(relations[1])) << moreComesFirst;
    a_.parents.Clear(store_);
  }
}

TEST_F(DuplicateCleanup, ParentsOfDifferentClassesAreNotCompared) {
  const auto& first = Relate<Contained>({&a_, &b_});
  const auto& second = Relate<Aggregates>({&a_, &b_});
  DeleteDuplicatedParents(a_);
  EXPECT_FALSE(IsDeleted(first));
  EXPECT_FALSE(IsDeleted(second));
}

TEST_F(DuplicateCleanup, DeletedParentsAreNeitherComparedNorMarkedAgain) {
  auto& deleted = Relate<Contained>({&a_, &b_});
  deleted.marker = IFC::kDeleted;
  const auto& live = Relate<Contained>({&a_, &b_});
  DeleteDuplicatedParents(a_);
  EXPECT_FALSE(IsDeleted(live));
}

TEST_F(DuplicateCleanup, AMarkedParentDeletesNoOther) {
  auto& wallWithoutGuid = graph_.Add<Of<u"IfcWall", GraphNode>>();
  const auto& first = Relate<Contained>({&a_});
  auto& second = Relate<Contained>({&wallWithoutGuid});  // covers the first, by class
  auto& third = Relate<Contained>({&b_});                // would cover the second, by class
  a_.parents.Insert(&second, store_);
  a_.parents.Insert(&third, store_);
  DeleteDuplicatedParents(a_);
  EXPECT_FALSE(IsDeleted(first));
  EXPECT_TRUE(IsDeleted(second));
  EXPECT_FALSE(IsDeleted(third));
}

TEST_F(DuplicateCleanup, AllLaterDuplicatesGo) {
  const auto& first = Relate<Contained>({&a_});
  const auto& second = Relate<Contained>({&a_});
  const auto& third = Relate<Contained>({&b_, &a_});
  DeleteDuplicatedParents(a_);
  EXPECT_FALSE(IsDeleted(first));
  EXPECT_TRUE(IsDeleted(second));
  EXPECT_TRUE(IsDeleted(third));
}

TEST_F(DuplicateCleanup, MembersCountByTheirGuidsAndNullsNotAtAll) {
  Wall& otherB = AddWall("b");
  const auto& first = Relate<Contained>({&a_, nullptr, &b_});
  const auto& second = Relate<Contained>({&otherB, &a_, nullptr});
  DeleteDuplicatedParents(a_);
  EXPECT_FALSE(IsDeleted(first));
  EXPECT_TRUE(IsDeleted(second));
}

TEST_F(DuplicateCleanup, MembersWithoutGuidCountByTheirClass) {
  auto& point = graph_.Add<Point>();
  auto& otherPoint = graph_.Add<Point>();
  auto& curve = graph_.Add<Curve>();
  Relate<Contained>({&a_, &point});
  const auto& samePoint = Relate<Contained>({&a_, &otherPoint});
  const auto& other = Relate<Contained>({&a_, &curve});
  DeleteDuplicatedParents(a_);
  EXPECT_TRUE(IsDeleted(samePoint));
  EXPECT_FALSE(IsDeleted(other));
}

TEST_F(DuplicateCleanup, AChildIsFoundByGuidOrByClass) {
  auto& point = graph_.Add<Point>();
  auto& curve = graph_.Add<Curve>();
  Wall& sameGuid = AddWall("a");
  auto& otherClassSameGuid = graph_.AddRoot<Of<u"IfcSlab">>("a");
  auto& classWithoutGuid = graph_.Add<Of<u"IfcWall", GraphNode>>();
  const auto& relation = Relate<Contained>({&point, nullptr, &a_});
  EXPECT_TRUE(ParentIncludesChild(relation, &a_));
  EXPECT_TRUE(ParentIncludesChild(relation, &sameGuid));
  EXPECT_TRUE(ParentIncludesChild(relation, &otherClassSameGuid));
  EXPECT_FALSE(ParentIncludesChild(relation, &b_));
  EXPECT_TRUE(ParentIncludesChild(relation, &graph_.Add<Point>()));
  EXPECT_FALSE(ParentIncludesChild(relation, &curve));
  // One with and one without a GUID: the class decides.
  EXPECT_TRUE(ParentIncludesChild(relation, &classWithoutGuid));
  EXPECT_FALSE(ParentIncludesChild(Relate<Contained>({}), &a_));
}

TEST_F(DuplicateCleanup, GuidsArePartedByLengthToo) {
  const auto& relation = Relate<Contained>({&AddWall("guid")});
  EXPECT_FALSE(ParentIncludesChild(relation, &AddWall("gui")));
  EXPECT_FALSE(ParentIncludesChild(relation, &AddWall("guids")));
  EXPECT_FALSE(ParentIncludesChild(relation, &AddWall("")));
}

TEST_F(DuplicateCleanup, OfAggregationsOfTheSameObjectsTheFirstStays) {
  const auto& first = Relate<Aggregates>({&a_, &b_, &c_});
  const auto& second = Relate<Aggregates>({&c_, &b_, &a_});
  const auto& third = Relate<Aggregates>({&a_, &c_, &b_});
  const auto& other = Relate<Aggregates>({&a_, &b_});
  CheckEntityForDuplicates(&a_);
  EXPECT_FALSE(IsDeleted(first));
  EXPECT_TRUE(IsDeleted(second));
  EXPECT_TRUE(IsDeleted(third));
  EXPECT_FALSE(IsDeleted(other));
}

TEST_F(DuplicateCleanup, AggregationsOfTheObjectAloneStay) {
  const auto& first = Relate<Aggregates>({&a_});
  const auto& second = Relate<Aggregates>({&a_, nullptr, &graph_.Add<Point>()});
  CheckEntityForDuplicates(&a_);
  EXPECT_FALSE(IsDeleted(first));
  EXPECT_FALSE(IsDeleted(second));
}

TEST_F(DuplicateCleanup, OnlyAggregationsAreChecked) {
  const auto& first = Relate<Contained>({&a_, &b_});
  const auto& second = Relate<Contained>({&a_, &b_});
  CheckEntityForDuplicates(&a_);
  EXPECT_FALSE(IsDeleted(first));
  EXPECT_FALSE(IsDeleted(second));
}

TEST_F(DuplicateCleanup, ADeletedAggregationIsNotCounted) {
  auto& deleted = Relate<Aggregates>({&a_, &b_});
  deleted.marker = IFC::kDeleted;
  const auto& live = Relate<Aggregates>({&a_, &b_});
  CheckEntityForDuplicates(&a_);
  EXPECT_FALSE(IsDeleted(live));
}

TEST_F(DuplicateCleanup, EmptyGuidsHaveTheirPlaceInTheKey) {
  Wall& nameless = AddWall("");
  const auto& one = Relate<Aggregates>({&a_, &b_});
  const auto& withNameless = Relate<Aggregates>({&a_, &b_, &nameless});
  const auto& again = Relate<Aggregates>({&a_, &nameless, &b_});
  CheckEntityForDuplicates(&a_);
  EXPECT_FALSE(IsDeleted(one));
  EXPECT_FALSE(IsDeleted(withNameless));
  EXPECT_TRUE(IsDeleted(again));
}

TEST_F(DuplicateCleanup, AMemberThatStandsTwiceIsNotTheSameAsOnce) {
  const auto& once = Relate<Aggregates>({&a_, &b_});
  const auto& twice = Relate<Aggregates>({&a_, &b_, &b_});
  CheckEntityForDuplicates(&a_);
  EXPECT_FALSE(IsDeleted(once));
  EXPECT_FALSE(IsDeleted(twice));
}

}  // namespace
}  // namespace corvel
