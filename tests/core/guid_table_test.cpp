#include "core/guid_table.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <deque>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace corvel {
namespace {

// Objects that nobody looks at.
IFC::VirtualIfcRoot* Fake(std::uint64_t id) {
  return reinterpret_cast<IFC::VirtualIfcRoot*>(id * 16);
}

TEST(GuidTable, AnEmptyOneHasNothing) {
  const GuidTable table;
  EXPECT_EQ(nullptr, table.Find("a"));
  EXPECT_EQ(0u, table.Size());
  EXPECT_TRUE(table.begin() == table.end());
}

TEST(GuidTable, TheSecondHolderOfAGuidIsRefused) {
  GuidTable table;
  EXPECT_TRUE(table.Enter("a", Fake(1)));
  EXPECT_FALSE(table.Enter(std::string("a"), Fake(2)));
  EXPECT_EQ(Fake(1), table.Find("a"));
  EXPECT_EQ(1u, table.Size());
}

TEST(GuidTable, SetTakesTheGuidFromItsHolder) {
  GuidTable table;
  table.Set("a", Fake(1));
  table.Set("a", Fake(2));
  EXPECT_EQ(Fake(2), table.Find("a"));
  EXPECT_EQ(1u, table.Size());
}

TEST(GuidTable, TheEmptyTextIsAKeyLikeAnyOther) {
  GuidTable table;
  EXPECT_TRUE(table.Enter("", Fake(1)));
  EXPECT_EQ(Fake(1), table.Find(""));
}

TEST(GuidTable, ClearForgetsAllAndTheTableServesOn) {
  GuidTable table;
  table.Enter("a", Fake(1));
  table.Clear();
  EXPECT_EQ(nullptr, table.Find("a"));
  EXPECT_EQ(0u, table.Size());
  EXPECT_TRUE(table.Enter("a", Fake(2)));
  EXPECT_EQ(Fake(2), table.Find("a"));
}

TEST(GuidTable, ItDoesWhatAMapDoesAndKeepsTheOrderOfEntry) {
  std::mt19937 random(1);
  std::deque<std::string> texts;  // which the table borrows
  GuidTable table;
  std::map<std::string, IFC::VirtualIfcRoot*> model;
  std::vector<std::string> order;
  for (int step = 0; step < 20000; ++step) {
    const std::string& guid = texts.emplace_back(std::to_string(random() % 8000));
    auto* const root = Fake(1 + random() % 1000);
    const bool isNew = model.count(guid) == 0;
    if (isNew) order.push_back(guid);
    if (random() % 4 == 0) {
      table.Set(guid, root);
      model[guid] = root;
    } else {
      ASSERT_EQ(isNew, table.Enter(guid, root));
      if (isNew) model[guid] = root;
    }
    ASSERT_EQ(model.size(), table.Size());
    const std::string asked = std::to_string(random() % 9000);
    const auto known = model.find(asked);
    ASSERT_EQ(known == model.end() ? nullptr : known->second, table.Find(asked));
  }
  std::vector<std::string> walked;
  for (const auto& [guid, root] : table) {
    walked.emplace_back(guid);
    ASSERT_EQ(model[walked.back()], root);
  }
  EXPECT_EQ(order, walked);
}

}  // namespace
}  // namespace corvel
