#include "core/number_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <random>
#include <vector>

namespace corvel {
namespace {

constexpr std::uint32_t kMost = 4294967295u;

// Entities that nobody looks at.
IFC::IfcEntity* FakeObject(std::uint64_t id) { return reinterpret_cast<IFC::IfcEntity*>(id * 16); }

using Pairs = std::vector<std::pair<std::uint32_t, IFC::IfcEntity*>>;

Pairs Walked(const NumberTable& table) {
  Pairs pairs;
  for (const auto [number, entity] : table) pairs.emplace_back(number, entity);
  return pairs;
}

// The walk that looks up each step anew.
Pairs Stepped(const NumberTable& table) {
  Pairs pairs;
  for (auto at = table.First(); at; at = table.Next(at.number)) {
    pairs.emplace_back(at.number, at.entity);
  }
  return pairs;
}

TEST(NumberTable, AnEmptyOneHasNothing) {
  NumberTable table;
  EXPECT_EQ(0u, table.Size());
  EXPECT_FALSE(table.First());
  EXPECT_TRUE(table.begin() == table.end());
  EXPECT_FALSE(table.Next(0));
  EXPECT_FALSE(table.Contains(0));
  EXPECT_FALSE(table.Remove(1));
  EXPECT_EQ(nullptr, table.Find(kMost));
}

TEST(NumberTable, TheSmallestAndTheLargestNumberAreKeysLikeAnyOther) {
  NumberTable table;
  table.Set(kMost, FakeObject(2));
  table.Set(0, FakeObject(1));
  EXPECT_EQ((Pairs{{0, FakeObject(1)}, {kMost, FakeObject(2)}}), Walked(table));
  EXPECT_FALSE(table.Next(kMost));
  EXPECT_TRUE(table.Remove(kMost));
  EXPECT_EQ((Pairs{{0, FakeObject(1)}}), Walked(table));
}

TEST(NumberTable, SetReplacesAndCountsOnce) {
  NumberTable table;
  table.Set(7, FakeObject(1));
  table.Set(7, FakeObject(2));
  EXPECT_EQ(1u, table.Size());
  EXPECT_EQ(FakeObject(2), table.Find(7));
}

TEST(NumberTable, ClearForgetsAllAndTheTableServesOn) {
  NumberTable table;
  for (std::uint32_t number = 1; number < 3000; ++number) table.Set(number, FakeObject(number));
  table.Clear();
  EXPECT_EQ(0u, table.Size());
  EXPECT_FALSE(table.First());
  table.Set(5, FakeObject(5));
  EXPECT_EQ((Pairs{{5, FakeObject(5)}}), Walked(table));
}

TEST(NumberTable, TheSmallestFreeNumberIsTheFirstGapFromOneOn) {
  NumberTable table;
  EXPECT_EQ(1u, table.SmallestFree());
  table.Set(0, FakeObject(1));
  EXPECT_EQ(1u, table.SmallestFree());
  table.Set(2, FakeObject(2));
  table.Set(kMost, FakeObject(3));
  EXPECT_EQ(1u, table.SmallestFree());
  table.Set(1, FakeObject(4));
  EXPECT_EQ(3u, table.SmallestFree());
  table.Remove(2);
  EXPECT_EQ(2u, table.SmallestFree());
  table.Set(2, FakeObject(2));
  table.Remove(0);
  EXPECT_EQ(3u, table.SmallestFree());
  table.Clear();
  EXPECT_EQ(1u, table.SmallestFree());
}

TEST(NumberTable, TheSmallestFreeNumberIsThatOfAPlainSearch) {
  std::mt19937 random(3);
  NumberTable table;
  std::map<std::uint32_t, bool> used;
  for (int round = 0; round < 20000; ++round) {
    const auto number = static_cast<std::uint32_t>(random() % 1500);
    if (random() % 5 == 0) {
      table.Remove(number);
      used.erase(number);
    } else {
      table.Set(number, FakeObject(1 + std::uint64_t{number}));
      used[number] = true;
    }
    if (round % 50 != 0) continue;
    std::uint32_t wanted = 1;
    while (used.contains(wanted)) ++wanted;
    ASSERT_EQ(wanted, table.SmallestFree()) << round;
  }
}

TEST(NumberTable, NumbersOfARunOf512TurnDenseWithoutALoss) {
  for (std::uint32_t start : {0u, 512u, 4294966784u}) {
    NumberTable table;
    Pairs expected;
    for (std::uint32_t i = 0; i < 512; ++i) {
      const std::uint32_t number = start + (i * 37) % 512;  // each once, in no order
      table.Set(number, FakeObject(1 + std::uint64_t{number}));
      ASSERT_EQ(i + 1, table.Size());
    }
    for (std::uint32_t i = 0; i < 512; ++i) {
      expected.emplace_back(start + i, FakeObject(1 + std::uint64_t{start} + i));
    }
    EXPECT_EQ(expected, Walked(table));
    EXPECT_EQ(expected, Stepped(table));
  }
}

// Numbers as they come up: dense runs, wide gaps, the ends of the range and of the pages.
std::uint32_t AnyNumber(std::mt19937& random) {
  const auto any = static_cast<std::uint32_t>(random());
  switch (random() % 6) {
    case 0: return any % 64;
    case 1: return any % 4096;
    case 2: return 1000000 + any % 600;
    case 3: return kMost - any % 700;
    case 4: return ((any >> 18) << 18) + 0x3FFFF + any % 3;
    default: return any;
  }
}

TEST(NumberTable, ItDoesWhatAMapDoes) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    std::mt19937 random(seed);
    NumberTable table;
    std::map<std::uint32_t, IFC::IfcEntity*> model;
    for (int step = 0; step < 6000; ++step) {
      const std::uint32_t number = AnyNumber(random);
      switch (random() % 5) {
        case 0:
        case 1:
        case 2:
          table.Set(number, FakeObject(1 + random() % 1000));
          model[number] = table.Find(number);
          break;
        case 3: ASSERT_EQ(model.erase(number) != 0, table.Remove(number)); break;
        default: {
          const auto expected = model.lower_bound(number);
          const auto found = table.AtOrAfter(number);
          ASSERT_EQ(expected != model.end(), static_cast<bool>(found)) << number;
          if (found) {
            ASSERT_EQ(expected->first, found.number);
            ASSERT_EQ(expected->second, found.entity);
          }
        }
      }
      ASSERT_EQ(model.size(), table.Size());
      const auto at = model.find(number);
      ASSERT_EQ(at == model.end() ? nullptr : at->second, table.Find(number));
    }
    ASSERT_EQ(Pairs(model.begin(), model.end()), Walked(table));
    ASSERT_EQ(Pairs(model.begin(), model.end()), Stepped(table));
  }
}

// In each gap width a list of a leaf or of a branch becomes an array at another time.
TEST(NumberTable, NumbersWithAnyGapsAreFoundInAnyOrderOfFiling) {
  for (const std::uint32_t gap : {1u, 3u, 4u, 5u, 17u, 60u, 300u, 511u, 512u, 513u, 6500u}) {
    std::vector<std::uint32_t> numbers;
    for (std::uint32_t i = 0; i < 2500; ++i) numbers.push_back(7 + i * gap);
    for (unsigned order = 0; order < 3; ++order) {
      if (order == 1) std::reverse(numbers.begin(), numbers.end());
      if (order == 2) std::shuffle(numbers.begin(), numbers.end(), std::mt19937(gap));
      NumberTable table;
      Pairs expected;
      for (const std::uint32_t number : numbers) {
        table.Set(number, FakeObject(number));
        expected.emplace_back(number, FakeObject(number));
      }
      std::sort(expected.begin(), expected.end());
      ASSERT_EQ(expected, Walked(table)) << gap << ", order " << order;
      ASSERT_EQ(expected, Stepped(table)) << gap << ", order " << order;
      for (const std::uint32_t number : numbers) {
        ASSERT_EQ(FakeObject(number), table.Find(number));
        ASSERT_EQ(gap == 1 && number != 7 + 2499 * gap, table.Contains(number + 1));
      }
      for (const std::uint32_t number : numbers) ASSERT_TRUE(table.Remove(number));
      ASSERT_EQ(0u, table.Size());
      ASSERT_FALSE(table.First());
    }
  }
}

// --- Copies --------------------------------------------------------------------------------------

TEST(NumberTable, WhatIsAddedForAllIsInTheCopyToo) {
  NumberTable table;
  NumberTable copy(table);
  for (std::uint32_t number = 1; number < 2000; ++number) {
    table.AddForAll(number, FakeObject(number));
    copy.AddForAll(number * 1000, FakeObject(number));
  }
  EXPECT_TRUE(copy.SharesAllWith(table));
  EXPECT_EQ(Walked(table), Walked(copy));
  EXPECT_EQ(table.Size(), copy.Size());
  EXPECT_EQ(FakeObject(77), table.Find(77));
  copy.Set(77, FakeObject(5));
  EXPECT_FALSE(copy.SharesAllWith(table));
  EXPECT_EQ(FakeObject(77), table.Find(77));
  EXPECT_EQ(FakeObject(5), copy.Find(77));
  EXPECT_FALSE(table.Add(78, FakeObject(6)));
  EXPECT_TRUE(table.Add(5000001, FakeObject(6)));
  EXPECT_FALSE(copy.Contains(5000001));
}

TEST(NumberTable, ACopyAndItsOriginalGoWaysOfTheirOwn) {
  for (unsigned seed = 1; seed <= 30; ++seed) {
    std::mt19937 random(seed);
    std::array<std::map<std::uint32_t, IFC::IfcEntity*>, 2> models;
    auto first = std::make_unique<NumberTable>();
    auto second = std::make_unique<NumberTable>(*first);
    for (int step = 0; step < 4000; ++step) {
      const std::size_t which = random() % 2;
      NumberTable& table = which == 0 ? *first : *second;
      auto& model = models[which];
      const std::uint32_t number = AnyNumber(random);
      IFC::IfcEntity* const object = FakeObject(1 + random() % 1000);
      if (step < 2000) {
        ASSERT_TRUE(first->SharesAllWith(*second));
        models[1].try_emplace(number, object);
        ASSERT_EQ(models[0].try_emplace(number, object).second, table.AddForAll(number, object));
      } else if (random() % 2 == 0) {
        table.Set(number, object);
        model[number] = object;
      } else if (random() % 2 == 0) {
        ASSERT_EQ(model.try_emplace(number, object).second, table.Add(number, object));
      } else {
        ASSERT_EQ(model.erase(number) != 0, table.Remove(number));
      }
      ASSERT_EQ(models[0].size(), first->Size());
      ASSERT_EQ(models[1].size(), second->Size());
    }
    ASSERT_EQ(Pairs(models[0].begin(), models[0].end()), Walked(*first));
    ASSERT_EQ(Pairs(models[1].begin(), models[1].end()), Walked(*second));
    // What is left when one of the two goes belongs to the other.
    (seed % 2 == 0 ? first : second).reset();
    const std::size_t left = seed % 2 == 0 ? 1 : 0;
    NumberTable& table = left == 0 ? *first : *second;
    for (const auto& [number, object] : models[left]) table.Set(number, FakeObject(4));
    ASSERT_EQ(models[left].size(), table.Size());
    table.Clear();
    ASSERT_EQ(0u, table.Size());
  }
}

// A walk by the iterator and one that looks up each step, under one face.
struct RunningWalk {
  explicit RunningWalk(const NumberTable& table) : at(table.begin()) {}
  NumberTable::Entry Here() const { return *at; }
  void Step() { ++at; }
  NumberTable::Iterator at;
};

struct SteppingWalk {
  explicit SteppingWalk(const NumberTable& walked) : table(walked), at(walked.First()) {}
  NumberTable::Entry Here() const { return at; }
  void Step() { at = table.Next(at.number); }
  const NumberTable& table;
  NumberTable::Entry at;
};

template <class Walk>
class NumberTableWalk : public testing::Test {};
using TableWalks = testing::Types<RunningWalk, SteppingWalk>;
TYPED_TEST_SUITE(NumberTableWalk, TableWalks);

// Entries may come and go while the table is walked, the entry at hand among them.
TYPED_TEST(NumberTableWalk, SeesWhatIsAddedAheadAndNotWhatIsRemoved) {
  for (unsigned seed = 1; seed <= 50; ++seed) {
    std::mt19937 random(seed);
    NumberTable table;
    std::map<std::uint32_t, IFC::IfcEntity*> model;
    for (int i = 0; i < 200; ++i) {
      const std::uint32_t number = AnyNumber(random);
      table.Set(number, FakeObject(1));
      model[number] = FakeObject(1);
    }
    // What a copy shares is moved by changes; half of the tables have begun with that.
    const Pairs before = Walked(table);
    const NumberTable copy(table);
    if (seed % 2 == 0) table.Set(before[0].first, before[0].second);
    int budget = 500;
    auto expected = model.begin();
    TypeParam walk(table);
    while (walk.Here()) {
      ASSERT_NE(model.end(), expected);
      const std::uint32_t here = walk.Here().number;
      ASSERT_EQ(expected->first, here);
      ASSERT_EQ(expected->second, walk.Here().entity);
      if (budget-- > 0) {
        const std::uint32_t number =
            random() % 3 != 0
                ? AnyNumber(random)
                : here + static_cast<std::uint32_t>(random() % 3 == 0 ? 0 : random() % 50);
        if (random() % 2 == 0) {
          table.Set(number, FakeObject(2));
          model[number] = FakeObject(2);
        } else {
          table.Remove(number);
          model.erase(number);
        }
      }
      expected = model.upper_bound(here);
      walk.Step();
    }
    ASSERT_EQ(model.end(), expected);
    ASSERT_EQ(before, Walked(copy));
  }
}

TYPED_TEST(NumberTableWalk, GoesOnWhenAnArrayThatACopySharesIsChanged) {
  NumberTable table;
  for (std::uint32_t number = 1; number <= 1000; ++number) table.Set(number, FakeObject(number));
  const NumberTable copy(table);
  std::vector<std::uint32_t> seen;
  for (TypeParam walk(table); walk.Here(); walk.Step()) {
    const std::uint32_t here = walk.Here().number;
    seen.push_back(here);
    // Every other one goes before it has its turn.
    if (here % 2 == 1) table.Remove(here + 1);
    if (here == 999) table.Set(1002, FakeObject(1));
  }
  ASSERT_EQ(501u, seen.size());
  for (std::size_t i = 0; i < 500; ++i) ASSERT_EQ(2 * i + 1, seen[i]);
  EXPECT_EQ(1002u, seen[500]);
  EXPECT_EQ(1000u, copy.Size());
  EXPECT_EQ(1000u, Walked(copy).size());
}

// The list of a leaf becomes an array under the walk, and entries of arrays go.
TYPED_TEST(NumberTableWalk, GoesOnWhenALeafTurnsDenseUnderIt) {
  NumberTable table;
  table.Set(3, FakeObject(3));
  table.Set(600, FakeObject(600));
  Pairs seen;
  for (TypeParam walk(table); walk.Here(); walk.Step()) {
    const std::uint32_t here = walk.Here().number;
    seen.emplace_back(here, walk.Here().entity);
    if (here != 3) continue;
    for (std::uint32_t number = 0; number < 100; ++number)
      table.Set(number, FakeObject(number + 1));
    for (std::uint32_t number = 5; number < 99; ++number) table.Remove(number);
  }
  EXPECT_EQ(
      (Pairs{
          {3, FakeObject(3)}, {4, FakeObject(5)}, {99, FakeObject(100)}, {600, FakeObject(600)}}),
      seen);
}

}  // namespace
}  // namespace corvel
