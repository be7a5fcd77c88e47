#include "host/run_checks.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "step/writer/unfinished_output.h"
#include "support/temporary_folder.h"
#include "support/zip_bytes.h"

namespace corvel::host {

namespace {

using Trouble = std::optional<WideString>;
namespace fs = std::filesystem;

class RunChecks : public testing::Test {
 protected:
  Trouble OutputTrouble(std::string_view name) const {
    return TroubleWithOutput(folder.Path(name), inputs);
  }

  const test::TemporaryFolder folder;
  const std::vector<WideString> inputs{folder.Write("in.ifc", "ISO")};
};

}  // namespace

TEST_F(RunChecks, AFileWithBytesIsAnInput) {
  EXPECT_EQ(Trouble(), TroubleWithInput(inputs[0]));
  EXPECT_EQ(Trouble(), TroubleWithInput(folder.Write("UPPER.IFC", "x")));
}

TEST_F(RunChecks, WorkFilesNeedAFolderThatTakesThem) {
  EXPECT_EQ(Trouble(), TroubleWithWorkFolder(folder.Path()));
  const Trouble noFolder = u"there is no such folder for work files";
  EXPECT_EQ(noFolder, TroubleWithWorkFolder(folder.Path("none")));
  EXPECT_EQ(noFolder, TroubleWithWorkFolder(inputs[0]));
  EXPECT_EQ(std::vector<std::string>{"in.ifc"}, folder.Names());
}

TEST_F(RunChecks, WhatIsNoInputIsToldWhy) {
  EXPECT_EQ(u"the name of an input is empty", TroubleWithInput(u""));
  EXPECT_EQ(u"there is no such file", TroubleWithInput(folder.Path("none.ifc")));
  EXPECT_EQ(u"this is a folder, not a model", TroubleWithInput(folder.Path()));
  EXPECT_EQ(u"this file is empty", TroubleWithInput(folder.Write("empty.ifc", "")));
  EXPECT_EQ(u"the name of a model has to end in .ifc or .ifczip",
            TroubleWithInput(folder.Write("in.txt", "ISO")));
}

#ifndef _WIN32
// Opening a pipe that nobody writes to would wait for ever.
TEST_F(RunChecks, DevicesAndPipesAreNoInputs) {
  fs::create_symlink("/dev/zero", folder.Native("zero.ifc"));
  EXPECT_EQ(u"this is no ordinary file", TroubleWithInput(folder.Path("zero.ifc")));
}

TEST_F(RunChecks, ALinkWithoutATargetIsNoFile) {
  fs::create_symlink("nowhere.ifc", folder.Native("link.ifc"));
  EXPECT_EQ(u"there is no such file", TroubleWithInput(folder.Path("link.ifc")));
}

TEST_F(RunChecks, ALinkToAnInputIsThatInput) {
  fs::create_symlink("in.ifc", folder.Native("soft.ifc"));
  fs::create_hard_link(folder.Native("in.ifc"), folder.Native("hard.ifc"));
  EXPECT_EQ(u"the output is also an input, and inputs are never overwritten",
            OutputTrouble("soft.ifc"));
  EXPECT_EQ(u"the output is also an input, and inputs are never overwritten",
            OutputTrouble("hard.ifc"));
}

TEST_F(RunChecks, AnOutputBehindALinkIsLookedAtAndNotMade) {
  fs::create_directory(folder.Native("sub"));
  fs::create_symlink("sub/real.ifc", folder.Native("link.ifc"));
  EXPECT_EQ(Trouble(), OutputTrouble("link.ifc"));
  EXPECT_TRUE(fs::is_symlink(folder.Native("link.ifc")));
  EXPECT_FALSE(folder.Has("sub/real.ifc"));
}

TEST_F(RunChecks, LinksAreFollowedToTheirEnd) {
  fs::create_symlink("b.ifc", folder.Native("a.ifc"));
  fs::create_symlink(folder.Native("c.ifc"), folder.Native("b.ifc"));
  EXPECT_EQ(folder.Path("c.ifc"), FollowLinks(folder.Path("a.ifc")));
  EXPECT_EQ(folder.Path("none.ifc"), FollowLinks(folder.Path("none.ifc")));
}

TEST_F(RunChecks, LinksInACircleHaveNoEnd) {
  fs::create_symlink("b.ifc", folder.Native("a.ifc"));
  fs::create_symlink("a.ifc", folder.Native("b.ifc"));
  FollowLinks(folder.Path("a.ifc"));
  EXPECT_EQ(u"this file cannot be reached", TroubleWithInput(folder.Path("a.ifc")));
  EXPECT_EQ(u"this file cannot be reached", OutputTrouble("a.ifc"));
}
#endif

TEST_F(RunChecks, AnArchiveWithAModelIsAnInput) {
  const std::string archive = test::ZipOf({{"sub/", ""}, {"sub/m.ifc", "x"}, {"empty", ""}});
  EXPECT_EQ(Trouble(), TroubleWithInput(folder.Write("a.IfcZip", archive)));
  EXPECT_EQ(Trouble(), TroubleWithInput(folder.Write("a.olf", archive) + u"|sub/m.ifc"));
  EXPECT_EQ(u"the model in it is empty", TroubleWithInput(folder.Path("a.olf") + u"|empty"));
  EXPECT_EQ(u"this is a container; name a model in it: CONTAINER.olf|ENTRY",
            TroubleWithInput(folder.Path("a.olf")));
  EXPECT_EQ(u"there is no such file", TroubleWithInput(folder.Path("b.olf|sub/m.ifc")));
}

TEST_F(RunChecks, AnArchiveTellsWhatIsWrongWithIt) {
  const WideString path = folder.Write("a.ifczip", "no archive");
  EXPECT_EQ(u"Could not open zip archive: " + path, TroubleWithInput(path));
  const WideString entry = folder.Write("a.olf", test::ZipOf({{"m.ifc", "x"}})) + u"|M.ifc";
  EXPECT_EQ(u"Could not go to specified file in zip archive. File path: " + entry,
            TroubleWithInput(entry));
  EXPECT_EQ(u"this file is empty", TroubleWithInput(folder.Write("e.ifczip", "")));
}

TEST_F(RunChecks, AContainerIsNeverAnOutput) {
  EXPECT_EQ(u"the name of the output has to end in .ifc or .ifczip", OutputTrouble("a.olf|m.ifc"));
  EXPECT_EQ(Trouble(), OutputTrouble("out.IFCZIP"));
  const std::vector<WideString> packed{folder.Write("in.olf", "x") + u"|m.ifc",
                                       folder.Write("in.ifczip", "x")};
  EXPECT_EQ(u"the output is also an input, and inputs are never overwritten",
            TroubleWithOutput(packed[1], packed));
  fs::create_hard_link(folder.Native("in.olf"), folder.Native("hard.ifczip"));
  EXPECT_EQ(u"the output is also an input, and inputs are never overwritten",
            TroubleWithOutput(folder.Path("hard.ifczip"), packed));
}

TEST_F(RunChecks, AnOutputMayBeNewOrThereAlready) {
  EXPECT_EQ(Trouble(), OutputTrouble("new.ifc"));
  EXPECT_FALSE(folder.Has("new.ifc"));
  folder.Write("old.ifc", "kept");
  EXPECT_EQ(Trouble(), OutputTrouble("old.ifc"));
  EXPECT_EQ("kept", folder.Read("old.ifc"));
}

TEST_F(RunChecks, WhatIsNoOutputIsToldWhy) {
  fs::create_directory(folder.Native("sub.ifc"));
  EXPECT_EQ(u"the name of the output is empty", TroubleWithOutput(u"", inputs));
  EXPECT_EQ(u"the name of the output has to end in .ifc or .ifczip", OutputTrouble("out.zip"));
  EXPECT_EQ(u"the name of the output has to end in .ifc or .ifczip", OutputTrouble("out"));
  EXPECT_EQ(u"this is a folder; name a file in it", OutputTrouble("sub.ifc"));
  EXPECT_EQ(u"the folder for the output does not exist", OutputTrouble("none/out.ifc"));
  EXPECT_EQ(u"the output is also an input, and inputs are never overwritten",
            OutputTrouble("in.ifc"));
}

}  // namespace corvel::host
