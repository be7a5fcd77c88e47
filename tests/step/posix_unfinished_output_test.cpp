// Links, devices, rights and signals. POSIX only.
#ifndef _WIN32

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/console.h"
#include "step/writer/unfinished_output.h"
#include "support/posix_faults.h"
#include "support/temporary_folder.h"

namespace corvel {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

class PosixOutput : public testing::Test {
 protected:
  static void Write(UnfinishedOutput& output, std::string_view bytes) {
    ::platform::File file = output.Open();
    ASSERT_TRUE(file.IsOpen());
    ASSERT_EQ(bytes.size(), file.Write(bytes.data(), bytes.size()));
    ASSERT_TRUE(file.Close());
  }
  static void WriteWhole(const WideString& path, std::string_view bytes = "whole") {
    UnfinishedOutput output(path);
    Write(output, bytes);
    EXPECT_TRUE(output.Complete());
  }
  void ExpectRefused() const {
    const Names before = folder.Names();
    EXPECT_FALSE(UnfinishedOutput(path).Open().IsOpen());
    EXPECT_EQ(before, folder.Names());
  }
  void SetMode(const char* name, unsigned mode) const {
    fs::permissions(folder.Native(name), fs::perms(mode));
  }
  struct stat StatusOf(const char* name) const {
    struct stat status {};
    EXPECT_EQ(0, ::lstat(folder.Native(name).c_str(), &status));
    return status;
  }
  unsigned ModeOf(const char* name) const { return StatusOf(name).st_mode & 07777; }

  const test::TemporaryFolder folder;
  const WideString path = folder.Path("out.ifc");
};

// --- Links and devices ---------------------------------------------------------------------------

TEST_F(PosixOutput, LinksAreFollowedToTheirEnd) {
  fs::create_directory(folder.Native("sub"));
  fs::create_symlink("sub/second.ifc", folder.Native("out.ifc"));
  fs::create_symlink("../third.ifc", folder.Native("sub/second.ifc"));
  fs::create_symlink(folder.Native("real.ifc"), folder.Native("third.ifc"));
  EXPECT_EQ(folder.Path("real.ifc"), FollowLinks(path));
}

TEST_F(PosixOutput, ALinkMayLeadToANameThatIsNoText) {
  fs::create_symlink("caf\xE9.ifc", folder.Native("out.ifc"));
  EXPECT_EQ(folder.Path("caf\xE9.ifc"), FollowLinks(path));
  WriteWhole(path);
  EXPECT_EQ("whole", folder.Read("caf\xE9.ifc"));
}

TEST_F(PosixOutput, AFileInAFolderBehindALinkIsNoLinkItself) {
  fs::create_directory(folder.Native("sub"));
  fs::create_symlink("sub", folder.Native("link"));
  EXPECT_EQ(folder.Path("link/out.ifc"), FollowLinks(folder.Path("link/out.ifc")));
}

TEST_F(PosixOutput, BehindALinkIsMadeBesideWhatTheLinkLeadsTo) {
  folder.Write("sub/real.ifc", "older");
  fs::create_symlink("sub/real.ifc", folder.Native("out.ifc"));
  {
    UnfinishedOutput output(path);
    Write(output, "whole");
    EXPECT_EQ((Names{"out.ifc", "sub"}), folder.Names());
    EXPECT_EQ("older", folder.Read("sub/real.ifc"));
    EXPECT_TRUE(output.Complete());
  }
  EXPECT_TRUE(fs::is_symlink(folder.Native("out.ifc")));
  EXPECT_FALSE(fs::is_symlink(folder.Native("sub/real.ifc")));
  EXPECT_EQ("whole", folder.Read("sub/real.ifc"));
}

TEST_F(PosixOutput, BehindALinkThatLeadsNowhereIsMadeThere) {
  fs::create_symlink("real.ifc", folder.Native("out.ifc"));
  WriteWhole(path);
  EXPECT_EQ((Names{"out.ifc", "real.ifc"}), folder.Names());
  EXPECT_EQ("whole", folder.Read("real.ifc"));
}

TEST_F(PosixOutput, ThatIsDiscardedLeavesTheLink) {
  fs::create_symlink("real.ifc", folder.Native("out.ifc"));
  {
    UnfinishedOutput output(path);
    Write(output, "half");
  }
  EXPECT_FALSE(folder.Has("real.ifc"));
  EXPECT_TRUE(fs::is_symlink(folder.Native("out.ifc")));
}

TEST_F(PosixOutput, InACircleOfLinksIsRefused) {
  fs::create_symlink("other.ifc", folder.Native("out.ifc"));
  fs::create_symlink("out.ifc", folder.Native("other.ifc"));
  ExpectRefused();
  EXPECT_TRUE(fs::is_symlink(folder.Native("out.ifc")));
}

TEST_F(PosixOutput, ADeviceIsWrittenToItselfAndStays) {
  fs::create_symlink("/dev/null", folder.Native("out.ifc"));
  UnfinishedOutput output(path);
  Write(output, "anything");
  EXPECT_EQ(Names{"out.ifc"}, folder.Names());
  EXPECT_TRUE(output.Complete());
  output.Discard();
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
  EXPECT_TRUE(fs::is_symlink(folder.Native("out.ifc")));
}

TEST_F(PosixOutput, APipeIsWrittenToItselfAndStays) {
  ASSERT_EQ(0, ::mkfifo(folder.Native("out.ifc").c_str(), 0600));
  const ::platform::File reader(::open(folder.Native("out.ifc").c_str(), O_RDONLY | O_NONBLOCK));
  ASSERT_TRUE(reader.IsOpen());
  UnfinishedOutput output(path);
  Write(output, "bytes");
  EXPECT_TRUE(output.Complete());
  EXPECT_TRUE(fs::is_fifo(folder.Native("out.ifc")));
}

// --- Rights --------------------------------------------------------------------------------------

TEST_F(PosixOutput, GetsTheModeOfWhatItReplaces) {
  for (const unsigned mode : {0600u, 0640u, 0664u, 0666u, 0755u}) {
    folder.Write("out.ifc", "older");
    SetMode("out.ifc", mode);
    WriteWhole(path);
    EXPECT_EQ(mode, ModeOf("out.ifc"));
  }
}

TEST_F(PosixOutput, ThatReplacesNothingGetsTheUsualMode) {
  const mode_t before = ::umask(0027);
  WriteWhole(path);
  ::umask(before);
  EXPECT_EQ(0640u, ModeOf("out.ifc"));
}

TEST_F(PosixOutput, IsReadByNobodyElseBeforeItReplacesAFile) {
  folder.Write("out.ifc", "older");
  SetMode("out.ifc", 0644);
  UnfinishedOutput output(path);
  Write(output, "half");
  EXPECT_EQ(0600u, ModeOf(folder.Names().front().c_str()));
}

TEST_F(PosixOutput, GetsTheOwnerOfWhatItReplaces) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs to be root";
  folder.Write("out.ifc", "older");
  ASSERT_EQ(0, ::chown(folder.Native("out.ifc").c_str(), 1234, 4321));
  SetMode("out.ifc", 0660);
  WriteWhole(path);
  EXPECT_EQ(1234u, StatusOf("out.ifc").st_uid);
  EXPECT_EQ(4321u, StatusOf("out.ifc").st_gid);
  EXPECT_EQ(0660u, ModeOf("out.ifc"));
}

TEST_F(PosixOutput, WhoseGroupCannotBeKeptLetsNoOtherGroupIn) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs to be root";
  folder.Write("out.ifc", "older");
  ASSERT_EQ(0, ::chown(folder.Native("out.ifc").c_str(), 65534, 4321));
  SetMode("out.ifc", 0664);
  SetMode("", 0777);
  {
    const test::OrdinaryUser user;
    WriteWhole(path);
  }
  EXPECT_NE(4321u, StatusOf("out.ifc").st_gid);
  EXPECT_EQ(0644u, ModeOf("out.ifc"));
}

TEST_F(PosixOutput, ThatMayNotBeWrittenIsRefusedThoughItCouldBeReplaced) {
  folder.Write("out.ifc", "older");
  SetMode("out.ifc", 0444);
  SetMode("", 0777);
  const test::OrdinaryUser user;
  ExpectRefused();
  EXPECT_EQ("older", folder.Read("out.ifc"));
}

TEST_F(PosixOutput, InAFolderThatTakesNoFileIsRefused) {
  folder.Write("out.ifc", "older");
  SetMode("out.ifc", 0666);
  SetMode("", 0555);
  {
    const test::OrdinaryUser user;
    ExpectRefused();
  }
  SetMode("", 0755);
  EXPECT_EQ("older", folder.Read("out.ifc"));
}

TEST_F(PosixOutput, OfAnotherUserInASharedFolderIsRefused) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs to be root";
  folder.Write("out.ifc", "older");
  SetMode("out.ifc", 0666);
  SetMode("", 01777);
  const test::OrdinaryUser user;
  ExpectRefused();
}

TEST_F(PosixOutput, LeavesTheOldBytesUnderOtherNames) {
  folder.Write("out.ifc", "older");
  fs::create_hard_link(folder.Native("out.ifc"), folder.Native("other.ifc"));
  WriteWhole(path);
  EXPECT_EQ("whole", folder.Read("out.ifc"));
  EXPECT_EQ("older", folder.Read("other.ifc"));
}

// --- Processes that end --------------------------------------------------------------------------

class EndedProcess : public PosixOutput {
 protected:
  // Runs `steps` in a process of its own that catches requests to end, and ends with status 0 when
  // it comes to its end.
  template <class Steps>
  static int StatusAfter(Steps steps) {
    const pid_t child = ::fork();
    if (child == 0) {
      for (const int signal : {SIGINT, SIGTERM, SIGHUP}) std::signal(signal, SIG_DFL);
      ::platform::CatchInterrupts();
      steps();
      ::_exit(0);
    }
    int status = 0;
    EXPECT_EQ(child, ::waitpid(child, &status, 0));
    return status;
  }
  static bool WasInterrupted(int status) {
    constexpr int kInterrupted = 130;
    return WIFEXITED(status) && WEXITSTATUS(status) == kInterrupted;
  }
  static void InterruptTwice() {
    std::raise(SIGINT);
    std::raise(SIGINT);
  }
};

TEST_F(EndedProcess, ByASecondInterruptLeavesNoUnfinishedOutput) {
  folder.Write("out.ifc", "older");
  EXPECT_TRUE(WasInterrupted(StatusAfter([this] {
    UnfinishedOutput output(path);
    Write(output, "half");
    InterruptTwice();
  })));
  EXPECT_EQ(Names{"out.ifc"}, folder.Names());
  EXPECT_EQ("older", folder.Read("out.ifc"));
}

TEST_F(EndedProcess, ByASecondInterruptLeavesWhatIsComplete) {
  EXPECT_TRUE(WasInterrupted(StatusAfter([this] {
    UnfinishedOutput output(path);
    Write(output, "whole");
    output.Complete();
    InterruptTwice();
  })));
  EXPECT_EQ("whole", folder.Read("out.ifc"));
}

TEST_F(EndedProcess, ByASecondInterruptRemovesTheOutputThatIsBeingWritten) {
  EXPECT_TRUE(WasInterrupted(StatusAfter([this] {
    WriteWhole(path, "the first");
    UnfinishedOutput second(path);
    Write(second, "half");
    InterruptTwice();
  })));
  EXPECT_EQ(Names{"out.ifc"}, folder.Names());
  EXPECT_EQ("the first", folder.Read("out.ifc"));
}

TEST_F(EndedProcess, ByASecondInterruptRemovesAnOutputWithTheLongestName) {
  const WideString longest = folder.Path(std::string(251, 'n') + ".ifc");
  EXPECT_TRUE(WasInterrupted(StatusAfter([&] {
    UnfinishedOutput output(longest);
    Write(output, "half");
    InterruptTwice();
  })));
  EXPECT_EQ(Names(), folder.Names());
}

TEST_F(EndedProcess, IsEndedByAnInterruptBehindARequestToEnd) {
  EXPECT_TRUE(WasInterrupted(StatusAfter([] {
    std::raise(SIGTERM);
    std::raise(SIGINT);
  })));
}

// As "timeout" and shells that go away send them.
TEST_F(EndedProcess, IsNotEndedByRequestsToEndHoweverMany) {
  EXPECT_EQ(0, StatusAfter([] {
              for (const int signal : {SIGTERM, SIGTERM, SIGHUP, SIGTERM}) std::raise(signal);
              if (!::platform::IsInterrupted()) ::_exit(1);
            }));
}

TEST_F(EndedProcess, TellsByWhatItWasAskedToEnd) {
  EXPECT_EQ(0, StatusAfter([] {
              if (!::platform::RequestToEnd().empty()) ::_exit(1);
              std::raise(SIGTERM);
              ::platform::ForgetInterrupt();
              if (::platform::RequestToEnd() != u"SIGTERM" || !::platform::IsInterrupted())
                ::_exit(2);
              std::raise(SIGHUP);
              if (::platform::RequestToEnd() != u"SIGHUP") ::_exit(3);
            }));
}

TEST_F(EndedProcess, AnInterruptIsNoRequestToEndAndCanBeForgotten) {
  EXPECT_EQ(0, StatusAfter([] {
              std::raise(SIGINT);
              if (!::platform::IsInterrupted() || !::platform::RequestToEnd().empty()) ::_exit(1);
              ::platform::ForgetInterrupt();
              if (::platform::IsInterrupted()) ::_exit(2);
              std::raise(SIGINT);
              if (!::platform::IsInterrupted()) ::_exit(3);
            }));
}

TEST_F(EndedProcess, GoesOnIgnoringWhatItWasToldToIgnore) {
  for (const int signal : {SIGTERM, SIGHUP, SIGINT}) {
    const auto before = std::signal(signal, SIG_IGN);
    const pid_t child = ::fork();
    if (child == 0) {
      ::platform::CatchInterrupts();
      std::raise(signal);
      std::raise(signal);
      ::_exit(::platform::IsInterrupted() ? 1 : 0);
    }
    std::signal(signal, before);
    int status = -1;
    EXPECT_EQ(child, ::waitpid(child, &status, 0));
    EXPECT_EQ(0, status) << signal;
  }
}

TEST_F(EndedProcess, ByForceLeavesWhatWasThereAndALeftOverForTheNextRun) {
  folder.Write("out.ifc", "older");
  const int status = StatusAfter([this] {
    UnfinishedOutput output(path);
    Write(output, "half");
    std::raise(SIGKILL);
  });
  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(2u, folder.Names().size());
  EXPECT_EQ("older", folder.Read("out.ifc"));
  WriteWhole(path);
  EXPECT_EQ(Names{"out.ifc"}, folder.Names());
  EXPECT_EQ("whole", folder.Read("out.ifc"));
}

}  // namespace
}  // namespace corvel

#endif
