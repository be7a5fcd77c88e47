#include "host/object_lists.h"

#include <gtest/gtest.h>

#include <string>

#include "host/scene_of_text.h"

namespace corvel::host {

namespace {

using Texts = std::vector<WideString>;

LoadedModel Model() {
  LoadedModel model;
  model.path = u"m.ifc";
  model.scene = SceneOf(
      "#1=IFCPROJECT('0YvCt7Q5n0JgN0tW6Vw4pA');#5=IFCWALL('twin');#6=IFCWALLSTANDARDCASE('b');"
      "#7=IFCWALL('c');#8=IFCDOOR('twin');");
  return model;
}

// The numbers of the objects that a list selects; its mistakes go to `mistakes`.
std::vector<std::uint32_t> Selected(const Texts& items, Texts* mistakes = nullptr) {
  LoadedModel model = Model();
  const Texts told = ApplyList({ListKind::kSelect, 0, items}, model);
  if (mistakes != nullptr) {
    *mistakes = told;
  } else {
    EXPECT_EQ(Texts{}, told);
  }
  std::vector<std::uint32_t> numbers;
  for (std::size_t i = 0; i < model.flags.size(); ++i) {
    if (model.flags[i].selected) numbers.push_back(model.scene.objects[i].number);
  }
  return numbers;
}

using Numbers = std::vector<std::uint32_t>;

Texts MistakesOf(const Texts& items) {
  Texts mistakes;
  Selected(items, &mistakes);
  return mistakes;
}

}  // namespace

TEST(ObjectLists, ANumberNamesOneObject) { EXPECT_EQ((Numbers{7}), Selected({u"#7"})); }

TEST(ObjectLists, AClassNamesItsOwnObjectsInAnyCase) {
  EXPECT_EQ((Numbers{5, 7}), Selected({u"IfcWall"}));
  EXPECT_EQ((Numbers{5, 7}), Selected({u"IFCWALL"}));
  EXPECT_EQ((Numbers{6}), Selected({u"ifcwallstandardcase"}));
}

TEST(ObjectLists, AGuidNamesAllThatHaveIt) {
  EXPECT_EQ((Numbers{6}), Selected({u"b"}));
  EXPECT_EQ((Numbers{5, 8}), Selected({u"twin"}));
}

TEST(ObjectLists, ItemsAddUp) {
  EXPECT_EQ((Numbers{5, 6, 7, 8}), Selected({u"IfcWall", u"b", u"#8"}));
}

TEST(ObjectLists, TheProjectStandsForAllObjects) {
  EXPECT_EQ((Numbers{1, 5, 6, 7, 8}), Selected({u"IfcProject"}));
  EXPECT_EQ((Numbers{1, 5, 6, 7, 8}), Selected({u"#1"}));
  EXPECT_EQ((Numbers{1, 5, 6, 7, 8}), Selected({u"0YvCt7Q5n0JgN0tW6Vw4pA"}));
}

TEST(ObjectLists, KindsOfListsChangeDifferentThings) {
  LoadedModel model = Model();
  EXPECT_EQ(Texts{}, ApplyList({ListKind::kHide, 0, {u"#5"}}, model));
  EXPECT_EQ(Texts{}, ApplyList({ListKind::kInactive, 0, {u"#5"}}, model));
  EXPECT_EQ((ObjectFlags{false, false, false}), model.flags[1]);
  EXPECT_EQ(ObjectFlags{}, model.flags[2]);
}

TEST(ObjectLists, EveryItemThatMatchesNothingIsToldInItsOrder) {
  EXPECT_EQ(
      (Texts{u"--select: no object of m.ifc has the GUID zzz",
             u"--select: no object of m.ifc is of the class IfcWal; the nearest there is IfcWall",
             u"--select: no object of m.ifc has the number #2",
             u"--select: no object of m.ifc is of the class ifcdor; the nearest there is IfcDoor"}),
      MistakesOf({u"zzz", u"#5", u"IfcWal", u"#2", u"IfcDoor", u"ifcdor"}));
}

TEST(ObjectLists, TheOptionIsNamed) {
  LoadedModel model = Model();
  EXPECT_EQ(Texts{u"--hide: no object of m.ifc has the number #2"},
            ApplyList({ListKind::kHide, 0, {u"#2"}}, model));
  EXPECT_EQ(Texts{u"--inactive: no object of m.ifc has the number #2"},
            ApplyList({ListKind::kInactive, 0, {u"#2"}}, model));
}

TEST(ObjectLists, GuidsDifferByCase) {
  EXPECT_EQ(Texts{u"--select: no object of m.ifc has the GUID Twin"}, MistakesOf({u"Twin"}));
}

TEST(ObjectLists, NothingMatchesInAModelWithoutObjects) {
  LoadedModel model;
  model.path = u"e.ifc";
  EXPECT_EQ((Texts{u"--hide: no object of e.ifc is of the class IfcWall",
                   u"--hide: no object of e.ifc has the number #1",
                   u"--hide: no object of e.ifc has the GUID x"}),
            ApplyList({ListKind::kHide, 0, {u"IfcWall", u"#1", u"x"}}, model));
}

TEST(ObjectLists, GuidsAreReadOnlyForListsThatNameOne) {
  const std::vector<ObjectList> lists{{ListKind::kHide, 0, {u"#1", u"IFCWALL"}},
                                      {ListKind::kHide, 1, {u"#1", u"2O2Fr$t4X7Zf8NOew3FLOH"}}};
  EXPECT_EQ(SceneTexts::kNone, TextsForLists(lists, 0));
  EXPECT_EQ(SceneTexts::kGuids, TextsForLists(lists, 1));
  EXPECT_EQ(SceneTexts::kNone, TextsForLists(lists, 2));
}

}  // namespace corvel::host
