#include "core/open_table.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace corvel {

namespace {

struct Slot {
  int key = 0;
  int value = 0;
  std::size_t hash = 0;

  bool IsFree() const { return key == 0; }
  std::size_t Hash() const { return hash; }
};

// Keys hash to their last decimal digit: most stand far behind the slot that their hash names.
class Table {
  static std::size_t HashOf(int key) { return static_cast<std::size_t>(key % 10); }
  static auto Is(int key) {
    return [key](const Slot& slot) { return slot.key == key; };
  }

 public:
  void Set(int key, int value) {
    Slot& slot = slots_.Enter(HashOf(key), Is(key));
    slot = {key, value, HashOf(key)};
  }
  int Get(int key) const {
    const Slot* const slot = slots_.Find(HashOf(key), Is(key));
    return slot == nullptr ? -1 : slot->value;
  }
  void Clear() { slots_.Clear(); }

 private:
  OpenTable<Slot, 4> slots_;
};

}  // namespace

TEST(OpenTable, AnEmptyOneHasNothing) { EXPECT_EQ(-1, Table().Get(1)); }

TEST(OpenTable, KeysWithTheSameHashStandBesideEachOther) {
  Table table;
  table.Set(9, 1);
  table.Set(19, 2);
  table.Set(20, 3);
  EXPECT_EQ(1, table.Get(9));
  EXPECT_EQ(2, table.Get(19));
  EXPECT_EQ(3, table.Get(20));
  EXPECT_EQ(-1, table.Get(29));
}

TEST(OpenTable, EnteringAKeyAgainFindsItsSlot) {
  Table table;
  table.Set(7, 1);
  table.Set(7, 2);
  EXPECT_EQ(2, table.Get(7));
}

TEST(OpenTable, ItDoesWhatAMapDoesWhileItGrows) {
  Table table;
  std::map<int, int> map;
  std::mt19937 random(5);  // NOLINT: the same keys every time
  for (int i = 0; i < 2000; ++i) {
    const int key = static_cast<int>(random() % 700) + 1;
    table.Set(key, i);
    map[key] = i;
  }
  for (int key = 1; key <= 700; ++key) {
    ASSERT_EQ(map.contains(key) ? map[key] : -1, table.Get(key)) << key;
  }
}

TEST(OpenTable, ClearForgetsAllAndTheTableServesOn) {
  Table table;
  table.Set(7, 1);
  table.Clear();
  EXPECT_EQ(-1, table.Get(7));
  table.Set(8, 2);
  EXPECT_EQ(2, table.Get(8));
}

TEST(OpenTable, ASlotThatIsNotFilledStaysFree) {
  OpenTable<Slot, 4> slots;
  const auto isOne = [](const Slot& slot) { return slot.key == 1; };
  for (int i = 0; i < 100; ++i) EXPECT_TRUE(slots.Enter(1, isOne).IsFree());
  EXPECT_EQ(nullptr, slots.Find(1, isOne));
}

TEST(SlotOf, TableOfConstantsIsSearchedBehindItsEndFromTheStart) {
  const Slot slots[] = {{13, 1, 3}, {}, {}, {3, 2, 3}};
  const auto is = [](int key) { return [key](const Slot& slot) { return slot.key == key; }; };
  EXPECT_EQ(&slots[3], &SlotOf(slots, 3, 3, is(3)));
  EXPECT_EQ(&slots[0], &SlotOf(slots, 3, 3, is(13)));
  EXPECT_EQ(&slots[1], &SlotOf(slots, 3, 3, is(23)));
}

}  // namespace corvel
