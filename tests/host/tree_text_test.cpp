#include "host/tree_text.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/scene_of_text.h"
#include "support/quiet_reading.h"
#include "support/small_stack.h"
#include "support/step_text.h"
#include "support/temporary_folder.h"

namespace corvel::host {

namespace {

std::string TextOf(const ModelScene& scene, const TreeLook& look = {}) {
  WideString text;
  const auto take = [&](WideView piece) {
    text += piece;
    return true;
  };
  EXPECT_TRUE(WriteTreeText(scene, take, look));
  return ToUtf8(text);
}

std::string JsonOf(const ModelScene& scene, const TreeLook& look = {}) {
  WideString text;
  const auto take = [&](WideView piece) {
    text += piece;
    return true;
  };
  EXPECT_TRUE(WriteTreeJson(u"m.ifc", scene, take, look));
  return ToUtf8(text);
}

const std::string kHouse =
    "#1=IFCPROJECT('p',$,'House',$);#9=IFCSITE('s',$,$);#5=IFCWALL('w',$,'Wall A');"
    "#6=IFCDOOR('d',$,'');#3=IFCRELAGGREGATES('r',$,$,$,#9,(#6,#5));";

}  // namespace

TEST(TreeText, ChildrenStandBelowTheirParentByAscendingNumber) {
  EXPECT_EQ(
      "#1 IfcProject p House\n"
      "  #9 IfcSite s\n"
      "    #5 IfcWall w Wall A\n"
      "    #6 IfcDoor d\n",
      TextOf(SceneOf(kHouse)));
}

TEST(TreeText, AMissingGuidIsADash) {
  EXPECT_EQ("#1 IfcWall - n\n", TextOf(SceneOf("#1=IFCWALL($,$,'n');")));
}

TEST(TreeText, DepthCountsLevelsFromTheTop) {
  const ModelScene scene = SceneOf(kHouse);
  EXPECT_EQ("#1 IfcProject p House\n", TextOf(scene, LookAt(scene, {1, {}, false})));
  EXPECT_EQ("#1 IfcProject p House\n  #9 IfcSite s\n",
            TextOf(scene, LookAt(scene, {2, {}, false})));
  EXPECT_EQ(TextOf(scene), TextOf(scene, LookAt(scene, {3, {}, false})));
}

TEST(TreeText, ObjectsOfChosenClassesStandSideBySide) {
  const ModelScene scene = SceneOf(kHouse);
  EXPECT_EQ("#9 IfcSite s\n#6 IfcDoor d\n",
            TextOf(scene, LookAt(scene, {0, {u"ifcdoor", u"IfcSite"}, false})));
  EXPECT_EQ("#9 IfcSite s\n", TextOf(scene, LookAt(scene, {2, {u"IfcDoor", u"IfcSite"}, false})));
  EXPECT_EQ((std::vector<WideString>{u"IfcDor; the nearest there is IfcDoor"}),
            MissingClasses(scene, {0, {u"IfcDor", u"IfcSite"}, false}));
}

TEST(TreeText, ObjectsInACircleHaveTheLevelAtWhichTheyAreShown) {
  const ModelScene scene = SceneOf(
      "#5=IFCWALL('a');#6=IFCWALL('b');#10=IFCRELNESTS('r',$,$,$,#6,(#5));"
      "#11=IFCRELNESTS('r',$,$,$,#5,(#6));");
  EXPECT_EQ("#5 IfcWall a\n", TextOf(scene, LookAt(scene, {1, {}, false})));
}

TEST(TreeText, PropertiesStandBehindTheNameWithThoseOfTheType) {
  const std::string records =
      "#1=IFCWALL('w',$,'Wall',$,$,$,$,$,$);#2=IFCWALLTYPE('t',$,'T',$,$,(#3),$,$,$,.STANDARD.);"
      "#3=IFCPROPERTYSET('p',$,'Pset_A',$,(#4,#5));#4=IFCPROPERTYSINGLEVALUE('X',$,IFCLABEL('t'),$)"
      ";"
      "#5=IFCPROPERTYSINGLEVALUE('Y',$,IFCREAL(2.),$);#6=IFCRELDEFINESBYTYPE('r',$,$,$,(#1),#2);"
      "#7=IFCPROPERTYSET('q',$,'Pset_A',$,(#8));#8=IFCPROPERTYSINGLEVALUE('X',$,IFCLABEL('w'),$);"
      "#9=IFCRELDEFINESBYPROPERTIES('s',$,$,$,(#1),#7);";
  const test::QuietReading quiet;
  const test::TemporaryFolder folder;
  const WideString path = folder.Write("m.ifc", test::ModelFile(records, "IFC4"));
  std::vector<WideString> messages;
  const auto properties = ModelProperties::Read(path, false, folder.Path(), messages);
  ASSERT_NE(nullptr, properties);
  TreeLook look;
  look.properties = properties.get();
  const ModelScene scene = ReadScene(path, SceneTexts::kGuidsAndNames);
  EXPECT_EQ("#1 IfcWall w Wall  | Pset_A.X = 'w'  | Pset_A.Y = 2\n", TextOf(scene, look));
  EXPECT_NE(std::string::npos,
            JsonOf(scene, look).find("\"properties\":{\"Pset_A.X\":\"'w'\",\"Pset_A.Y\":\"2\"}}"));
}

TEST(TreeText, EntriesOfAContainerAreNamedAsInputs) {
  WideString text;
  const TextSink sink = [&](WideView piece) {
    text += piece;
    return true;
  };
  EXPECT_TRUE(WriteEntriesText(u"c.olf", {{u"a.ifc", 12}, {u"b\x1b.ifc", 0}}, sink));
  EXPECT_TRUE(WriteEntriesJson(u"c.olf", {{u"a.ifc", 12}}, sink));
  EXPECT_EQ(
      "c.olf|a.ifc  12 bytes\nc.olf|b?.ifc  0 bytes\n"
      "{\"file\":\"c.olf\",\"entries\":[{\"name\":\"a.ifc\",\"bytes\":12}]}\n",
      ToUtf8(text));
}

TEST(TreeText, NothingGivesNothing) { EXPECT_EQ("", TextOf(SceneOf(""))); }

TEST(TreeText, ControlCharactersAreNotShown) {
  EXPECT_EQ("#1 IfcWall g?[2J a?b\n", TextOf(SceneOf("#1=IFCWALL('g\x1b[2J',$,'a\nb');")));
}

TEST(TreeText, ACircleIsShownAtTheTopLevel) {
  EXPECT_EQ(
      "#1 IfcProject p\n"
      "  #4 IfcSite s\n"
      "#5 IfcWall a\n"
      "  #7 IfcWall c\n"
      "    #6 IfcWall b\n"
      "    #8 IfcDoor d\n",
      TextOf(SceneOf("#1=IFCPROJECT('p');#4=IFCSITE('s');#5=IFCWALL('a');#6=IFCWALL('b');"
                     "#7=IFCWALL('c');#8=IFCDOOR('d');#10=IFCRELNESTS('r',$,$,$,#6,(#5));"
                     "#11=IFCRELNESTS('r',$,$,$,#7,(#6,#8));#12=IFCRELNESTS('r',$,$,$,#5,(#7));")));
}

TEST(TreeText, ObjectsWithoutAProjectStandAtTheTopLevel) {
  EXPECT_EQ("#5 IfcWall a\n#6 IfcWall b\n", TextOf(SceneOf("#5=IFCWALL('a');#6=IFCWALL('b');")));
}

TEST(TreeText, DeepLinesTellTheirDepth) {
  std::string records = "#1=IFCWALL('g');";
  for (int i = 2; i <= 40; ++i) {
    const std::string number = std::to_string(i);
    records.append("#").append(number).append("=IFCWALL('g');#").append(std::to_string(i + 100));
    records.append("=IFCRELNESTS('r',$,$,$,#").append(std::to_string(i - 1)).append(",(#");
    records.append(number).append("));");
  }
  const std::string text = TextOf(SceneOf(records));
  const std::string margin(64, ' ');
  EXPECT_NE(std::string::npos, text.find("\n" + margin + "#33 IfcWall g\n")) << text;
  EXPECT_NE(std::string::npos, text.find("\n" + margin + "[33] #34 IfcWall g\n")) << text;
  EXPECT_TRUE(text.ends_with("\n" + margin + "[39] #40 IfcWall g\n")) << text;
}

TEST(TreeText, ATreeAHundredThousandDeepIsShownWithoutRecursion) {
  constexpr int kDepth = 100000;
  ModelScene scene;
  scene.classes = {"IfcWall"};
  for (std::uint32_t i = 0; i < kDepth; ++i) {
    scene.objects.push_back({i + 1, i == 0 ? kNoObject : i - 1, 0, false});
  }
  test::RunOnSmallStack([&] {
    int lines = 0;
    WriteTreeText(scene, [&](WideView) { return ++lines > 0; });
    EXPECT_EQ(kDepth, lines);
  });
}

TEST(TreeText, WhoeverHasEnoughGetsNoMore) {
  int pieces = 0;
  const TextSink stop = [&](WideView) { return ++pieces < 2; };
  EXPECT_FALSE(WriteTreeText(SceneOf(kHouse), stop));
  EXPECT_EQ(2, pieces);
  pieces = 0;
  EXPECT_FALSE(WriteTreeJson(u"m.ifc", SceneOf(kHouse), stop));
  EXPECT_EQ(2, pieces);
}

TEST(TreeJson, ObjectsStandInOrderOfTheirNumbersWithTheirParents) {
  ModelScene scene = SceneOf(kHouse);
  scene.problems = {u"a \"problem\""};
  EXPECT_EQ(
      "{\n"
      "  \"file\": \"m.ifc\",\n"
      "  \"schema\": \"IFC4\",\n"
      "  \"remarks\": [],\n"
      "  \"problems\": [\"a \\\"problem\\\"\"],\n"
      "  \"objects\": [\n"
      "    "
      "{\"number\":1,\"class\":\"IfcProject\",\"guid\":\"p\",\"name\":\"House\",\"parent\":null},\n"
      "    {\"number\":5,\"class\":\"IfcWall\",\"guid\":\"w\",\"name\":\"Wall A\",\"parent\":9},\n"
      "    {\"number\":6,\"class\":\"IfcDoor\",\"guid\":\"d\",\"name\":\"\",\"parent\":9},\n"
      "    {\"number\":9,\"class\":\"IfcSite\",\"guid\":\"s\",\"name\":\"\",\"parent\":1}\n"
      "  ]\n"
      "}\n",
      JsonOf(scene));
}

TEST(TreeJson, WithoutAModelThereIsNoSchemaAndNoObject) {
  EXPECT_EQ(
      "{\n"
      "  \"file\": \"m.ifc\",\n"
      "  \"schema\": null,\n"
      "  \"remarks\": [],\n"
      "  \"problems\": [],\n"
      "  \"objects\": []\n"
      "}\n",
      JsonOf(ModelScene{}));
}

TEST(TreeJson, RealParentsAreGivenInACircle) {
  const std::string json =
      JsonOf(SceneOf("#5=IFCWALL('a');#6=IFCWALL('b');"
                     "#7=IFCRELNESTS('r',$,$,$,#6,(#5));"
                     "#8=IFCRELNESTS('r',$,$,$,#5,(#6));"));
  EXPECT_NE(std::string::npos, json.find("\"guid\":\"a\",\"name\":\"\",\"parent\":6}")) << json;
  EXPECT_NE(std::string::npos, json.find("\"guid\":\"b\",\"name\":\"\",\"parent\":5}")) << json;
}

TEST(TreeJson, BytesThatAreNoTextBecomeReplacementCharacters) {
  const std::string json = JsonOf(SceneOf("#5=IFCWALL('a\xE9',$,'\x01');"));
  EXPECT_NE(std::string::npos, json.find("\"guid\":\"a\xEF\xBF\xBD\",\"name\":\"\\u0001\""))
      << json;
}

}  // namespace corvel::host
