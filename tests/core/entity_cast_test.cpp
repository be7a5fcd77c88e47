#include "core/entity_cast.h"

#include <gtest/gtest.h>

#include <array>
#include <utility>

#include "support/graph.h"

namespace corvel {
namespace {

using test::GraphNode;
using test::GraphRoot;
using test::Of;

// Selects as the schema classes have them: bases without data, some inside others, and interfaces
// as virtual bases.
class OuterSelect : public virtual IFC::IfcEntity {
 protected:
  ~OuterSelect() = default;
};
class InnerSelect : public OuterSelect {
 protected:
  ~InnerSelect() = default;
};
class OtherSelect : public virtual IFC::IfcEntity {
 protected:
  ~OtherSelect() = default;
};
class Interface : public virtual IFC::IfcEntity {
 public:
  std::uint64_t data = 4711;

 protected:
  ~Interface() = default;
};

class Product : public GraphRoot, public OtherSelect {};
class Wall : public Product, public InnerSelect, public virtual Interface {
 public:
  const char16_t* getClassName() const override { return u"Wall"; }
};
class WallCase final : public Wall {
 public:
  const char16_t* getClassName() const override { return u"WallCase"; }
};
class Value final : public IFC::IfcSimpleType, public InnerSelect, public OtherSelect {
 public:
  const char16_t* getClassName() const override { return u"Value"; }
  bool isComplexType() const override { return false; }
  void collectChildren(IFC::ChildQueue& /*queue*/) const override {}
  void read(Parser& /*parser*/) override {}
  void write(StepWriter& /*writer*/) const override {}
  bool hasNoLiveMembers() const override { return false; }
};
// Has the same base twice: a cast to it is ambiguous and fails.
class LeftPart : public GraphNode {};
class RightPart : public GraphNode {};
class Twice final : public LeftPart, public RightPart {
 public:
  const char16_t* getClassName() const override { return u"Twice"; }
  bool isComplexType() const override { return true; }
  void collectChildren(IFC::ChildQueue& /*queue*/) const override {}
  void read(Parser& /*parser*/) override {}
  void write(StepWriter& /*writer*/) const override {}
  bool hasNoLiveMembers() const override { return false; }
};

template <class Target>
void ExpectSameAsDynamicCast(IFC::IfcEntity* entity) {
  EXPECT_EQ(dynamic_cast<Target*>(entity), EntityCast<Target>(entity)) << typeid(Target).name();
}

template <class... Targets>
void ExpectSameForAll(IFC::IfcEntity* entity) {
  (ExpectSameAsDynamicCast<Targets>(entity), ...);
}

TEST(EntityCast, ItGivesWhatDynamicCastGivesFirstAndEverAfter) {
  Wall walls[2];
  WallCase cases[2];
  Value values[2];
  Twice twice[2];
  Of<u"IfcPoint", GraphNode> points[2];
  for (int round = 0; round < 3; ++round) {
    for (IFC::IfcEntity* const entity : std::initializer_list<IFC::IfcEntity*>{
             &walls[0], &cases[0], &values[0], &twice[0], &points[0], &walls[1], &cases[1],
             &values[1], &twice[1], &points[1]}) {
      ExpectSameForAll<GraphNode, GraphRoot, Product, Wall, WallCase, Value, OuterSelect,
                       InnerSelect, OtherSelect, Interface, IFC::VirtualIfcRoot,
                       IFC::VIfcRelAssigns, IFC::IfcComplexType, IFC::IfcSimpleType, LeftPart,
                       RightPart, IFC::IfcEntity>(entity);
    }
  }
}

TEST(EntityCast, TheTargetIsUsable) {
  WallCase wall;
  wall.guid = "guid";
  IFC::IfcEntity* const entity = &wall;
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(4711u, EntityCast<Interface>(entity)->data);
    EXPECT_STREQ("guid", EntityCast<IFC::VirtualIfcRoot>(entity)->getGlobalId());
  }
}

TEST(EntityCast, NullGivesNull) {
  EXPECT_EQ(nullptr, EntityCast<GraphNode>(static_cast<IFC::IfcEntity*>(nullptr)));
}

// Each is a class of its own.
template <int number>
class Numbered final : public GraphNode {
 public:
  const char16_t* getClassName() const override { return u"Numbered"; }
};

template <int... numbers>
void CastManyClasses(std::integer_sequence<int, numbers...>) {
  std::tuple<Numbered<numbers>...> objects;
  for (int round = 0; round < 2; ++round) {
    (ExpectSameForAll<GraphNode, GraphRoot, Numbered<7>>(&std::get<numbers>(objects)), ...);
  }
}

TEST(EntityCast, ItRemembersMoreClassesThanItsTableHasAtFirst) {
  CastManyClasses(std::make_integer_sequence<int, 100>());
}

TEST(ClassTest, ItAdmitsWhatDynamicCastAdmits) {
  ClassTest isProduct(IsOfClass<Product>);
  Wall wall, otherWall;
  WallCase wallCase;
  Value value;
  for (int round = 0; round < 3; ++round) {
    EXPECT_TRUE(isProduct.Admits(&wall));
    EXPECT_TRUE(isProduct.Admits(&otherWall));
    EXPECT_FALSE(isProduct.Admits(&value));
    EXPECT_FALSE(isProduct.Admits(&value));
    EXPECT_FALSE(isProduct.Admits(nullptr));
    EXPECT_TRUE(isProduct.Admits(&wallCase));
  }
}

TEST(ClassTest, EachClassIsAskedAboutOnce) {
  static int asked = 0;
  asked = 0;
  ClassTest test([](const IFC::IfcEntity* entity) {
    ++asked;
    return IsOfClass<Product>(entity);
  });
  Wall wall;
  WallCase wallCase;
  for (int round = 0; round < 5; ++round) {
    test.Admits(&wall);
    test.Admits(&wallCase);
  }
  EXPECT_EQ(2, asked);
}

TEST(ClassMemory, WhatHasNotBeenMetIsNotFound) {
  ClassMemory memory;
  EXPECT_EQ(nullptr, memory.Find(&typeid(Wall)));
  memory.Remember(&typeid(Wall), -16);
  ASSERT_NE(nullptr, memory.Find(&typeid(Wall)));
  EXPECT_EQ(-16, *memory.Find(&typeid(Wall)));
  EXPECT_EQ(nullptr, memory.Find(&typeid(Value)));
}

}  // namespace
}  // namespace corvel
