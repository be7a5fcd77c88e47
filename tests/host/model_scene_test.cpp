#include "host/model_scene.h"

#include <gtest/gtest.h>

#include <string>

#include "host/scene_of_text.h"
#include "support/temporary_folder.h"
#include "support/zip_bytes.h"

namespace corvel::host {

namespace {

using Texts = std::vector<WideString>;

std::string SceneModelOf(const std::string& records, const std::string& schema = "IFC4") {
  return "ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION(('#7=IFCWALL();'),'2;1');\n"
         "FILE_NAME('n','t',('a'),('o'),'p','s','z');\nFILE_SCHEMA(('" +
         schema + "'));\nENDSEC;\nDATA;\n" + records + "\nENDSEC;\nEND-ISO-10303-21;\n";
}

ModelScene SceneOfFile(const std::string& bytes) {
  const test::TemporaryFolder folder;
  return ReadScene(folder.Write("m.ifc", bytes), SceneTexts::kGuidsAndNames);
}

}  // namespace

TEST(ModelScene, AFileIsReadBehindItsHeader) {
  const ModelScene scene = SceneOfFile(SceneModelOf("#1=IFCPROJECT('p');\n#2=IFCWALL('w');"));
  EXPECT_EQ("1:IfcProject 2:IfcWall<1", Described(scene));
  EXPECT_EQ(SchemaNamespace::IFC4, scene.schema);
  EXPECT_EQ(Texts{}, scene.remarks);
  EXPECT_EQ(Texts{}, scene.problems);
}

TEST(ModelScene, SeveralDataSectionsAreRead) {
  EXPECT_EQ("1:IfcProject 2:IfcWall<1",
            Described(SceneOfFile(
                SceneModelOf("#1=IFCPROJECT('p');\nENDSEC;\nDATA;\n#2=IFCWALL('w');"))));
}

// IfcBuildingElementProxy is no class of every release, and IfcElectricDistributionPoint of one.
TEST(ModelScene, ClassesAreThoseOfTheReleaseOfTheFile) {
  const std::string records = "#1=IFCELECTRICDISTRIBUTIONPOINT('e');";
  EXPECT_EQ("1:IfcElectricDistributionPoint",
            Described(SceneOfFile(SceneModelOf(records, "IFC2X3"))));
  EXPECT_EQ("", Described(SceneOfFile(SceneModelOf(records, "IFC4"))));
}

TEST(ModelScene, AFileThatIsNoModelHasAProblemAndNoObjects) {
  const ModelScene scene = SceneOfFile("#1=IFCWALL('w');");
  EXPECT_EQ(Texts{u"this is no STEP file, it begins with '#1=IFCWALL('w');'"}, scene.problems);
  EXPECT_EQ("", Described(scene));
  EXPECT_EQ(std::nullopt, scene.schema);
}

TEST(ModelScene, OfAFileThatEndsInsideOfAStringIsUnreadable) {
  const ModelScene scene = SceneOfFile(SceneModelOf("#1=IFCWALL('w);\n#2=IFCWALL('x');"));
  EXPECT_EQ(Texts{u"The file ends inside of a string."}, scene.problems);
  EXPECT_TRUE(scene.isUnreadable);
}

TEST(ModelScene, OfADamagedArchiveIsUnreadable) {
  const test::TemporaryFolder folder;
  test::ZipEntry entry{"m.ifc", SceneModelOf("#1=IFCWALL('w');")};
  entry.checksum = 7;
  const WideString path = folder.Write("m.ifczip", test::ZipOf({entry}));
  const ModelScene scene = ReadScene(path, SceneTexts::kNone);
  EXPECT_EQ(Texts{u"The data in the zip archive is damaged: " + path}, scene.problems);
  EXPECT_TRUE(scene.isUnreadable);
}

TEST(ModelScene, OfAFileWithoutItsClosingLineIsReadable) {
  std::string bytes = SceneModelOf("#1=IFCWALL('w');");
  bytes.resize(bytes.rfind("END-ISO"));
  const ModelScene scene = SceneOfFile(bytes);
  EXPECT_EQ(static_cast<std::int64_t>(bytes.size()), scene.endWithoutClosingLine);
  EXPECT_EQ(Texts{}, scene.problems);
  EXPECT_FALSE(scene.isUnreadable);
  EXPECT_EQ("1:IfcWall", Described(scene));
}

TEST(ModelScene, AnUnknownSchemaIsAProblem) {
  const ModelScene scene = SceneOfFile(SceneModelOf("#1=IFCWALL('w');", "IFC5"));
  EXPECT_FALSE(scene.isUnreadable) << "the plug-in leaves such a file out and names it";
  EXPECT_EQ(Texts{u"Unknown schema identifier: IFC5"}, scene.problems);
  EXPECT_EQ("", Described(scene));
}

TEST(ModelScene, AReplacedSchemaIsARemark) {
  EXPECT_EQ(Texts{u"Schema identifier: IFC4X3_RC4 is not supported. IFC4X3_ADD2 is used instead."},
            SceneOfFile(SceneModelOf("", "IFC4X3_RC4")).remarks);
}

TEST(ModelScene, AFileThatIsNotThereIsAProblem) {
  const test::TemporaryFolder folder;
  EXPECT_EQ(Texts{u"there is no such file"},
            ReadScene(folder.Path("none.ifc"), SceneTexts::kNone).problems);
}

TEST(ModelScene, ObjectsAcrossTheBordersOfTheBufferAreFound) {
  // More than one buffer of 1 MiB, with records of all lengths at its border.
  std::string records;
  std::size_t count = 0;
  while (records.size() < 3u << 20) {
    ++count;
    records += "#" + std::to_string(count) + "=IFCWALL('" + std::string(count % 997, ';') + "');\n";
  }
  const ModelScene scene = SceneOfFile(SceneModelOf(records));
  ASSERT_EQ(count, scene.objects.size());
  for (std::size_t i = 0; i < count; ++i) ASSERT_EQ((i + 1) % 997, scene.GuidOf(i).size());
}

TEST(ModelScene, ObjectsAreFoundByNumber) {
  const ModelScene scene = SceneOf("#3=IFCWALL();#8=IFCDOOR();");
  ASSERT_NE(nullptr, scene.Find(8));
  EXPECT_EQ(8u, scene.Find(8)->number);
  EXPECT_EQ(nullptr, scene.Find(5));
  EXPECT_EQ(nullptr, scene.Find(9));
}

}  // namespace corvel::host
