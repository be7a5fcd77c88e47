#include "host/file_names.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/temporary_folder.h"

namespace corvel::host {

namespace {

using Names = std::vector<std::string>;

Names FilesOf(const std::variant<Names, std::string>& found) {
  if (const auto* const mistake = std::get_if<std::string>(&found)) return {"mistake: " + *mistake};
  return std::get<Names>(found);
}

class FileNames : public testing::Test {
 protected:
  std::string Path(const std::string& name) const { return ToUtf8(folder_.Path(name)); }
  void Make(const Names& names) const {
    for (const std::string& name : names) folder_.Write(name, "x");
  }

  test::TemporaryFolder folder_;
};

}  // namespace

TEST_F(FileNames, WordsAreNamesWhetherFilesAreThereOrNot) {
  EXPECT_EQ((Names{"b.ifc", "a.ifc", "-", "c.olf|x"}),
            FilesOf(FindFiles({{"b.ifc", "a.ifc", "-", "c.olf|x"}, {}})));
}

TEST_F(FileNames, AFolderStandsForTheModelsInItByName) {
  Make({"m/b.ifc", "m/a.IFCZIP", "m/c.txt", "m/sub/d.ifc"});
  std::filesystem::create_directory(folder_.Native("m/e.ifc"));
  EXPECT_EQ((Names{Path("m") + "/a.IFCZIP", Path("m") + "/b.ifc", "x.ifc"}),
            FilesOf(FindFiles({{Path("m"), "x.ifc"}, {}})));
  EXPECT_EQ((Names{Path("m") + "/a.IFCZIP", Path("m") + "/b.ifc"}),
            FilesOf(FindFiles({{Path("m") + "/"}, {}})));
}

TEST_F(FileNames, AFolderWithoutAModelIsAMistake) {
  Make({"m/c.txt"});
  EXPECT_EQ((Names{"mistake: '" + Path("m") + "': no model lies in this folder"}),
            FilesOf(FindFiles({{Path("m")}, {}})));
}

TEST_F(FileNames, AListHasNamesThatEndInNul) {
  folder_.Write("list", std::string("a b.ifc\0-x\n.ifc\0", 15));
  EXPECT_EQ((Names{"first.ifc", "a b.ifc", "-x\n.ifc"}),
            FilesOf(FindFiles({{"first.ifc"}, Path("list")})));
  folder_.Write("open", std::string("a.ifc\0b.ifc", 11));
  EXPECT_EQ((Names{"a.ifc", "b.ifc"}), FilesOf(FindFiles({{}, Path("open")})));
  folder_.Write("nothing", "");
  EXPECT_EQ(Names(), FilesOf(FindFiles({{}, Path("nothing")})));
}

TEST_F(FileNames, AListWithAnEmptyNameAndOneThatIsMissingAreMistakes) {
  folder_.Write("list", std::string("a.ifc\0\0", 7));
  EXPECT_EQ((Names{"mistake: --files0-from: '" + Path("list") + "' has an empty name"}),
            FilesOf(FindFiles({{}, Path("list")})));
  EXPECT_EQ((Names{"mistake: --files0-from: '" + Path("none") + "' cannot be read"}),
            FilesOf(FindFiles({{}, Path("none")})));
}

TEST_F(FileNames, PatternsStandForTheFilesThatFitByName) {
  Make({"b1.ifc", "a1.ifc", "a22.ifc", "a1.txt"});
  EXPECT_EQ((Names{Path("a1.ifc"), Path("a22.ifc"), "z.ifc"}),
            FilesOf(FindPatterns({Path("a*.ifc"), "z.ifc"})));
  EXPECT_EQ((Names{Path("a1.ifc"), Path("b1.ifc")}), FilesOf(FindPatterns({Path("?1.ifc")})));
  EXPECT_EQ((Names{"mistake: '" + Path("x*") + "': no file fits"}),
            FilesOf(FindPatterns({Path("x*")})));
}

TEST(FitsPattern, StarsTakeAnythingAndQuestionMarksOneUnit) {
  for (const auto& [name, pattern] :
       std::vector<std::pair<const char*, const char*>>{{"", ""},
                                                        {"", "*"},
                                                        {"a", "*"},
                                                        {"abc", "a*c"},
                                                        {"aXbXc", "a*b*c"},
                                                        {"abab", "*ab"},
                                                        {"aab", "*ab"},
                                                        {"A.IFC", "*.ifc"},
                                                        {"ab", "??"},
                                                        {"B\xC3\xBCro", "B?ro"},
                                                        {"a", "a**"}}) {
    EXPECT_TRUE(FitsPattern(name, pattern)) << name << " " << pattern;
  }
  for (const auto& [name, pattern] :
       std::vector<std::pair<const char*, const char*>>{{"a", ""},
                                                        {"", "?"},
                                                        {"\xC3\xBC", "??"},
                                                        {"abc", "a*d"},
                                                        {"ab", "?"},
                                                        {"aba", "*ab"},
                                                        {"b", "a*"}}) {
    EXPECT_FALSE(FitsPattern(name, pattern)) << name << " " << pattern;
  }
}

}  // namespace corvel::host
