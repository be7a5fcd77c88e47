#include "step/writer/unfinished_output.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "platform/file.h"
#include "support/read_model.h"

#ifndef _WIN32
#include <csignal>

#include "platform/console.h"
#include "support/posix_faults.h"
#endif

namespace corvel {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

class UnfinishedOutputTest : public testing::Test {
 protected:
  const test::TemporaryFolder folder;
  const WideString path = folder.Path("out.ifc");
};

TEST_F(UnfinishedOutputTest, MakesNoFileItself) {
  {
    UnfinishedOutput output(path);
    EXPECT_EQ(Names(), folder.Names());
    output.Complete();
  }
  EXPECT_EQ(Names(), folder.Names());
}

TEST_F(UnfinishedOutputTest, ThatIsCompleteStays) {
  {
    UnfinishedOutput output(path);
    folder.Write("out.ifc", "whole");
    output.Complete();
  }
  EXPECT_EQ("whole", folder.Read("out.ifc"));
}

// The writer removes what it has begun itself.
TEST_F(UnfinishedOutputTest, ThatWasNotBegunLeavesTheFileThatIsThere) {
  folder.Write("out.ifc", "older");
  { const UnfinishedOutput output(path); }
  EXPECT_EQ("older", folder.Read("out.ifc"));
}

TEST_F(UnfinishedOutputTest, InTheWayOfWhichAFolderStandsLeavesTheFolder) {
  fs::create_directory(folder.Native("out.ifc"));
  folder.Write("out.ifc/inside.txt", "kept");
  { const UnfinishedOutput output(path); }
  EXPECT_EQ("kept", folder.Read("out.ifc/inside.txt"));
}

TEST_F(UnfinishedOutputTest, WithoutAFolderIsNoReasonToFail) {
  const WideString nowhere = folder.Path("none/out.ifc");
  EXPECT_EQ(nowhere, FollowLinks(nowhere));
  { const UnfinishedOutput output(nowhere); }
  EXPECT_EQ(Names(), folder.Names());
}

// Longer than a name and longer than a path may be.
TEST_F(UnfinishedOutputTest, WithAnImpossibleNameIsNoReasonToFail) {
  for (const std::size_t length : {std::size_t{300}, std::size_t{40'000}}) {
    const WideString name = ::platform::JoinPath(folder.Path(), WideString(length, u'n') + u".ifc");
    EXPECT_EQ(name, FollowLinks(name));
    { const UnfinishedOutput output(name); }
  }
  EXPECT_EQ(Names(), folder.Names());
}

#ifndef _WIN32

class LinkedOutput : public UnfinishedOutputTest {
 protected:
  // out.ifc leads to real.ifc.
  void Link() const { fs::create_symlink("real.ifc", folder.Native("out.ifc")); }
  // As the writer does it when it fails.
  void WriteAndRemove(const char* bytes) const {
    folder.Write("out.ifc", bytes);
    ASSERT_TRUE(::platform::RemoveFile(path));
  }
};

TEST_F(LinkedOutput, IsWhereTheLinksEnd) {
  fs::create_directory(folder.Native("sub"));
  fs::create_symlink("sub/second.ifc", folder.Native("out.ifc"));
  fs::create_symlink("../third.ifc", folder.Native("sub/second.ifc"));
  fs::create_symlink(folder.Native("real.ifc"), folder.Native("third.ifc"));
  EXPECT_EQ(folder.Path("real.ifc"), FollowLinks(path));
}

TEST_F(LinkedOutput, MayHaveANameThatIsNoText) {
  fs::create_symlink("caf\xE9.ifc", folder.Native("out.ifc"));
  EXPECT_EQ(folder.Path("caf\xE9.ifc"), FollowLinks(path));
}

TEST_F(LinkedOutput, InAFolderBehindALinkIsNoLinkItself) {
  fs::create_directory(folder.Native("sub"));
  fs::create_symlink("sub", folder.Native("link"));
  EXPECT_EQ(folder.Path("link/out.ifc"), FollowLinks(folder.Path("link/out.ifc")));
}

TEST_F(LinkedOutput, ThatIsCompleteStaysBehindItsLink) {
  Link();
  {
    UnfinishedOutput output(path);
    folder.Write("out.ifc", "whole");
    output.Complete();
  }
  EXPECT_EQ((Names{"out.ifc", "real.ifc"}), folder.Names());
  EXPECT_EQ("whole", folder.Read("real.ifc"));
}

TEST_F(LinkedOutput, ThatIsIncompleteGoesWithItsLink) {
  Link();
  {
    const UnfinishedOutput output(path);
    WriteAndRemove("half");
  }
  EXPECT_EQ(Names(), folder.Names());
}

TEST_F(LinkedOutput, ThatWasNotBegunLeavesLinkAndFile) {
  Link();
  folder.Write("real.ifc", "older");
  { const UnfinishedOutput output(path); }
  EXPECT_EQ((Names{"out.ifc", "real.ifc"}), folder.Names());
  EXPECT_EQ("older", folder.Read("real.ifc"));
}

// The second has no link any more: it is an output of its own.
TEST_F(LinkedOutput, CanBeTriedAgainUnderTheSameName) {
  Link();
  {
    const UnfinishedOutput output(path);
    WriteAndRemove("half");
  }
  {
    UnfinishedOutput output(path);
    folder.Write("out.ifc", "whole");
    output.Complete();
  }
  EXPECT_EQ(Names{"out.ifc"}, folder.Names());
  EXPECT_EQ("whole", folder.Read("out.ifc"));
}

TEST_F(LinkedOutput, ThatIsADeviceStays) {
  test::LinkToFullDevice(path);
  {
    const UnfinishedOutput output(path);
    ASSERT_TRUE(::platform::RemoveFile(path));
  }
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

TEST_F(LinkedOutput, InACircleIsNoReasonToFail) {
  fs::create_symlink("other.ifc", folder.Native("out.ifc"));
  fs::create_symlink("out.ifc", folder.Native("other.ifc"));
  FollowLinks(path);
  { const UnfinishedOutput output(path); }
  EXPECT_TRUE(fs::is_symlink(folder.Native("out.ifc")));
  EXPECT_TRUE(fs::is_symlink(folder.Native("other.ifc")));
}

TEST_F(LinkedOutput, InAFolderThatMayNotBeWrittenStays) {
  folder.Write("sub/real.ifc", "older");
  fs::create_symlink("sub/real.ifc", folder.Native("out.ifc"));
  fs::permissions(folder.Native("sub"), fs::perms(0555));
  fs::permissions(folder.Native(""), fs::perms(0777));
  {
    const test::OrdinaryUser user;
    const UnfinishedOutput output(path);
    ASSERT_TRUE(::platform::RemoveFile(path));
  }
  fs::permissions(folder.Native("sub"), fs::perms(0755));
  EXPECT_EQ("older", folder.Read("sub/real.ifc"));
}

// --- A process that is told to end ---------------------------------------------------------------

class EndedProcess : public UnfinishedOutputTest {
 protected:
  // Runs `steps` in a process of its own, which is then told to end.
  template <class Steps>
  static void EndAfter(Steps steps) {
    EXPECT_EXIT(
        {
          std::signal(SIGTERM, SIG_DFL);
          ::platform::CatchInterrupts();
          steps();
        },
        testing::KilledBySignal(SIGTERM), "");
  }
  static void End() { std::raise(SIGTERM); }
};

TEST_F(EndedProcess, LeavesNoUnfinishedOutput) {
  EndAfter([this] {
    const UnfinishedOutput output(path);
    folder.Write("out.ifc", "half");
    End();
  });
  EXPECT_EQ(Names(), folder.Names());
}

TEST_F(EndedProcess, RemovesWhatIsBehindALinkAndNotTheLink) {
  fs::create_symlink("real.ifc", folder.Native("out.ifc"));
  EndAfter([this] {
    const UnfinishedOutput output(path);
    folder.Write("out.ifc", "half");
    End();
  });
  EXPECT_EQ(Names{"out.ifc"},
            Names{fs::path(*fs::directory_iterator(folder.Native(""))).filename()});
  EXPECT_FALSE(folder.Has("real.ifc"));
}

TEST_F(EndedProcess, LeavesACompleteOutput) {
  EndAfter([this] {
    UnfinishedOutput output(path);
    folder.Write("out.ifc", "whole");
    output.Complete();
    End();
  });
  EXPECT_EQ("whole", folder.Read("out.ifc"));
}

TEST_F(EndedProcess, LeavesWhatIsNoLongerAnOutput) {
  EndAfter([this] {
    { const UnfinishedOutput output(path); }
    folder.Write("out.ifc", "somebody else's");
    End();
  });
  EXPECT_EQ("somebody else's", folder.Read("out.ifc"));
}

TEST_F(EndedProcess, RemovesTheSecondOutputOfTheSameName) {
  EndAfter([this] {
    {
      UnfinishedOutput first(path);
      folder.Write("out.ifc", "whole");
      first.Complete();
    }
    const UnfinishedOutput second(path);
    folder.Write("out.ifc", "half");
    End();
  });
  EXPECT_EQ(Names(), folder.Names());
}

TEST_F(EndedProcess, RemovesAnOutputWithTheLongestName) {
  const std::string name = std::string(251, 'n') + ".ifc";
  EndAfter([&] {
    const UnfinishedOutput output(folder.Path(name));
    folder.Write(name, "half");
    End();
  });
  EXPECT_EQ(Names(), folder.Names());
}

TEST_F(EndedProcess, LeavesADevice) {
  EndAfter([this] {
    test::LinkToFullDevice(path);
    const UnfinishedOutput output(path);
    End();
  });
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
  EXPECT_TRUE(fs::is_symlink(folder.Native("out.ifc")));
}

// --- Outputs of a document -----------------------------------------------------------------------

class LinkedSave : public test::ReadTest {
 protected:
  LinkedSave() { fs::create_symlink("real.ifc", folder_.Native("out.ifc")); }
  int Save() { return model_.Document().SaveFile(folder_.Path("out.ifc")); }

  const test::TemporaryFolder folder_;
  test::ReadModel model_{"#1=IFCPERSON('" + std::string(5000, 'x') + "',$,$,$,$,$,$,$);"};
};

TEST_F(LinkedSave, GoesToTheFileBehindTheLink) {
  folder_.Write("real.ifc", "older");
  EXPECT_EQ(1, Save());
  EXPECT_TRUE(fs::is_symlink(folder_.Native("out.ifc")));
  const std::string written = folder_.Read("real.ifc");
  EXPECT_TRUE(written.starts_with("ISO-10303-21;\nHEADER;\n"));
  EXPECT_TRUE(written.ends_with("xx',$,$,$,$,$,$,$);\nENDSEC;\nEND-ISO-10303-21;\n"));
}

TEST_F(LinkedSave, ThatIsCancelledLeavesNeither) {
  progress_.Forget();
  progress_.CancelAt(1);
  EXPECT_EQ(2, Save());
  EXPECT_EQ(Names(), folder_.Names());
}

TEST_F(LinkedSave, ThatFailsLeavesNeither) {
  const test::FileSizeLimit full(10);
  EXPECT_EQ(0, Save());
  EXPECT_EQ(Names(), folder_.Names());
}

TEST_F(LinkedSave, ThatMayNotWriteLeavesBothAsTheyAre) {
  folder_.Write("real.ifc", "older");
  fs::permissions(folder_.Native(""), fs::perms(0755));
  fs::permissions(folder_.Native("real.ifc"), fs::perms(0444));
  {
    const test::OrdinaryUser user;
    EXPECT_EQ(0, Save());
  }
  EXPECT_TRUE(fs::is_symlink(folder_.Native("out.ifc")));
  EXPECT_EQ("older", folder_.Read("real.ifc"));
}

#endif

}  // namespace
}  // namespace corvel
