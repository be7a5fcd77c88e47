#include "platform/locked_file.h"

#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace platform {
namespace {

using corvel::test::TemporaryFolder;
using Names = std::vector<std::string>;

std::string ReadAll(File& file) {
  std::string bytes(1000, '\0');
  file.Seek(0);
  bytes.resize(file.Read(bytes.data(), bytes.size()));
  return bytes;
}

void Write(File& file, std::string_view bytes) {
  EXPECT_EQ(bytes.size(), file.Write(bytes.data(), bytes.size()));
}

TEST(ClaimedFile, IsMadeWhereNoneStands) {
  TemporaryFolder folder;
  File file;
  EXPECT_EQ(Claim::kTaken, ClaimFile(folder.Path("a.ifc"), file));
  EXPECT_EQ(0, file.Size());
  EXPECT_EQ(Names{"a.ifc"}, folder.Names());
}

TEST(ClaimedFile, KeepsItsBytesUntilItIsEmptied) {
  TemporaryFolder folder;
  File file;
  EXPECT_EQ(Claim::kTaken, ClaimFile(folder.Write("a.ifc", "before"), file));
  EXPECT_EQ("before", ReadAll(file));
  EXPECT_TRUE(file.Empty());
  Write(file, "new");
  EXPECT_EQ("new", folder.Read("a.ifc"));
}

TEST(ClaimedFile, IsWrittenAndReadThroughOneHandle) {
  TemporaryFolder folder;
  File file;
  ASSERT_EQ(Claim::kTaken, ClaimFile(folder.Path("a.ifc"), file));
  Write(file, "first;second;");
  EXPECT_EQ("first;second;", ReadAll(file));
}

TEST(ClaimedFile, IsLockedUntilItIsClosed) {
  TemporaryFolder folder;
  const std::u16string path = folder.Write("a.ifc", "bytes");
  File first;
  File second;
  ASSERT_EQ(Claim::kTaken, ClaimFile(path, first));
  EXPECT_EQ(Claim::kLocked, ClaimFile(path, second));
  EXPECT_FALSE(second.IsOpen());
  EXPECT_EQ("bytes", ReadAll(first)) << "a claim that is refused changes nothing";
  first.Close();
  EXPECT_EQ(Claim::kTaken, ClaimFile(path, second));
}

TEST(ClaimedFile, OthersReadItMeanwhile) {
  TemporaryFolder folder;
  const std::u16string path = folder.Write("a.ifc", "bytes");
  File file;
  File reader;
  ASSERT_EQ(Claim::kTaken, ClaimFile(path, file));
  ASSERT_TRUE(reader.Open(path, OpenMode::kRead));
  EXPECT_EQ("bytes", ReadAll(reader));
}

TEST(ClaimedFile, InTheWayOfAFolderOrWithoutOneIsRefused) {
  TemporaryFolder folder;
  File file;
  EXPECT_EQ(Claim::kRefused, ClaimFile(folder.Path(), file));
  EXPECT_EQ(Claim::kRefused, ClaimFile(folder.Path("none/a.ifc"), file));
  EXPECT_EQ(Claim::kRefused, ClaimFile(u"", file));
  EXPECT_FALSE(file.IsOpen());
}

TEST(ClaimedFile, ItsNameIsNotCutAtANul) {
  TemporaryFolder folder;
  std::u16string path = folder.Write("a", "x");
  path += std::u16string(u"\0.ifc", 5);
  File file;
  EXPECT_EQ(Claim::kRefused, ClaimFile(path, file));
  EXPECT_FALSE(OpenUnnamedFile(folder.Path() + std::u16string(u"\0x", 2), file));
}

TEST(ClaimedFile, IsRemovedAndClosedTogether) {
  TemporaryFolder folder;
  const std::u16string path = folder.Path("a.ifc");
  File file;
  ASSERT_EQ(Claim::kTaken, ClaimFile(path, file));
  EXPECT_TRUE(RemoveClaimedFile(path, file));
  EXPECT_FALSE(file.IsOpen());
  EXPECT_TRUE(folder.Names().empty());
  EXPECT_FALSE(RemoveClaimedFile(path, file));
}

TEST(UnnamedFile, IsWrittenAndReadAndLeavesNothing) {
  TemporaryFolder folder;
  File file;
  ASSERT_TRUE(OpenUnnamedFile(folder.Path(), file));
  Write(file, "bytes");
  EXPECT_EQ("bytes", ReadAll(file));
  file.Close();
  EXPECT_TRUE(folder.Names().empty());
}

TEST(UnnamedFile, ManyAreOpenAtOnce) {
  TemporaryFolder folder;
  std::vector<File> files(20);
  for (File& file : files) {
    ASSERT_TRUE(OpenUnnamedFile(folder.Path(), file));
    EXPECT_EQ("", ReadAll(file));
    Write(file, "x");
  }
  files.clear();
  EXPECT_TRUE(folder.Names().empty());
}

TEST(UnnamedFile, NeedsAFolder) {
  TemporaryFolder folder;
  File file;
  EXPECT_FALSE(OpenUnnamedFile(folder.Path("none"), file));
  EXPECT_FALSE(OpenUnnamedFile(folder.Write("a.ifc", ""), file));
  EXPECT_FALSE(OpenUnnamedFile(u"", file));
  EXPECT_EQ(Names{"a.ifc"}, folder.Names());
}

TEST(UnnamedFile, FindsRoomInTheTemporaryFolder) {
  File file;
  EXPECT_TRUE(IsFolder(SystemTemporaryFolder()));
  EXPECT_TRUE(OpenUnnamedFile(SystemTemporaryFolder(), file));
}

}  // namespace
}  // namespace platform
