// What objects hold beside their attributes.
#include <gtest/gtest.h>

#include <array>

#include "core/carried.h"
#include "core/main_container.h"
#include "support/graph.h"

namespace corvel {
namespace {

class Holder final : public IFC::IfcComplexType {
 public:
  void collectChildren(IFC::ChildQueue& queue) const override { queue.Append(attribute, false); }
  bool hasNoLiveMembers() const override { return true; }

  IFC::IfcEntity* attribute = nullptr;
};

class Carried : public testing::Test {
 protected:
  Carried() { holder_.attribute = &inAttribute_; }

  void Carry() {
    table_.Set(holder_, {.argumentCount = 3, .arguments = arguments_, .children = children_});
  }

  Holder holder_;
  Holder inAttribute_;
  Holder carried_;
  std::array<CarriedArgument, 1> arguments_{{{.index = 2, .value = &carried_}}};
  std::array<IFC::IfcEntity*, 1> children_{&carried_};
  CarriedTable table_;
};

TEST_F(Carried, AnObjectCarriesNothingAtFirst) {
  EXPECT_FALSE(holder_.carries);
  EXPECT_EQ(nullptr, CarriedTable::Find(holder_));
  EXPECT_FALSE(CarriesLiveObject(holder_));
}

TEST_F(Carried, ArgumentsAreFoundByTheirPlace) {
  Carry();
  const CarriedParts* const parts = CarriedTable::Find(holder_);
  ASSERT_NE(nullptr, parts);
  EXPECT_EQ(3u, parts->argumentCount);
  EXPECT_EQ(&carried_, parts->Find(2)->value);
  EXPECT_EQ(nullptr, parts->Find(1));
}

TEST_F(Carried, CarriedObjectsAreChildrenThatCanBeLost) {
  Carry();
  IFC::ChildQueue queue;
  holder_.CollectAllChildren(queue);
  ASSERT_EQ(2u, queue.Size());
  EXPECT_EQ(&inAttribute_, queue[0].entity);
  EXPECT_FALSE(queue[0].canLose);
  EXPECT_EQ(&carried_, queue[1].entity);
  EXPECT_TRUE(queue[1].canLose);
}

TEST_F(Carried, WhatIsSetReplacesWhatWasCarried) {
  Carry();
  table_.Set(holder_, {.argumentCount = 1});
  EXPECT_EQ(1u, CarriedTable::Find(holder_)->argumentCount);
  IFC::ChildQueue queue;
  holder_.CollectAllChildren(queue);
  EXPECT_EQ(1u, queue.Size());
}

TEST_F(Carried, NothingIsFoundBehindTheTable) {
  {
    CarriedTable other;
    other.Set(holder_, {.argumentCount = 1});
  }
  EXPECT_TRUE(holder_.carries);
  EXPECT_EQ(nullptr, CarriedTable::Find(holder_));
}

TEST_F(Carried, ADroppedArgumentIsNotFoundAnyMore) {
  Carry();
  CarriedTable::Drop(holder_, 1);
  EXPECT_NE(nullptr, CarriedTable::Find(holder_)->Find(2));
  CarriedTable::Drop(holder_, 2);
  EXPECT_EQ(nullptr, CarriedTable::Find(holder_)->Find(2));
  EXPECT_EQ(3u, CarriedTable::Find(holder_)->argumentCount);
}

TEST_F(Carried, ADeletedObjectIsNoLiveOne) {
  Carry();
  EXPECT_TRUE(CarriesLiveObject(holder_));
  carried_.marker = IFC::kDeleted;
  EXPECT_FALSE(CarriesLiveObject(holder_));
}

TEST_F(Carried, AContainerFindsTheParentsOfWhatIsCarried) {
  IFC::MainContainer container([](const char*, const WideString&, int) { return 0; }, nullptr,
                               1024);
  for (IFC::IfcEntity* const entity :
       std::initializer_list<IFC::IfcEntity*>{&holder_, &inAttribute_, &carried_}) {
    container.AddEntity(entity);
  }
  container.Carried().Set(holder_, {.arguments = arguments_, .children = children_});
  container.FillParentsLists();
  EXPECT_TRUE(carried_.parents.Contains(&holder_));
}

}  // namespace
}  // namespace corvel
