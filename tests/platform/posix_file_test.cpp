#ifndef _WIN32

#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "platform/file.h"
#include "platform/locked_file.h"
#include "platform/utf8.h"
#include "support/posix_faults.h"
#include "support/temporary_folder.h"

namespace platform {
namespace {

using corvel::test::FileSizeLimit;
using corvel::test::OrdinaryUser;
using corvel::test::TemporaryFolder;

// Interrupts the calls of one thread that block, again and again, until it goes. The file functions
// of that thread get EINTR, since the handler does not ask for restarts.
class Interrupter {
 public:
  Interrupter() {
    struct sigaction quiet {};
    quiet.sa_handler = [](int) {};
    ::sigaction(SIGUSR1, &quiet, &before_);
    thread_ = std::thread([this, target = ::pthread_self()] {
      while (!done_) {
        ::pthread_kill(target, SIGUSR1);
        std::this_thread::sleep_for(std::chrono::microseconds(200));
      }
    });
  }
  ~Interrupter() {
    done_ = true;
    thread_.join();
    ::sigaction(SIGUSR1, &before_, nullptr);
  }

 private:
  std::atomic<bool> done_{false};
  std::thread thread_;
  struct sigaction before_ {};
};

std::u16string MakePipe(const TemporaryFolder& folder) {
  const auto path = folder.Path("pipe.ifc");
  EXPECT_EQ(0, ::mkfifo(ToUtf8(path).c_str(), 0600));
  return path;
}

void Nap() { std::this_thread::sleep_for(std::chrono::milliseconds(5)); }

TEST(PosixFile, ReadingGoesOnAfterInterruptionsUntilTheCountIsMet) {
  TemporaryFolder folder;
  const auto path = MakePipe(folder);
  std::thread writer([&] {
    File pipe;
    pipe.Open(path, OpenMode::kWrite);
    for (const char* part : {"one", "two", "three"}) {
      Nap();
      pipe.Write(part, std::string_view(part).size());
    }
  });
  std::string bytes(100, '\0');
  {
    Interrupter interrupter;
    File pipe;
    EXPECT_TRUE(pipe.Open(path, OpenMode::kRead));
    bytes.resize(pipe.Read(bytes.data(), bytes.size()));
    EXPECT_TRUE(pipe.AtEnd());
    EXPECT_FALSE(pipe.ReadFailed());
  }
  writer.join();
  EXPECT_EQ("onetwothree", bytes);
}

TEST(PosixFile, WritingGoesOnAfterShortWritesAndInterruptions) {
  TemporaryFolder folder;
  const auto path = MakePipe(folder);
  std::string sent(1 << 20, '\0');
  for (std::size_t i = 0; i < sent.size(); ++i) sent[i] = static_cast<char>(i * 7 + i / 256);
  std::string received;
  std::thread reader([&] {
    File pipe;
    pipe.Open(path, OpenMode::kRead);
    char part[30000];
    while (const std::size_t taken = pipe.Read(part, sizeof part)) {
      received.append(part, taken);
      if (received.size() < 300000) Nap();
    }
  });
  {
    Interrupter interrupter;
    File pipe;
    EXPECT_TRUE(pipe.Open(path, OpenMode::kWrite));
    EXPECT_EQ(sent.size(), pipe.Write(sent.data(), sent.size()));
    EXPECT_TRUE(pipe.Sync()) << "a pipe has nothing to hand over";
  }
  reader.join();
  EXPECT_TRUE(sent == received);
}

TEST(PosixFile, AFullDiskMakesTheWriteShort) {
  TemporaryFolder folder;
  FileSizeLimit limit(10);
  File file;
  ASSERT_TRUE(file.Open(folder.Path("a.ifc"), OpenMode::kWrite));
  EXPECT_EQ(10u, file.Write("123456789012345", 15));
  EXPECT_EQ(0u, file.Write("x", 1));
  EXPECT_TRUE(file.Close());
  EXPECT_EQ("1234567890", folder.Read("a.ifc"));
}

TEST(PosixFile, AFailedReadIsNotTheEndOfTheFile) {
  File memory;  // nothing is mapped at address 0
  ASSERT_TRUE(memory.Open(u"/proc/self/mem", OpenMode::kRead));
  char byte = 0;
  EXPECT_EQ(0u, memory.Read(&byte, 1));
  EXPECT_TRUE(memory.ReadFailed());
  EXPECT_FALSE(memory.AtEnd());
}

TEST(PosixFile, SyncAndCloseTellWhatTheSystemSays) {
  TemporaryFolder folder;
  File file;
  ASSERT_TRUE(file.Open(folder.Path("a.ifc"), OpenMode::kWrite));
  EXPECT_TRUE(file.Sync());
  ASSERT_TRUE(corvel::test::StealDescriptor(folder.Path("a.ifc")));
  EXPECT_FALSE(file.Sync());
  EXPECT_FALSE(file.Close());
  EXPECT_FALSE(file.IsOpen());
}

TEST(PosixFile, AReadOnlyFolderTakesNoFile) {
  TemporaryFolder folder;
  std::filesystem::permissions(folder.Native("."), std::filesystem::perms::owner_read |
                                                       std::filesystem::perms::owner_exec |
                                                       std::filesystem::perms::others_read |
                                                       std::filesystem::perms::others_exec);
  {
    OrdinaryUser user;
    File file;
    EXPECT_FALSE(file.Open(folder.Path("a.ifc"), OpenMode::kWrite));
    EXPECT_FALSE(MakeFolder(folder.Path("sub")));
  }
  std::filesystem::permissions(folder.Native("."), std::filesystem::perms::owner_all);
  EXPECT_TRUE(folder.Names().empty());
}

TEST(PosixFile, NamesThatAreNoUtf8AreReached) {
  TemporaryFolder folder;
  folder.Write("caf\xE9.ifc", "x");
  const auto path = FromUtf8(folder.Native("caf\xE9.ifc").native());
  EXPECT_TRUE(FileExists(path));
  EXPECT_EQ(u'\xDCE9', path[path.size() - 5]);
}

TEST(PosixFile, RemovingALinkLeavesWhatItLeadsTo) {
  TemporaryFolder folder;
  folder.Write("a.ifc", "x");
  std::filesystem::create_symlink(folder.Native("a.ifc"), folder.Native("link.ifc"));
  EXPECT_TRUE(IsSameFile(folder.Path("a.ifc"), folder.Path("link.ifc")));
  EXPECT_TRUE(RemoveFile(folder.Path("link.ifc")));
  EXPECT_EQ("x", folder.Read("a.ifc"));
}

TEST(PosixFile, DevicesAndPipesAreNotRemoved) {
  TemporaryFolder folder;
  EXPECT_FALSE(RemoveFile(MakePipe(folder)));
  EXPECT_TRUE(folder.Has("pipe.ifc"));
}

// --- What stands in a file's place ---------------------------------------------------------------

void Link(const TemporaryFolder& folder, const char* target) {
  std::filesystem::create_symlink(target, folder.Native("link.ifc"));
}

TEST(PosixFile, SharedAppendingFollowsNoLinkAndOpensNoPipeOrDevice) {
  TemporaryFolder folder;
  folder.Write("a.ifc", "x");
  Link(folder, "a.ifc");
  File file;
  EXPECT_FALSE(file.Open(folder.Path("link.ifc"), OpenMode::kSharedAppend));
  EXPECT_FALSE(file.Open(MakePipe(folder), OpenMode::kSharedAppend));
  EXPECT_FALSE(file.Open(u"/dev/null", OpenMode::kSharedAppend));
  EXPECT_EQ("x", folder.Read("a.ifc"));
}

TEST(PosixFile, AnOrdinaryFileIsNoPipeDeviceOrFolder) {
  TemporaryFolder folder;
  folder.Write("a.ifc", "x");
  Link(folder, "a.ifc");
  EXPECT_TRUE(IsOrdinaryFile(folder.Path("a.ifc")));
  EXPECT_TRUE(IsOrdinaryFile(folder.Path("link.ifc")));
  EXPECT_FALSE(IsOrdinaryFile(MakePipe(folder)));
  EXPECT_FALSE(IsOrdinaryFile(u"/dev/null"));
  EXPECT_FALSE(IsOrdinaryFile(folder.Path()));
  EXPECT_FALSE(IsOrdinaryFile(folder.Path("none.ifc")));
}

TEST(PosixClaimedFile, IsNoLinkPipeOrDevice) {
  TemporaryFolder folder;
  folder.Write("a.ifc", "x");
  Link(folder, "a.ifc");
  File file;
  EXPECT_EQ(Claim::kRefused, ClaimFile(folder.Path("link.ifc"), file));
  EXPECT_EQ(Claim::kRefused, ClaimFile(MakePipe(folder), file));
  EXPECT_EQ(Claim::kRefused, ClaimFile(u"/dev/null", file));
  EXPECT_EQ("x", folder.Read("a.ifc"));
}

TEST(PosixClaimedFile, MayBeBehindALinkToItsFolder) {
  TemporaryFolder folder;
  folder.Write("sub/a.ifc", "x");
  std::filesystem::create_directory_symlink("sub", folder.Native("link"));
  File file;
  EXPECT_EQ(Claim::kTaken, ClaimFile(folder.Path("link/a.ifc"), file));
}

TEST(PosixClaimedFile, OneThatWasRemovedGivesItsPlaceToTheNext) {
  TemporaryFolder folder;
  const auto path = folder.Path("a.ifc");
  File first;
  File second;
  ASSERT_EQ(Claim::kTaken, ClaimFile(path, first));
  EXPECT_TRUE(RemoveFile(path));
  ASSERT_EQ(Claim::kTaken, ClaimFile(path, second));
  EXPECT_EQ(3u, second.Write("new", 3));
  EXPECT_FALSE(RemoveClaimedFile(path, first)) << "it is another's by now";
  EXPECT_EQ("new", folder.Read("a.ifc"));
}

TEST(PosixClaimedFile, OfAFolderThatMayNotBeWrittenIsRefused) {
  TemporaryFolder folder;
  std::filesystem::permissions(folder.Native("."), std::filesystem::perms(0555));
  {
    OrdinaryUser user;
    File file;
    EXPECT_EQ(Claim::kRefused, ClaimFile(folder.Path("a.ifc"), file));
    EXPECT_FALSE(OpenUnnamedFile(folder.Path(), file));
  }
  std::filesystem::permissions(folder.Native("."), std::filesystem::perms::owner_all);
  EXPECT_TRUE(folder.Names().empty());
}

TEST(PosixUnnamedFile, HasNoNameWhileItIsOpen) {
  TemporaryFolder folder;
  File file;
  ASSERT_TRUE(OpenUnnamedFile(folder.Path(), file));
  EXPECT_TRUE(folder.Names().empty());
}

TEST(PosixUnnamedFile, TheTemporaryFolderIsWhatTheUserSays) {
  const char* const before = std::getenv("TMPDIR");
  const std::string kept = before == nullptr ? "" : before;
  ::setenv("TMPDIR", "/else/where", 1);
  EXPECT_EQ(u"/else/where", SystemTemporaryFolder());
  ::setenv("TMPDIR", "", 1);
  EXPECT_EQ(u"/tmp", SystemTemporaryFolder());
  ::unsetenv("TMPDIR");
  EXPECT_EQ(u"/tmp", SystemTemporaryFolder());
  if (before != nullptr) ::setenv("TMPDIR", kept.c_str(), 1);
}

}  // namespace
}  // namespace platform

#endif
