#include "host/viewer_scene.h"

#include <gtest/gtest.h>

#include <string>

#include "host/scene_of_text.h"

namespace corvel::host {

namespace {

const std::string kHouseRecords =
    "#1=IFCPROJECT('p');#5=IFCWALL('w');#6=IFCOPENINGELEMENT('o');"
    "#7=IFCRELVOIDSELEMENT('r',$,$,$,#5,#6);";

LoadedModel Model(const std::string& records) {
  LoadedModel model;
  model.path = u"m.ifc";
  model.scene = SceneOf(records);
  model.flags.resize(model.scene.objects.size());
  return model;
}

ViewerScene SceneWith(LoadedModel first, LoadedModel second = Model(kHouseRecords)) {
  std::vector<LoadedModel> models;
  models.push_back(std::move(first));
  models.push_back(std::move(second));
  return {std::move(models), {}};
}

// "avs": active, visible, selected; "-" where it is not.
std::string StateText(const ViewerScene& scene, HostObject object) {
  const ObjectState state = scene.StateOf(object);
  EXPECT_LE(state.visible, 1u);
  return std::string(state.active != 0 ? "a" : "-") + (state.visible != 0 ? "v" : "-") +
         (state.selected != 0 ? "s" : "-");
}

constexpr HostObject Handle(HostObject project, HostObject place) { return project << 32 | place; }

constexpr ObjectFlags kInactive{false, true, false};
constexpr ObjectFlags kHidden{true, false, false};
constexpr ObjectFlags kSelected{true, true, true};

}  // namespace

TEST(ViewerScene, ObjectsOfAllModelsAreListedInOrder) {
  const ViewerScene scene = SceneWith(Model("#9=IFCSLAB();#3=IFCPROJECT();"));
  EXPECT_EQ((std::vector<HostObject>{1, 2}), scene.Projects());
  EXPECT_EQ((std::vector<HostObject>{Handle(1, 1), Handle(1, 2), Handle(2, 1), Handle(2, 2),
                                     Handle(2, 3)}),
            scene.Objects());
}

TEST(ViewerScene, TheObjectsOfAProjectAreThoseOfAllThatNameIt) {
  const ViewerScene scene = SceneWith(Model("#9=IFCSLAB();#3=IFCPROJECT();"));
  for (HostObject project = 0; project <= 3; ++project) {
    std::vector<HostObject> wanted;
    for (const HostObject object : scene.Objects()) {
      if (scene.InfoOf(object).project == project) wanted.push_back(object);
    }
    EXPECT_EQ(wanted, scene.ObjectsOf(project)) << project;
  }
}

TEST(ViewerScene, TheProjectOfAnObjectIsThatOfItsRecord) {
  const ViewerScene scene = SceneWith(Model(kHouseRecords));
  for (const HostObject object : {Handle(0, 1), Handle(1, 1), Handle(2, 3), Handle(3, 1)}) {
    EXPECT_EQ(scene.InfoOf(object).project, scene.ProjectOf(object)) << object;
  }
}

TEST(ViewerScene, TheRecordOfAnObjectNamesItsProjectClassNumberAndParent) {
  const ViewerScene scene = SceneWith(Model(kHouseRecords));
  const ObjectInfo info = scene.InfoOf(Handle(2, 3));
  EXPECT_EQ(2u, info.project);
  EXPECT_STREQ("IfcOpeningElement", info.className);
  EXPECT_EQ(6u, info.number);
  EXPECT_EQ(Handle(2, 2), info.parent);
  EXPECT_EQ(Handle(2, 1), scene.InfoOf(Handle(2, 2)).parent);
  EXPECT_EQ(0u, scene.InfoOf(Handle(2, 1)).parent);
}

TEST(ViewerScene, AnObjectThatIsNotThereHasZeroes) {
  const ViewerScene scene = SceneWith(Model(kHouseRecords));
  for (const HostObject object :
       {HostObject{0}, HostObject{1}, Handle(3, 1), Handle(1, 4), Handle(1, 0), ~HostObject{0}}) {
    const ObjectInfo info = scene.InfoOf(object);
    EXPECT_EQ(0u, info.number);
    EXPECT_EQ(0u, info.parent);
    EXPECT_STREQ("", info.className);
  }
  EXPECT_EQ("---", StateText(scene, 0));
  EXPECT_EQ("---", StateText(scene, Handle(3, 1)));
}

TEST(ViewerScene, AtFirstEverythingIsActiveAndVisibleAndNothingSelected) {
  const ViewerScene scene = SceneWith(Model(kHouseRecords));
  for (const HostObject object : scene.Objects()) EXPECT_EQ("av-", StateText(scene, object));
  EXPECT_TRUE(scene.AnythingIsActive());
  EXPECT_FALSE(scene.AnythingIsSelected());
}

TEST(ViewerScene, OneSelectedObjectOfAnyModelIsASelection) {
  LoadedModel model = Model(kHouseRecords);
  model.flags.assign(3, {});
  model.flags[2] = kSelected;
  EXPECT_TRUE(SceneWith(Model(kHouseRecords), model).AnythingIsSelected());
}

TEST(ViewerScene, AProjectHasTheStateOfItsObjects) {
  LoadedModel model = Model(kHouseRecords);
  model.flags[1] = kInactive;
  model.flags[2] = kInactive;
  EXPECT_EQ("---", StateText(SceneWith(model), Handle(1, 1)));
  model.flags[2] = kSelected;
  EXPECT_EQ("avs", StateText(SceneWith(model), Handle(1, 1)));
  model.flags = {kSelected, {}, {}};
  EXPECT_EQ("av-", StateText(SceneWith(model), Handle(1, 1)));
}

// A merge of what is visible asks for both at once.
TEST(ViewerScene, AProjectIsVisibleWhenAnActiveObjectIs) {
  LoadedModel model = Model(kHouseRecords);
  model.flags[1] = kInactive;
  model.flags[2] = kHidden;
  EXPECT_EQ("a--", StateText(SceneWith(model), Handle(1, 1)));
  model.flags[1] = {};
  EXPECT_EQ("av-", StateText(SceneWith(model), Handle(1, 1)));
}

TEST(ViewerScene, AProjectAloneHasAStateOfItsOwn) {
  LoadedModel model = Model("#1=IFCPROJECT();");
  EXPECT_EQ("av-", StateText(SceneWith(model), Handle(1, 1)));
  model.flags[0] = {false, false, true};
  EXPECT_EQ("--s", StateText(SceneWith(model), Handle(1, 1)));
}

TEST(ViewerScene, SeveralProjectsAloneHaveStatesOfTheirOwn) {
  LoadedModel model = Model("#1=IFCPROJECT();#2=IFCPROJECT();");
  model.flags[0] = kInactive;
  const ViewerScene scene = SceneWith(model);
  EXPECT_EQ("-v-", StateText(scene, Handle(1, 1)));
  EXPECT_EQ("av-", StateText(scene, Handle(1, 2)));
}

TEST(ViewerScene, AModelWithoutObjectsHasOneThatStandsForItsProject) {
  const ViewerScene scene = SceneWith(LoadedModel{u"broken.ifc", {}, {}, {}});
  EXPECT_EQ(Handle(1, 1), scene.Objects().front());
  const ObjectInfo info = scene.InfoOf(Handle(1, 1));
  EXPECT_EQ(1u, info.project);
  EXPECT_EQ(0u, info.number);
  EXPECT_EQ("av-", StateText(scene, Handle(1, 1)));
}

TEST(ViewerScene, VisibilityCanBeSetAndCarriesOverToTheProject) {
  LoadedModel model = Model(kHouseRecords);
  model.flags[1] = kHidden;
  model.flags[2] = kHidden;
  ViewerScene scene = SceneWith(model);
  EXPECT_EQ("a--", StateText(scene, Handle(1, 1)));
  scene.SetVisible(Handle(1, 3), true);
  EXPECT_EQ("av-", StateText(scene, Handle(1, 3)));
  EXPECT_EQ("av-", StateText(scene, Handle(1, 1)));
  EXPECT_EQ("a--", StateText(scene, Handle(1, 2)));
  scene.SetVisible(Handle(1, 3), false);
  EXPECT_EQ("a--", StateText(scene, Handle(1, 1)));
  scene.SetVisible(Handle(9, 3), true);
  scene.SetVisible(Handle(1, 9), true);
}

TEST(ViewerScene, NothingIsActiveWhenEveryObjectIsInactive) {
  LoadedModel model = Model(kHouseRecords);
  model.flags.assign(3, kInactive);
  EXPECT_FALSE(SceneWith(model, model).AnythingIsActive());
  EXPECT_TRUE(SceneWith(model).AnythingIsActive());
}

TEST(ViewerScene, EveryProjectHasAnOffset) {
  std::vector<LoadedModel> models;
  models.push_back(Model(kHouseRecords));
  models.push_back(Model(kHouseRecords));
  models[1].offsetMm = {1.5, -2, 3};
  const ViewerScene scene(std::move(models), {7, 8, 9});
  const auto offsets = scene.Offsets();
  ASSERT_EQ(2u, offsets.size());
  EXPECT_EQ(1u, offsets[0].project);
  EXPECT_EQ(0, offsets[0].x);
  EXPECT_EQ(2u, offsets[1].project);
  EXPECT_EQ(1.5, offsets[1].x);
  EXPECT_EQ(-2, offsets[1].y);
  EXPECT_EQ(3, offsets[1].z);
  EXPECT_EQ((Point{7, 8, 9}), scene.CenterMetres());
}

TEST(ViewerScene, APathIsThatOfAProject) {
  const ViewerScene scene = SceneWith(Model(kHouseRecords));
  EXPECT_EQ(u"m.ifc", scene.PathOf(2));
  EXPECT_EQ(u"", scene.PathOf(0));
  EXPECT_EQ(u"", scene.PathOf(3));
}

}  // namespace corvel::host
