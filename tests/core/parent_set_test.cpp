#include "core/parent_set.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <set>
#include <vector>

#include "core/parent_store.h"

namespace corvel {
namespace {

// Parents that nobody looks at.
IFC::IfcEntity* FakeParent(std::uint64_t id) { return reinterpret_cast<IFC::IfcEntity*>(id * 16); }

std::vector<IFC::IfcEntity*> MembersOf(const ParentSet& set) {
  const auto members = set.Members();
  return {members.begin(), members.end()};
}

TEST(ParentSet, ItIsOneWord) { EXPECT_EQ(sizeof(void*), sizeof(ParentSet)); }

TEST(ParentSet, AnEmptyOneHasNoMember) {
  ParentSet set;
  EXPECT_TRUE(set.IsEmpty());
  EXPECT_EQ(0u, set.Size());
  EXPECT_FALSE(set.Contains(FakeParent(1)));
  EXPECT_TRUE(set.Members().empty());
}

TEST(ParentSet, EachMemberCountsOnceFromOneToMany) {
  ParentStore store;
  ParentSet set;
  for (std::uint64_t id = 1; id <= 70; ++id) {
    set.Insert(FakeParent(id), store);
    set.Insert(FakeParent(id), store);
    set.Insert(FakeParent(1), store);
    ASSERT_EQ(id, set.Size());
    ASSERT_TRUE(set.Contains(FakeParent(id)));
    ASSERT_FALSE(set.Contains(FakeParent(id + 1)));
    ASSERT_FALSE(set.IsEmpty());
  }
}

TEST(ParentSet, MembersComeInAscendingOrderWhateverTheOrderOfArrival) {
  ParentStore store;
  ParentSet set;
  for (const std::uint64_t id : {5, 3, 9, 1, 3, 5}) set.Insert(FakeParent(id), store);
  EXPECT_EQ((std::vector{FakeParent(1), FakeParent(3), FakeParent(5), FakeParent(9)}),
            MembersOf(set));
  set.Insert(FakeParent(4), store);
  EXPECT_EQ(
      (std::vector{FakeParent(1), FakeParent(3), FakeParent(4), FakeParent(5), FakeParent(9)}),
      MembersOf(set));
}

TEST(ParentSet, ItDoesWhatASetDoes) {
  for (unsigned seed = 1; seed <= 30; ++seed) {
    std::mt19937 random(seed);
    ParentStore store;
    std::vector<ParentSet> sets(12);
    std::vector<std::set<IFC::IfcEntity*>> models(sets.size());
    const std::uint64_t range = 1 + random() % 300;
    for (int step = 0; step < 5000; ++step) {
      const std::size_t which = random() % sets.size();
      const std::size_t what = random() % 100;
      if (what == 0) {
        sets[which].Clear(store);
        models[which].clear();
      } else if (what < 90) {
        IFC::IfcEntity* const parent = FakeParent(1 + random() % range);
        sets[which].Insert(parent, store);
        models[which].insert(parent);
      } else {
        IFC::IfcEntity* const parent = FakeParent(1 + random() % range);
        ASSERT_EQ(models[which].contains(parent), sets[which].Contains(parent));
      }
      ASSERT_EQ(models[which].empty(), sets[which].IsEmpty());
    }
    for (std::size_t i = 0; i < sets.size(); ++i) {
      ASSERT_EQ(std::vector(models[i].begin(), models[i].end()), MembersOf(sets[i]));
    }
  }
}

TEST(ParentSet, HalfAMillionMembersInRandomOrder) {
  std::vector<std::uint64_t> ids(500000);
  std::iota(ids.begin(), ids.end(), 1);
  std::shuffle(ids.begin(), ids.end(), std::mt19937(3));
  ParentStore store;
  ParentSet set;
  for (const std::uint64_t id : ids) set.Insert(FakeParent(id), store);
  ASSERT_EQ(ids.size(), set.Size());
  std::uint64_t expected = 0;
  for (IFC::IfcEntity* const member : set.Members()) ASSERT_EQ(FakeParent(++expected), member);
}

TEST(ParentStore, WhatASetGivesBackServesTheNext) {
  ParentStore store;
  ParentSet first;
  for (std::uint64_t id = 1; id <= 8; ++id) first.Insert(FakeParent(id), store);
  const auto* const block = first.Members().data();
  first.Clear(store);
  EXPECT_TRUE(first.IsEmpty());
  ParentSet second;
  for (std::uint64_t id = 11; id <= 18; ++id) second.Insert(FakeParent(id), store);
  EXPECT_EQ(block, second.Members().data());
  EXPECT_EQ(8u, second.Size());
  // A block that was out of order when it was given back starts anew.
  second.Insert(FakeParent(1), store);
  second.Clear(store);
  for (std::uint64_t id = 21; id <= 29; ++id) first.Insert(FakeParent(id), store);
  EXPECT_EQ(FakeParent(21), first.Members().front());
  EXPECT_EQ(9u, first.Size());
}

TEST(ParentStore, AStoreTakesBlocksOfAnotherOneBack) {
  ParentStore older;
  ParentSet set;
  {
    ParentStore newer;
    for (std::uint64_t id = 1; id <= 4; ++id) set.Insert(FakeParent(id), older);
    set.Clear(newer);
    for (std::uint64_t id = 5; id <= 8; ++id) set.Insert(FakeParent(id), newer);
    EXPECT_EQ((std::vector{FakeParent(5), FakeParent(6), FakeParent(7), FakeParent(8)}),
              MembersOf(set));
    set.Clear(newer);
  }
  set.Insert(FakeParent(9), older);
  EXPECT_EQ(std::vector{FakeParent(9)}, MembersOf(set));
}

}  // namespace
}  // namespace corvel
