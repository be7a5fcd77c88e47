#include "host/scene_parents.h"

#include <gtest/gtest.h>

#include <string>

#include "host/scene_of_text.h"
#include "support/small_stack.h"

namespace corvel::host {

namespace {

// Objects with these numbers; those below 10 are projects.
std::vector<SceneObject> Objects(std::initializer_list<std::uint32_t> numbers) {
  std::vector<SceneObject> objects;
  objects.reserve(numbers.size());
  for (const std::uint32_t number : numbers) objects.push_back({number, kNoObject, 0, number < 10});
  return objects;
}

// Numbers of the parents, 0 for none.
std::vector<std::uint32_t> ParentNumbers(std::vector<SceneObject> objects,
                                         const std::vector<ParentLink>& links) {
  SettleParents(links, objects);
  std::vector<std::uint32_t> numbers;
  numbers.reserve(objects.size());
  for (const SceneObject& object : objects) {
    numbers.push_back(object.parent == kNoObject ? 0 : objects[object.parent].number);
  }
  return numbers;
}

using Numbers = std::vector<std::uint32_t>;

}  // namespace

TEST(SceneParents, WithoutARelationTheFirstProjectIsTheParent) {
  EXPECT_EQ((Numbers{0, 3, 3, 3}), ParentNumbers(Objects({3, 5, 11, 12}), {}));
}

TEST(SceneParents, WithoutAProjectThereMayBeNoParent) {
  EXPECT_EQ((Numbers{0, 11}), ParentNumbers(Objects({11, 12}), {{50, 12, 11}}));
}

TEST(SceneParents, TheRelationWithTheSmallestNumberCounts) {
  EXPECT_EQ((Numbers{0, 1, 1, 12}),
            ParentNumbers(Objects({1, 11, 12, 13}), {{52, 13, 11}, {50, 13, 12}, {51, 13, 11}}));
}

TEST(SceneParents, TheFirstProjectNeverHasAParent) {
  EXPECT_EQ((Numbers{0, 11, 1}), ParentNumbers(Objects({1, 2, 11}), {{50, 1, 11}, {51, 2, 11}}));
}

TEST(SceneParents, AParentThatIsNoObjectOrTheObjectItselfIsNone) {
  EXPECT_EQ((Numbers{0, 1, 11}),
            ParentNumbers(Objects({1, 11, 12}),
                          {{50, 12, 99}, {51, 12, 12}, {52, 12, 11}, {53, 99, 11}}));
}

TEST(SceneParents, CirclesStay) {
  EXPECT_EQ((Numbers{0, 12, 11}),
            ParentNumbers(Objects({1, 11, 12}), {{50, 11, 12}, {51, 12, 11}}));
}

TEST(SceneParents, ACircleIsBrokenAtItsSmallestNumber) {
  auto objects = Objects({1, 11, 12, 13, 14});
  // 12 -> 14 -> 13 -> 12, and 11 hangs on it.
  SettleParents({{50, 12, 14}, {51, 14, 13}, {52, 13, 12}, {53, 11, 13}}, objects);
  EXPECT_EQ((std::vector<std::uint32_t>{kNoObject, 3, kNoObject, 2, 3}),
            ParentsWithoutCircles(objects));
}

TEST(SceneParents, SeveralCirclesAreBrokenOneByOne) {
  auto objects = Objects({11, 12, 13, 14});
  SettleParents({{50, 11, 12}, {51, 12, 11}, {52, 13, 14}, {53, 14, 13}}, objects);
  EXPECT_EQ((std::vector<std::uint32_t>{kNoObject, 0, kNoObject, 2}),
            ParentsWithoutCircles(objects));
}

TEST(SceneParents, AChainOfAMillionIsWalkedWithoutRecursion) {
  constexpr std::uint32_t kCount = 1000000;
  std::vector<SceneObject> objects;
  std::vector<ParentLink> links;
  for (std::uint32_t i = 0; i < kCount; ++i) {
    objects.push_back({i + 10, kNoObject, 0, false});
    links.push_back({i + 1, i + 10, i + 11});  // each hangs on the next
  }
  links.back().parent = 10;  // and the last on the first
  test::RunOnSmallStack([&] {
    SettleParents(links, objects);
    const auto parents = ParentsWithoutCircles(objects);
    EXPECT_EQ(kNoObject, parents.front());
    EXPECT_EQ(0u, parents.back());
    EXPECT_EQ(2u, parents[1]);
  });
}

}  // namespace corvel::host
