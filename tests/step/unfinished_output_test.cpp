#include "step/writer/unfinished_output.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "platform/replacing_file.h"
#include "support/temporary_folder.h"

namespace corvel {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

class UnfinishedOutputTest : public testing::Test {
 protected:
  // Opens the output and writes it.
  static void Write(UnfinishedOutput& output, std::string_view bytes) {
    ::platform::File file = output.Open();
    ASSERT_TRUE(file.IsOpen());
    ASSERT_EQ(bytes.size(), file.Write(bytes.data(), bytes.size()));
    ASSERT_TRUE(file.Sync());
    ASSERT_TRUE(file.Close());
  }
  static void WriteWhole(const WideString& path, std::string_view bytes) {
    UnfinishedOutput output(path);
    Write(output, bytes);
    EXPECT_TRUE(output.Complete());
    EXPECT_TRUE(output.IsComplete());
    EXPECT_EQ(u"", output.KeptAt());
  }
  // The output cannot be written, and nothing of it is left.
  void ExpectRefused(const WideString& output) const {
    const Names before = folder.Names();
    EXPECT_FALSE(UnfinishedOutput(output).Open().IsOpen());
    EXPECT_EQ(before, folder.Names());
  }

  const test::TemporaryFolder folder;
  const WideString path = folder.Path("out.ifc");
};

TEST_F(UnfinishedOutputTest, TouchesNothingBeforeItIsOpened) {
  folder.Write("out.ifc", "older");
  { const UnfinishedOutput output(path); }
  EXPECT_EQ(Names{"out.ifc"}, folder.Names());
  EXPECT_EQ("older", folder.Read("out.ifc"));
}

TEST_F(UnfinishedOutputTest, ThatIsCompleteIsThereUnderItsNameAlone) {
  WriteWhole(path, "whole");
  EXPECT_EQ(Names{"out.ifc"}, folder.Names());
  EXPECT_EQ("whole", folder.Read("out.ifc"));
}

TEST_F(UnfinishedOutputTest, ThatIsCompleteReplacesWhatWasThere) {
  folder.Write("out.ifc", "something older and longer");
  WriteWhole(path, "whole");
  EXPECT_EQ(Names{"out.ifc"}, folder.Names());
  EXPECT_EQ("whole", folder.Read("out.ifc"));
}

TEST_F(UnfinishedOutputTest, HasANameOfItsOwnThatIsNoModels) {
  UnfinishedOutput output(path);
  Write(output, "half");
  const Names names = folder.Names();
  ASSERT_EQ(1u, names.size());
  EXPECT_TRUE(names[0].starts_with(".out.ifc.corvel-")) << names[0];
  EXPECT_TRUE(names[0].ends_with(".part")) << names[0];
}

TEST_F(UnfinishedOutputTest, ThatGoesLeavesWhatWasThere) {
  folder.Write("out.ifc", "older");
  {
    UnfinishedOutput output(path);
    Write(output, "half");
    EXPECT_EQ("older", folder.Read("out.ifc"));
  }
  EXPECT_EQ(Names{"out.ifc"}, folder.Names());
  EXPECT_EQ("older", folder.Read("out.ifc"));
}

TEST_F(UnfinishedOutputTest, ThatIsDiscardedLeavesNothing) {
  UnfinishedOutput output(path);
  Write(output, "half");
  output.Discard();
  EXPECT_EQ(Names(), folder.Names());
}

TEST_F(UnfinishedOutputTest, ThatIsCompleteOutlastsADiscard) {
  UnfinishedOutput output(path);
  Write(output, "whole");
  ASSERT_TRUE(output.Complete());
  output.Discard();
  EXPECT_EQ("whole", folder.Read("out.ifc"));
}

TEST_F(UnfinishedOutputTest, InTheWayOfWhichAFolderStandsIsRefused) {
  fs::create_directory(folder.Native("out.ifc"));
  folder.Write("out.ifc/inside.txt", "kept");
  ExpectRefused(path);
  EXPECT_EQ("kept", folder.Read("out.ifc/inside.txt"));
}

TEST_F(UnfinishedOutputTest, WithoutAFolderIsRefused) {
  ExpectRefused(folder.Path("none/out.ifc"));
  EXPECT_EQ(folder.Path("none/out.ifc"), FollowLinks(folder.Path("none/out.ifc")));
}

// Longer than a name and longer than a path may be, or none at all.
TEST_F(UnfinishedOutputTest, WithAnImpossibleNameIsRefused) {
  for (const std::size_t length : {std::size_t{300}, std::size_t{40'000}}) {
    const WideString name = ::platform::JoinPath(folder.Path(), WideString(length, u'n') + u".ifc");
    EXPECT_EQ(name, FollowLinks(name));
    ExpectRefused(name);
  }
  ExpectRefused(folder.Path(""));
  ExpectRefused(folder.Path("a") + WideString(1, u'\0') + u".ifc");
}

TEST_F(UnfinishedOutputTest, MayHaveTheLongestName) {
  const std::string name = std::string(251, 'n') + ".ifc";
  WriteWhole(folder.Path(name), "whole");
  EXPECT_EQ(Names{name}, folder.Names());
  EXPECT_EQ("whole", folder.Read(name));
}

TEST_F(UnfinishedOutputTest, BesideAnotherOfTheSameNameGivesOneOfTheTwo) {
  UnfinishedOutput first(path);
  UnfinishedOutput second(path);
  Write(first, "the first");
  Write(second, "the second");
  EXPECT_EQ(2u, folder.Names().size());
  EXPECT_TRUE(second.Complete());
  EXPECT_EQ("the second", folder.Read("out.ifc"));
  EXPECT_TRUE(first.Complete());
  EXPECT_EQ(Names{"out.ifc"}, folder.Names());
  EXPECT_EQ("the first", folder.Read("out.ifc"));
}

TEST_F(UnfinishedOutputTest, CannotTakeThePlaceOfAFolderAndStaysBesideIt) {
  UnfinishedOutput output(path);
  Write(output, "whole");
  folder.Write("out.ifc/inside.txt", "kept");
  EXPECT_FALSE(output.Complete());
  EXPECT_FALSE(output.IsComplete());
  output.Discard();
  ASSERT_EQ(2u, folder.Names().size());
  const std::string kept = folder.Names()[1];
  EXPECT_TRUE(kept.starts_with("out.ifc.corvel-") && kept.ends_with(".complete")) << kept;
  EXPECT_EQ(folder.Path(kept), output.KeptAt());
  EXPECT_EQ("whole", folder.Read(kept));
  EXPECT_EQ("kept", folder.Read("out.ifc/inside.txt"));
}

// --- Left-overs ----------------------------------------------------------------------------------

constexpr char kLeftOver[] = ".out.ifc.corvel-1-0123456789abcdef.part";

TEST_F(UnfinishedOutputTest, RemovesWhatAKilledRunLeftOfTheSameOutput) {
  folder.Write(kLeftOver, "half");
  folder.Write(".out.ifc.corvel-3-00000000000000ff.part", "half");
  WriteWhole(path, "whole");
  EXPECT_EQ(Names{"out.ifc"}, folder.Names());
}

TEST_F(UnfinishedOutputTest, LeavesWhatIsNotLeftOfTheSameOutput) {
  const Names others = {".in.ifc.corvel-1-0123456789abcdef.part", ".out.ifc.corvel-1-0123.part",
                        "out.ifc.corvel-1-0123456789abcdef.complete"};
  for (const std::string& name : others) folder.Write(name, "somebody else's");
  WriteWhole(path, "whole");
  for (const std::string& name : others) EXPECT_EQ("somebody else's", folder.Read(name));
}

TEST_F(UnfinishedOutputTest, LeavesAnotherThatIsBeingWritten) {
  UnfinishedOutput first(path);
  Write(first, "the first");
  for (int run = 0; run < 2; ++run) WriteWhole(path, "whole");
  EXPECT_EQ(2u, folder.Names().size());
  EXPECT_TRUE(first.Complete());
  EXPECT_EQ("the first", folder.Read("out.ifc"));
}

TEST_F(UnfinishedOutputTest, LeavesAFolderThatIsNamedLikeALeftOver) {
  fs::create_directory(folder.Native(kLeftOver));
  WriteWhole(path, "whole");
  EXPECT_TRUE(fs::is_directory(folder.Native(kLeftOver)));
}

TEST_F(UnfinishedOutputTest, ATextIsPutInOneStep) {
  folder.Write("out.ifc", "older");
  EXPECT_TRUE(WriteInOneStep(path, "new"));
  EXPECT_EQ("new", folder.Read("out.ifc"));
  EXPECT_TRUE(WriteInOneStep(path, ""));
  EXPECT_EQ("", folder.Read("out.ifc"));
  EXPECT_EQ(Names{"out.ifc"}, folder.Names());
}

TEST_F(UnfinishedOutputTest, ATextThatCannotBeWrittenIsToldAndNothingIsLeft) {
  const Names before = folder.Names();
  EXPECT_FALSE(WriteInOneStep(folder.Path("missing/out.ifc"), "text"));
  EXPECT_EQ(before, folder.Names());
}

}  // namespace
}  // namespace corvel
