#include "core/list.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

namespace corvel {
namespace {

template <class T>
std::vector<T> Items(const List<T>& list) {
  return {list.begin(), list.end()};
}

TEST(List, ItTakesSixteenBytes) { EXPECT_EQ(16u, sizeof(EntityList)); }

TEST(List, ANewOneIsEmpty) {
  const List<int> list;
  EXPECT_TRUE(list.empty());
  EXPECT_EQ(list.begin(), list.end());
}

TEST(List, AppendAndEraseDoWhatAVectorDoes) {
  MemoryPool pool(64);
  std::mt19937 random(1);
  List<std::uint32_t> list;
  std::vector<std::uint32_t> model;
  for (int step = 0; step < 20000; ++step) {
    if (!model.empty() && random() % 5 < 2) {
      const std::size_t index = random() % model.size();
      model.erase(model.begin() + static_cast<std::ptrdiff_t>(index));
      list.Erase(index);
    } else {
      model.push_back(static_cast<std::uint32_t>(random()));
      list.Append(model.back(), pool);
    }
    if (random() % 3000 == 0) {
      model.clear();
      list.Clear();
    }
    ASSERT_EQ(model.size(), list.size());
  }
  EXPECT_EQ(model, Items(list));
}

TEST(List, RemoveIfKeepsTheOrderOfTheOthers) {
  MemoryPool pool(64);
  List<int> list;
  const auto isOdd = [](int item) { return item % 2 != 0; };
  EXPECT_EQ(0u, list.RemoveIf(isOdd));
  list.Assign(std::vector<int>{1, 4, 3, 2, 6, 5}, pool);
  EXPECT_EQ(3u, list.RemoveIf(isOdd));
  EXPECT_EQ((std::vector<int>{4, 2, 6}), Items(list));
  EXPECT_EQ(0u, list.RemoveIf(isOdd));
  EXPECT_EQ(3u, list.size());
}

TEST(List, AssignReplacesWhatWasThere) {
  MemoryPool pool(64);
  List<int> list;
  const std::vector<int> three{1, 2, 3};
  list.Assign(three, pool);
  EXPECT_EQ(three, Items(list));
  const std::vector<int> one{9};
  list.Assign(one, pool);
  EXPECT_EQ(one, Items(list));
  list.Assign({}, pool);
  EXPECT_TRUE(list.empty());
}

TEST(List, AssignTakesAPartOfItself) {
  MemoryPool pool(64);
  List<int> list;
  list.Assign(std::vector<int>{1, 2, 3, 4}, pool);
  list.Assign({list.begin() + 1, 3}, pool);
  EXPECT_EQ((std::vector<int>{2, 3, 4}), Items(list));
}

TEST(List, RoomThatWasAskedForIsNotMoved) {
  MemoryPool pool(64);
  List<int> list;
  list.Assign(std::vector<int>{1}, pool, 100);
  const int* const storage = list.begin();
  for (int i = 2; i <= 100; ++i) list.Append(i, pool);
  EXPECT_EQ(storage, list.begin());
  EXPECT_EQ(100, list[99]);
}

TEST(List, ACopySharesTheStorageAndACloneDoesNot) {
  MemoryPool pool(64);
  List<int> list;
  list.Assign(std::vector<int>{1, 2}, pool);
  List<int> copy = list;
  List<int> clone = list.Clone(pool);
  list[0] = 7;
  EXPECT_EQ(7, copy[0]);
  EXPECT_EQ(1, clone[0]);
  EXPECT_EQ(2u, clone.size());
  EXPECT_TRUE(List<int>().Clone(pool).empty());
}

}  // namespace
}  // namespace corvel
