#include "step/streams/output_log_file_stream.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/temporary_folder.h"
#include "support/test_platform.h"
#ifndef _WIN32
#include "support/posix_faults.h"
#endif

namespace FileStream {
namespace {

using corvel::test::LogfileErrorBox;
using corvel::test::TemporaryFolder;
using corvel::test::TestPlatform;

const std::string kMargin = std::string(199, ' ') + "\n";

class OutputLogFile : public testing::Test {
 protected:
  std::string OnDisk() const { return folder_.Read("a_IFC_LOG.txt"); }

  TestPlatform system_;
  TemporaryFolder folder_;
  corvel::WideString path_ = folder_.Path("a_IFC_LOG.txt");
};

TEST_F(OutputLogFile, AnExistingFileIsDeletedFirst) {
  folder_.Write("a_IFC_LOG.txt", "old log");
  std::filesystem::create_hard_link(folder_.Native("a_IFC_LOG.txt"), folder_.Native("kept.txt"));
  OutputLogFileStream stream(path_);
  stream.WriteNarrowString("new");
  stream.Close();
  EXPECT_EQ("new", OnDisk());
  EXPECT_EQ("old log", folder_.Read("kept.txt")) << "deleted, not emptied";
}

TEST_F(OutputLogFile, CloseWritesEverythingHoweverLittle) {
  OutputLogFileStream stream(path_);
  stream.WriteNarrowString("x");
  EXPECT_EQ("", OnDisk());
  EXPECT_TRUE(stream.Close());
  EXPECT_EQ("x", OnDisk());
}

TEST_F(OutputLogFile, DestructionDoesWhatCloseDoes) {
  {
    OutputLogFileStream stream(path_);
    stream.WriteWideString(u"x");
  }
  EXPECT_EQ("x", OnDisk());
}

TEST_F(OutputLogFile, CloseAfterCommitWritesTheMargin) {
  OutputLogFileStream stream(path_);
  stream.WriteNarrowString("one");
  stream.Commit();
  EXPECT_EQ("one", OnDisk());
  stream.Close();
  EXPECT_EQ("one" + kMargin, OnDisk());
}

TEST_F(OutputLogFile, EachCommitAfterTheFirstWritesTheMarginAheadOfTheText) {
  OutputLogFileStream stream(path_);
  for (const char* line : {"one\r\n", "two\r\n", "three\r\n"}) {
    stream.WriteNarrowString(line);
    stream.Commit();
  }
  EXPECT_EQ("one\r\n" + kMargin + "two\r\n" + kMargin + "three\r\n", OnDisk());
}

TEST_F(OutputLogFile, BlocksOf1024GoOutAnd200BytesStay) {
  OutputLogFileStream stream(path_);
  stream.WriteNarrowString(std::string(1223, 'a'));
  EXPECT_EQ("", OnDisk());
  stream.WriteNarrowString("b");
  EXPECT_EQ(std::string(1024, 'a'), OnDisk());
  stream.MovePosition(-200);
  EXPECT_THROW(stream.MovePosition(-1), std::runtime_error);
}

TEST_F(OutputLogFile, LinesLongerThanTheBufferKeepTheirBytesInOrder) {
  std::string expected;
  OutputLogFileStream stream(path_);
  for (std::size_t length : {100u, 1223u, 1224u, 1225u, 5000u, 1u, 100000u}) {
    std::string line(length, '\0');
    for (std::size_t i = 0; i < length; ++i) line[i] = static_cast<char>('a' + i % 25);
    if (length % 2 == 0) {
      stream.WriteNarrowString(line);
    } else {
      stream.WriteWideString(corvel::Widen(line));
    }
    expected += line;
  }
  stream.Close();
  EXPECT_EQ(expected, OnDisk());
}

TEST_F(OutputLogFile, APersonReadsTheLogWhileItIsWritten) {
  OutputLogFileStream stream(path_);
  stream.WriteNarrowString("so far");
  stream.Commit();
  EXPECT_EQ("so far", OnDisk());
  EXPECT_TRUE(stream.IsOpen());
}

TEST_F(OutputLogFile, TextOfOthersIsNotOverwritten) {
  OutputLogFileStream stream(path_);
  stream.WriteNarrowString("one");
  stream.Commit();
  std::ofstream(folder_.Native("a_IFC_LOG.txt"), std::ios::app | std::ios::binary) << "other";
  stream.WriteNarrowString("two");
  stream.Commit();
  EXPECT_EQ("oneother" + kMargin + "two", OnDisk());
}

TEST_F(OutputLogFile, AReopenedLogGoesOnBehindWhatIsThere) {
  OutputLogFileStream stream(path_);
  stream.WriteNarrowString("one");
  stream.Close();
  EXPECT_TRUE(stream.Reopen());
  stream.WriteNarrowString("two");
  stream.Close();
  EXPECT_EQ("onetwo", OnDisk());
}

TEST_F(OutputLogFile, AFileThatCannotBeMadeIsToldInABox) {
  OutputLogFileStream stream(folder_.Path("none/a.txt"));
  EXPECT_FALSE(stream.IsOpen());
  EXPECT_EQ(std::vector{LogfileErrorBox(u"File path: " + folder_.Path("none/a.txt"))},
            system_.boxes);
}

TEST_F(OutputLogFile, AReopeningThatFailsIsToldInABox) {
  const corvel::WideString path = folder_.Write("sub/a_IFC_LOG.txt", "");
  OutputLogFileStream stream(path);
  stream.Close();
  std::filesystem::remove_all(folder_.Native("sub"));
  EXPECT_FALSE(stream.Reopen());
  EXPECT_FALSE(stream.IsOpen());
  EXPECT_EQ(std::vector{LogfileErrorBox(u"Reopen failed.")}, system_.boxes);
}

TEST_F(OutputLogFile, TheReporterIgnoresKeyAndMode) {
  EXPECT_EQ(0, ShowLogfileError("some_key", u"the message", 2));
  EXPECT_EQ(std::vector{LogfileErrorBox(u"the message")}, system_.boxes);
}

#ifndef _WIN32
// With nothing to write, a commit could fail only where it waits for the disk.
TEST_F(OutputLogFile, CommitDoesNotWaitForTheDisk) {
  OutputLogFileStream stream(path_);
  ASSERT_TRUE(corvel::test::StealDescriptor(path_));
  EXPECT_TRUE(stream.Commit());
  EXPECT_TRUE(system_.boxes.empty());
}

TEST_F(OutputLogFile, AShortWriteIsToldInABox) {
  corvel::test::FileSizeLimit limit(2);
  OutputLogFileStream stream(path_);
  stream.WriteNarrowString("one");
  EXPECT_FALSE(stream.Commit());
  EXPECT_EQ(std::vector{LogfileErrorBox(u"Could not write to file")}, system_.boxes);
  EXPECT_TRUE(stream.IsOpen());
}
#endif

}  // namespace
}  // namespace FileStream
