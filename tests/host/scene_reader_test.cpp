#include "host/scene_reader.h"

#include <gtest/gtest.h>

#include <string>

#include "host/scene_of_text.h"
#include "schema/registry.h"

namespace corvel::host {

namespace {

std::string DescribedText(const std::string& records) { return Described(SceneOf(records)); }

const std::string kProject = "#1=IFCPROJECT('p',$,'P',$,$,$,$,$,$);";

// "guid/name" of each object.
std::string Labels(const ModelScene& scene) {
  std::string text;
  for (std::size_t i = 0; i < scene.objects.size(); ++i) {
    if (i != 0) text += ' ';
    text += ToUtf8(scene.GuidOf(i)) + "/" + ToUtf8(scene.NameOf(i));
  }
  return text;
}

}  // namespace

TEST(SceneReader, ProjectsAndProductsAreObjects) {
  EXPECT_EQ(
      "1:IfcProject 2:IfcSite<1 3:IfcBuildingStorey<1 4:IfcOpeningElement<1 5:IfcAnnotation<1",
      DescribedText(kProject + "#2=IFCSITE('s');#3=IFCBUILDINGSTOREY();"
                               "#4=IFCOPENINGELEMENT('o');#5=IFCANNOTATION($);"));
}

TEST(SceneReader, WhatIsNoProductIsNoObject) {
  EXPECT_EQ("", DescribedText("#1=IFCCARTESIANPOINT((1.,2.));#2=IFCWALLTYPE('t');#3=IFCGROUP();"
                              "#4=IFCPROJECTLIBRARY();#5=IFCRELAGGREGATES('r',$,$,$,#1,(#2));"));
}

TEST(SceneReader, ObjectsStandByAscendingNumber) {
  EXPECT_EQ("2:IfcWall 7:IfcDoor 9:IfcSlab",
            DescribedText("#9=IFCSLAB();#2=IFCWALL();#7=IFCDOOR();"));
}

TEST(SceneReader, OfRecordsWithTheSameNumberTheFirstCounts) {
  const ModelScene scene = SceneOf("#9=IFCSLAB('a');#2=IFCWALL('b');#9=IFCDOOR('c');");
  EXPECT_EQ("2:IfcWall 9:IfcSlab", Described(scene));
  EXPECT_EQ("b/ a/", Labels(scene));
}

TEST(SceneReader, BlanksCommentsAndUnderscoresMayStandBetween) {
  EXPECT_EQ("1:IfcProject 5:IfcWall<1", DescribedText("/* #3=IFCWALL(); */ " + kProject +
                                                      "\n#5 /* ; */ =\r\n_IFC_WALL ( 'g' ) ;"));
}

TEST(SceneReader, ATolerantSceneHasTheProductsOfAnotherRelease) {
  const std::string records = kProject +
                              "#2=IFCELECTRICALELEMENT('e',$,'E');#3=IFCSPACESHIP('s');"
                              "#4=IfcWall('w');#5=IFCELECTRICALELEMENT('f');";
  EXPECT_EQ("1:IfcProject", DescribedText(records));
  EXPECT_EQ("1:IfcProject 2:IfcElectricalElement<1 4:IfcWall<1 5:IfcElectricalElement<1",
            Described(SceneOf(records, SceneTexts::kGuidsAndNames, 1 << 20, true)));
}

TEST(SceneReader, NamesOfClassesAreThoseOfTheReleaseToTheLetter) {
  EXPECT_EQ("", DescribedText("#1=IfcWall();#2=IFCWALLS();#3=IFCWAL();#4=IFCSPACESHIP();"));
}

TEST(SceneReader, AnInstanceOfSeveralClassesIsNoObject) {
  EXPECT_EQ("2:IfcDoor", DescribedText("#1=(IFCWALL('a')IFCSLAB('b;'));#2=IFCDOOR();"));
}

TEST(SceneReader, RecordsInsideStringsAreText) {
  EXPECT_EQ("1:IfcWall 4:IfcDoor",
            DescribedText("#1=IFCWALL(';#2=IFCWALL();');'#3=IFCWALL();'#4=IFCDOOR(';');"));
}

TEST(SceneReader, RecordsThatCannotBeReadAreAbsent) {
  EXPECT_EQ(
      "9:IfcWall",
      DescribedText("#=IFCWALL();#0=IFCWALL();#4294967280=IFCWALL();#99999999999=IFCWALL();"
                    "#1 IFCWALL();#2=;#3='x';#4=#5;# 6=IFCWALL();;##7=IFCWALL();#9=IFCWALL();"));
}

TEST(SceneReader, TheEndIsToldOfAFileWithoutItsClosingLineOnly) {
  const auto endOf = [](const std::string& records) {
    return SceneOf(records).endWithoutClosingLine.value_or(-1);
  };
  EXPECT_EQ(-1, endOf("#1=IFCWALL();\nENDSEC;\nEND-ISO-10303-21;\n"));
  EXPECT_EQ(-1, endOf("ENDSEC ; END-ISO-10303-21 ;" + std::string(1 << 20, ' ')));
  EXPECT_EQ(22, endOf("ENDSEC;END-ISO-10303-2"));
  EXPECT_EQ(14, endOf("#1=IFCWALL();\n"));
  EXPECT_EQ(20, endOf("'END-ISO-10303-21;' "));
  EXPECT_EQ(1, endOf("\n\xFF"
                     "END-ISO-10303-21;"));
}

TEST(SceneReader, AFileThatEndsInsideOfAStringIsNoScene) {
  const auto isWhole = [](const std::string& records) {
    Scanner scanner(std::make_unique<test::MemoryInputStream>(records), Hear);
    ModelScene scene;
    return ReadSceneRecords(scanner, FactoriesOf(SchemaNamespace::IFC4), SceneTexts::kGuids, scene);
  };
  EXPECT_TRUE(isWhole("#1=IFCWALL('a','b');"));
  EXPECT_TRUE(isWhole("#1=IFCWALL('a','b'"));
  EXPECT_TRUE(isWhole("#1=IFCWALL('a'"));
  EXPECT_TRUE(isWhole("#1=IFCPERSON('a' /* ' */ ,$); /* '"));
  EXPECT_FALSE(isWhole("#1=IFCWALL('a','b);"));
  EXPECT_FALSE(isWhole("#1=IFCWALL('a,'b');"));
  EXPECT_FALSE(isWhole("#1=IFCPERSON('a);"));
  EXPECT_FALSE(isWhole("#1=IFCRELAGGREGATES('a);"));
  EXPECT_FALSE(isWhole("'#1=IFCWALL();"));
}

TEST(SceneReader, TheLargestNumberIsOne) {
  EXPECT_EQ("4294967279:IfcWall", DescribedText("#4294967279=IFCWALL();"));
}

TEST(SceneReader, AnObjectWhoseArgumentsAreBrokenIsThereWithoutThem) {
  const ModelScene scene = SceneOf(
      "#1=IFCWALL;#2=IFCWALL(;#3=IFCWALL('a',);#4=IFCWALL($,$,$);"
      "#5=IFCWALL(('x'),$,IFCLABEL('y'));#6=IFCWALL('a',$,'n");
  EXPECT_EQ("1:IfcWall 2:IfcWall 3:IfcWall 4:IfcWall 5:IfcWall 6:IfcWall", Described(scene));
  EXPECT_EQ("/ / a/ / / a/n", Labels(scene));
}

TEST(SceneReader, TheInputMayEndAnywhere) {
  const std::string records = kProject +
                              "#2=IFCRELAGGREGATES('r',#9,$,$,#1,(#5,/* */#6));\n"
                              "#5=IFCWALL('it''s',$,'\\X2\\00E9\\X0\\');#6=IFC_DOOR('d');";
  for (std::size_t length = 0; length <= records.size(); ++length) {
    const ModelScene scene = SceneOf(records.substr(0, length));
    EXPECT_LE(scene.objects.size(), 3u);
  }
}

TEST(SceneReader, GuidsAndNamesAreDecoded) {
  const ModelScene scene = SceneOf(R"(#1=IFCWALL('it''s',#7,'\X2\00E9\X0\ (;)','more');)");
  EXPECT_EQ("it's/\xC3\xA9 (;)", Labels(scene));
}

TEST(SceneReader, TextsAreReadOnlyWhenAskedFor) {
  const std::string records = "#1=IFCWALL('g',$,'n');";
  EXPECT_EQ("/", Labels(SceneOf(records, SceneTexts::kNone)));
  EXPECT_TRUE(SceneOf(records, SceneTexts::kNone).labels.empty());
  EXPECT_EQ("g/", Labels(SceneOf(records, SceneTexts::kGuids)));
  EXPECT_EQ("g/n", Labels(SceneOf(records, SceneTexts::kGuidsAndNames)));
}

TEST(SceneReader, TheFourRelationsGiveParents) {
  EXPECT_EQ(
      "1:IfcProject 10:IfcSite<1 11:IfcBuilding<10 12:IfcWall<11 13:IfcOpeningElement<12 "
      "14:IfcDistributionPort<12",
      DescribedText(kProject +
                    "#2=IFCRELAGGREGATES('r',$,$,$,#1,(#10));"
                    "#3=IFCRELAGGREGATES('r',$,$,$,#10,(#11));"
                    "#4=IFCRELCONTAINEDINSPATIALSTRUCTURE('r',$,$,$,(#12),#11);"
                    "#5=IFCRELVOIDSELEMENT('r',$,$,$,#12,#13);"
                    "#6=IFCRELNESTS('r',$,$,$,#12,(#14));"
                    "#10=IFCSITE();#11=IFCBUILDING();#12=IFCWALL();#13=IFCOPENINGELEMENT();"
                    "#14=IFCDISTRIBUTIONPORT();"));
}

TEST(SceneReader, OtherRelationsGiveNone) {
  EXPECT_EQ("1:IfcProject 5:IfcWall<1 6:IfcOpeningElement<1 7:IfcDoor<1",
            DescribedText(kProject + "#5=IFCWALL();#6=IFCOPENINGELEMENT();#7=IFCDOOR();"
                                     "#8=IFCRELFILLSELEMENT('r',$,$,$,#6,#7);"
                                     "#9=IFCRELCONNECTSELEMENTS('r',$,$,$,$,#5,#6);"));
}

TEST(SceneReader, ListsMayHaveCommentsStringsAndNonsense) {
  EXPECT_EQ("1:IfcProject 5:IfcWall<1 6:IfcWall<7 7:IfcBuilding<1",
            DescribedText(kProject + "#5=IFCWALL();#6=IFCWALL();#7=IFCBUILDING();"
                                     "#8=IFCRELAGGREGATES('a,b',(#1,#2),'(',$ , #7 ,( $,/* #5 */\n"
                                     "#6,'#5',#,(#5)),#5);"));
}

// One reference where the class has a list, or a list where it has one.
TEST(SceneReader, ReferencesInTheWrongPlaceGiveNoParent) {
  EXPECT_EQ("1:IfcProject 5:IfcWall<1 6:IfcBuilding<1 7:IfcOpeningElement<1",
            DescribedText(kProject + "#5=IFCWALL();#6=IFCBUILDING();#7=IFCOPENINGELEMENT();"
                                     "#8=IFCRELAGGREGATES('r',$,$,$,#6,#5);"
                                     "#9=IFCRELAGGREGATES('r',$,$,$,(#6),(#5));"
                                     "#10=IFCRELVOIDSELEMENT('r',$,$,$,#5,(#7));"
                                     "#11=IFCRELAGGREGATES('r',$,$,#6,(#5));"));
}

TEST(SceneReader, WindowsOfAnySizeGiveTheSameScene) {
  const std::string records = kProject +
                              "#2=IFCRELAGGREGATES('r',#9,$,$,#1,(#5,/* */#6)); #9=IFCWALLTYPE();\n"
                              "#5=IFCWALL('it''s',$,'\\X2\\00E9\\X0\\');#6=IFC_DOOR('d',$,$);"
                              "#7=IFCCARTESIANPOINT((1.,2.));#8=IFCSLAB('s',$,'\\S\\'');";
  const ModelScene whole = SceneOf(records);
  EXPECT_EQ("1:IfcProject 5:IfcWall<1 6:IfcDoor<1 8:IfcSlab<1", Described(whole));
  for (std::size_t window = 1; window < 70; ++window) {
    const ModelScene scene = SceneOf(records, SceneTexts::kGuidsAndNames, window);
    EXPECT_EQ(Described(whole), Described(scene)) << window;
    EXPECT_EQ(Labels(whole), Labels(scene)) << window;
  }
}

// More classes than the table of the reader has room for at first.
TEST(SceneReader, EveryClassKeepsItsName) {
  const FactoryTable& factories = FactoriesOf(SchemaNamespace::IFC4);
  std::vector<std::string> names;
  std::string records;
  for (int round = 0; round < 2; ++round) {
    for (std::uint32_t i = 0; i <= factories.mask; ++i) {
      if (factories.slots[i].name.empty()) continue;
      names.emplace_back(factories.slots[i].name);
      records += "#" + std::to_string(names.size()) + "=" + names.back() + "();\n";
    }
  }
  const ModelScene scene = SceneOf(records);
  EXPECT_GT(scene.classes.size(), 150u);
  EXPECT_EQ(2 * scene.classes.size(), scene.objects.size());
  for (const SceneObject& object : scene.objects) {
    const WideString shown = ToLowerAscii(Widen(scene.ClassOf(object)));
    EXPECT_EQ(ToLowerAscii(Widen(names[object.number - 1])), shown);
  }
}

}  // namespace corvel::host
