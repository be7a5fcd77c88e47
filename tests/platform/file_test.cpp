#include "platform/file.h"

#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace platform {
namespace {

using corvel::test::TemporaryFolder;

std::string ReadUpTo(File& file, std::size_t count) {
  std::string bytes(count, '\0');
  bytes.resize(file.Read(bytes.data(), count));
  return bytes;
}

TEST(File, WritingEmptiesWhatStoodThere) {
  TemporaryFolder folder;
  const auto path = folder.Write("a.ifc", "long before");
  File file;
  ASSERT_TRUE(file.Open(path, OpenMode::kWrite));
  EXPECT_EQ(3u, file.Write("new", 3));
  EXPECT_TRUE(file.Close());
  EXPECT_EQ("new", folder.Read("a.ifc"));
}

TEST(File, LineEndsAreWrittenAndReadAsTheyAre) {
  TemporaryFolder folder;
  const std::string bytes("a\r\nb\n\x1A\0c", 8);
  File file;
  ASSERT_TRUE(file.Open(folder.Path("a.ifc"), OpenMode::kWrite));
  file.Write(bytes.data(), bytes.size());
  file.Close();
  ASSERT_TRUE(file.Open(folder.Path("a.ifc"), OpenMode::kRead));
  EXPECT_EQ(bytes, ReadUpTo(file, 100));
}

TEST(File, AppendingGoesToTheEndWhateverThePosition) {
  for (const OpenMode mode : {OpenMode::kAppend, OpenMode::kSharedAppend}) {
    TemporaryFolder folder;
    const auto path = folder.Write("a.ifc", "head");
    File file;
    ASSERT_TRUE(file.Open(path, mode));
    file.Seek(0);
    file.Write("tail", 4);
    file.Close();
    EXPECT_EQ("headtail", folder.Read("a.ifc"));
  }
}

TEST(File, AppendingCreatesAMissingFile) {
  TemporaryFolder folder;
  File file;
  ASSERT_TRUE(file.Open(folder.Path("a.txt"), OpenMode::kSharedAppend));
  file.Close();
  EXPECT_EQ("", folder.Read("a.txt"));
}

TEST(File, OthersReadAndWriteASharedFileMeanwhile) {
  TemporaryFolder folder;
  const auto path = folder.Path("a.txt");
  File first;
  File second;
  File reader;
  ASSERT_TRUE(first.Open(path, OpenMode::kSharedAppend));
  ASSERT_TRUE(second.Open(path, OpenMode::kSharedAppend));
  first.Write("1", 1);
  second.Write("2", 1);
  first.Write("3", 1);
  ASSERT_TRUE(reader.Open(path, OpenMode::kRead));
  EXPECT_EQ("123", ReadUpTo(reader, 10));
}

TEST(File, MissingFilesAndFoldersCannotBeOpened) {
  TemporaryFolder folder;
  File file;
  EXPECT_FALSE(file.Open(folder.Path("none.ifc"), OpenMode::kRead));
  EXPECT_FALSE(file.Open(folder.Path(), OpenMode::kRead));
  EXPECT_FALSE(file.Open(folder.Path(), OpenMode::kWrite));
  EXPECT_FALSE(file.Open(u"", OpenMode::kRead));
  EXPECT_FALSE(file.IsOpen());
}

TEST(File, ANameIsNotCutAtANul) {
  TemporaryFolder folder;
  auto path = folder.Write("a", "x");
  path += std::u16string(u"\0.ifc", 5);
  File file;
  EXPECT_FALSE(file.Open(path, OpenMode::kWrite));
  EXPECT_EQ("x", folder.Read("a"));
}

TEST(File, TheEndIsSeenOnlyByAReadThatMeetsIt) {
  TemporaryFolder folder;
  const auto path = folder.Write("a.ifc", "12345");
  File file;
  ASSERT_TRUE(file.Open(path, OpenMode::kRead));
  EXPECT_EQ("12345", ReadUpTo(file, 5));
  EXPECT_FALSE(file.AtEnd());
  EXPECT_EQ("", ReadUpTo(file, 1));
  EXPECT_TRUE(file.AtEnd());
  EXPECT_FALSE(file.ReadFailed());
}

TEST(File, PositionAndSizeAndSeekAgree) {
  TemporaryFolder folder;
  const auto path = folder.Write("a.ifc", "123456789");
  File file;
  EXPECT_EQ(-1, file.Position());
  EXPECT_EQ(-1, file.Size());
  EXPECT_FALSE(file.Seek(0));
  ASSERT_TRUE(file.Open(path, OpenMode::kRead));
  EXPECT_EQ(9, file.Size());
  EXPECT_TRUE(file.Seek(7));
  EXPECT_EQ(7, file.Position());
  EXPECT_EQ("89", ReadUpTo(file, 5));
  EXPECT_EQ(9, file.Position());
}

TEST(File, PlacesBeyondFourGibibytesAreReached) {
  TemporaryFolder folder;
  folder.Write("large.ifc", "");
  constexpr std::int64_t kFar = (std::int64_t{5} << 30) + 7;
  std::filesystem::resize_file(folder.Native("large.ifc"), kFar);
  File file;
  ASSERT_TRUE(file.Open(folder.Path("large.ifc"), OpenMode::kSharedAppend));
  EXPECT_EQ(3u, file.Write("end", 3));
  ASSERT_TRUE(file.Open(folder.Path("large.ifc"), OpenMode::kRead));
  EXPECT_EQ(kFar + 3, file.Size());
  ASSERT_TRUE(file.Seek(kFar));
  EXPECT_EQ("end", ReadUpTo(file, 10));
  EXPECT_EQ(kFar + 3, file.Position());
}

TEST(File, AMovedFileIsClosedByItsNewOwnerAlone) {
  TemporaryFolder folder;
  File first;
  ASSERT_TRUE(first.Open(folder.Path("a.ifc"), OpenMode::kWrite));
  File second(std::move(first));
  EXPECT_FALSE(first.IsOpen());  // NOLINT(bugprone-use-after-move): that is the fact
  EXPECT_EQ(1u, second.Write("x", 1));
  File third;
  third = std::move(second);
  EXPECT_EQ(1u, third.Write("y", 1));
  third.Close();
  EXPECT_EQ("xy", folder.Read("a.ifc"));
}

TEST(File, AClosedFileTakesAndGivesNothing) {
  File file;
  char byte = 0;
  EXPECT_EQ(0u, file.Read(&byte, 1));
  EXPECT_EQ(0u, file.Write(&byte, 1));
  EXPECT_FALSE(file.Sync());
  EXPECT_TRUE(file.Close());
}

TEST(File, NamesBeyondAsciiLeadToTheSameFileAsForTheSystem) {
  TemporaryFolder folder;
  File file;
  ASSERT_TRUE(
      file.Open(JoinPath(folder.Path(), u"Geb\u00E4ude \u0142 \U0001F3E0.ifc"), OpenMode::kWrite));
  EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(folder.Path()) /
                                      u"Geb\u00E4ude \u0142 \U0001F3E0.ifc"));
}

TEST(Files, RemovingNothingFails) {
  TemporaryFolder folder;
  const auto path = folder.Write("a.ifc", "x");
  EXPECT_TRUE(RemoveFile(path));
  EXPECT_FALSE(folder.Has("a.ifc"));
  EXPECT_FALSE(RemoveFile(path));
}

TEST(Files, AFolderIsNotRemovedAsAFile) {
  TemporaryFolder folder;
  ASSERT_TRUE(MakeFolder(folder.Path("sub")));
  EXPECT_FALSE(RemoveFile(folder.Path("sub")));
  EXPECT_TRUE(folder.Has("sub"));
}

TEST(Files, FilesAndFoldersAreToldApart) {
  TemporaryFolder folder;
  const auto file = folder.Write("a.ifc", "");
  EXPECT_TRUE(FileExists(file));
  EXPECT_FALSE(IsFolder(file));
  EXPECT_TRUE(IsFolder(folder.Path()));
  EXPECT_FALSE(FileExists(folder.Path()));
  EXPECT_FALSE(FileExists(folder.Path("none")));
  EXPECT_FALSE(IsFolder(folder.Path("none")));
}

TEST(Files, AFolderIsMadeOnceAndOnlyInAFolder) {
  TemporaryFolder folder;
  EXPECT_TRUE(MakeFolder(folder.Path("sub")));
  EXPECT_FALSE(MakeFolder(folder.Path("sub")));
  EXPECT_FALSE(MakeFolder(folder.Path("none/deep")));
}

TEST(Files, SpellingDoesNotMakeAnotherFile) {
  TemporaryFolder folder;
  const auto a = folder.Write("a.ifc", "");
  const auto b = folder.Write("b.ifc", "");
  MakeFolder(folder.Path("sub"));
  EXPECT_TRUE(IsSameFile(a, folder.Path("sub/../a.ifc")));
  EXPECT_FALSE(IsSameFile(a, b));
  EXPECT_FALSE(IsSameFile(a, folder.Path("none")));
  EXPECT_FALSE(IsSameFile(folder.Path("none"), folder.Path("none")));
}

TEST(Paths, BothSeparatorsCount) {
  EXPECT_EQ(4u, FindLastSeparator(u"C:\\m\\a.ifc"));
  EXPECT_EQ(2u, FindLastSeparator(u"/m/a.ifc"));
  EXPECT_EQ(4u, FindLastSeparator(u"\\m/x/a.ifc"));
  EXPECT_EQ(std::u16string::npos, FindLastSeparator(u"a.ifc"));
}

TEST(Paths, TheNameOfAFileIsBehindTheLastSeparator) {
  EXPECT_EQ(u"c.ifc", FileNameOf(u"/a/b/c.ifc"));
  EXPECT_EQ(u"c.ifc", FileNameOf(u"D:\\a\\c.ifc"));
  EXPECT_EQ(u"c.ifc", FileNameOf(u"c.ifc"));
  EXPECT_EQ(u"", FileNameOf(u"/a/"));
}

TEST(Paths, JoiningPutsOneSeparatorBetween) {
  EXPECT_EQ(u"/data/a.txt", JoinPath(u"/data/", u"a.txt"));
  EXPECT_EQ(u"C:\\data\\a.txt", JoinPath(u"C:\\data\\", u"a.txt"));
  EXPECT_EQ(u"a.txt", JoinPath(u"", u"a.txt"));
#ifdef _WIN32
  EXPECT_EQ(u"C:\\data\\a.txt", JoinPath(u"C:\\data", u"a.txt"));
#else
  EXPECT_EQ(u"/data/a.txt", JoinPath(u"/data", u"a.txt"));
#endif
}

}  // namespace
}  // namespace platform
