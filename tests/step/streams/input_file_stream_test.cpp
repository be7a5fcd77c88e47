#include "step/streams/input_file_stream.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "platform/file.h"
#include "support/memory_streams.h"
#include "support/recorded_reports.h"
#include "support/replaced_allocator.h"
#include "support/temporary_folder.h"

namespace FileStream {
namespace {

using corvel::test::RecordedReports;
using corvel::test::ReplacedAllocator;
using corvel::test::Report;
using corvel::test::TakeByChar;
using corvel::test::TemporaryFolder;

std::string ReadUpTo(InputStream& stream, std::size_t count) {
  std::string bytes(count, '\0');
  bytes.resize(stream.Read(bytes.data(), count));
  return bytes;
}

TEST(InputFileStream, TenBytesThenTheEnd) {
  TemporaryFolder folder;
  InputFileStream stream(folder.Write("a.ifc", "0123456789"), nullptr, 4096);
  EXPECT_FALSE(stream.IsEof());
  EXPECT_EQ("012345678", TakeByChar(stream, 9));
  EXPECT_FALSE(stream.IsEof());
  EXPECT_EQ('9', stream.GetChar());
  EXPECT_TRUE(stream.IsEof()) << "the refill came short";
  EXPECT_EQ(-1, stream.GetChar());
  EXPECT_EQ(-1, stream.GetChar());
  EXPECT_EQ(-1, stream.PeekChar());
}

TEST(InputFileStream, ABufferThatTheFileFillsExactlyHidesTheEndUntilTheNextRefill) {
  TemporaryFolder folder;
  InputFileStream stream(folder.Write("a.ifc", "0123456789"), nullptr, 5);
  EXPECT_EQ("0123456789", TakeByChar(stream, 10));
  EXPECT_FALSE(stream.IsEof());
  EXPECT_EQ(-1, stream.GetChar());
  EXPECT_TRUE(stream.IsEof());
}

TEST(InputFileStream, AnEmptyFileEndsAtTheFirstByte) {
  TemporaryFolder folder;
  InputFileStream stream(folder.Write("a.ifc", ""), nullptr, 4096);
  EXPECT_TRUE(stream.IsOpen());
  EXPECT_FALSE(stream.IsEof());
  EXPECT_EQ(-1, stream.GetChar());
  EXPECT_TRUE(stream.IsEof());
  EXPECT_EQ(0, stream.TotalSize());
}

TEST(InputFileStream, PeekingBehindTheWindowBringsNoWindowAndNoEnd) {
  TemporaryFolder folder;
  InputFileStream stream(folder.Write("a.ifc", "ab\xFF"), nullptr, 2);
  EXPECT_EQ('a', stream.PeekChar());
  EXPECT_EQ(stream.Cursor(), stream.WindowEnd());
  EXPECT_EQ("ab", TakeByChar(stream, 2));
  EXPECT_EQ(-1, stream.PeekChar()) << "the byte 255, sign-extended";
  EXPECT_EQ(2, stream.Position());
  EXPECT_EQ(-1, stream.GetChar());
  EXPECT_EQ(3, stream.Position());
  EXPECT_EQ(-1, stream.PeekChar());
}

TEST(InputFileStream, PeekingAtTheEndDoesNotTouchTheEndFlag) {
  TemporaryFolder folder;
  InputFileStream stream(folder.Write("a.ifc", "ab"), nullptr, 2);
  TakeByChar(stream, 2);
  EXPECT_EQ(-1, stream.PeekChar());
  EXPECT_FALSE(stream.IsEof());
}

TEST(InputFileStream, ReadGivesWhatThereIs) {
  TemporaryFolder folder;
  const auto path = folder.Write("a.ifc", "0123456789");
  for (std::size_t bufferSize = 1; bufferSize <= 12; ++bufferSize) {
    for (std::size_t before = 0; before <= 10; ++before) {
      for (std::size_t count = 0; count <= 14; ++count) {
        InputFileStream stream(path, nullptr, bufferSize);
        TakeByChar(stream, before);
        const std::string expected = std::string("0123456789").substr(before, count);
        ASSERT_EQ(expected, ReadUpTo(stream, count)) << bufferSize << " " << before;
        ASSERT_EQ(static_cast<std::int64_t>(before + expected.size()), stream.Position());
        ASSERT_TRUE(stream.IsEof() || expected.size() == count);
      }
    }
  }
}

TEST(InputFileStream, ALargeReadGoesPastTheBuffer) {
  TemporaryFolder folder;
  InputFileStream stream(folder.Write("a.ifc", "0123456789"), nullptr, 3);
  EXPECT_EQ('0', stream.GetChar());
  EXPECT_EQ("12345678", ReadUpTo(stream, 8)) << "two from the window, six at once";
  EXPECT_EQ(stream.Cursor(), stream.WindowEnd());
  EXPECT_FALSE(stream.IsEof());
  EXPECT_EQ('9', stream.GetChar());
}

TEST(InputFileStream, ALargeReadThatComesShortFindsTheEnd) {
  TemporaryFolder folder;
  InputFileStream stream(folder.Write("a.ifc", "0123456789"), nullptr, 3);
  EXPECT_EQ("0123456789", ReadUpTo(stream, 11));
  EXPECT_TRUE(stream.IsEof());
}

TEST(InputFileStream, ReadTakesAnEndThatWasFoundForGoodAndGetCharLooksAgain) {
  TemporaryFolder folder;
  InputFileStream stream(folder.Write("a.ifc", "01"), nullptr, 8);
  EXPECT_EQ("01", ReadUpTo(stream, 4));
  std::ofstream(folder.Native("a.ifc"), std::ios::app | std::ios::binary) << "23";
  EXPECT_EQ("", ReadUpTo(stream, 4));
  EXPECT_EQ('2', stream.GetChar());
  EXPECT_EQ("3", ReadUpTo(stream, 4));
}

TEST(InputFileStream, APlainFileHasNoNextEntry) {
  TemporaryFolder folder;
  InputFileStream stream(folder.Write("a.ifc", "x"), nullptr, 8);
  EXPECT_EQ(-1, stream.NextEntry());
  EXPECT_EQ('x', stream.GetChar());
}

TEST(InputFileStream, TheSizeIsThatOfTheFileAndLeavesThePositionAlone) {
  TemporaryFolder folder;
  const auto path = folder.Write("a.ifc", "0123456789");
  InputFileStream stream(path, nullptr, 4);
  TakeByChar(stream, 5);
  EXPECT_EQ(10, stream.TotalSize());
  EXPECT_EQ(5, stream.Position());
#ifndef _WIN32  // where an open file cannot go
  platform::RemoveFile(path);
  EXPECT_EQ(-1, stream.TotalSize());
#endif
}

TEST(InputFileStream, AClosedStreamGivesNothing) {
  TemporaryFolder folder;
  InputFileStream stream(folder.Write("a.ifc", "ab;cd"), nullptr, 4);
  TakeByChar(stream, 3);
  EXPECT_EQ(0, stream.Close());
  EXPECT_FALSE(stream.IsOpen());
  EXPECT_EQ(0, stream.GetChar());
  EXPECT_EQ(-1, stream.PeekChar());
  EXPECT_EQ("", ReadUpTo(stream, 2));
  EXPECT_EQ(-1, stream.Position());
  EXPECT_FALSE(stream.Refill());
  EXPECT_EQ(5, stream.TotalSize());
  EXPECT_EQ("ab;", stream.StatementText());
  EXPECT_TRUE(stream.LastWasSemicolon());
  EXPECT_EQ(0, stream.Close());
}

TEST(InputFileStream, AFileThatCannotBeOpenedIsNotReportedHere) {
  TemporaryFolder folder;
  RecordedReports reports;
  InputFileStream stream(folder.Path("none.IFC"), &RecordedReports::Reporter, 4096);
  EXPECT_FALSE(stream.IsOpen());
  EXPECT_TRUE(reports->empty());
  EXPECT_EQ(u".ifc", stream.Extension());
  EXPECT_EQ(folder.Path("none.IFC"), stream.ContainerPath());
  EXPECT_EQ(0, stream.GetChar());
  EXPECT_EQ(-1, stream.Position());
  EXPECT_EQ(-1, stream.TotalSize());
}

TEST(InputFileStream, AFolderIsNoFile) {
  TemporaryFolder folder;
  InputFileStream stream(folder.Path(), nullptr, 4096);
  EXPECT_FALSE(stream.IsOpen());
}

TEST(InputFileStream, ABufferThatCannotBeHadIsReportedAndNothingIsDelivered) {
  TemporaryFolder folder;
  const auto path = folder.Write("a.ifc", "0123456789");
  RecordedReports reports;
  ReplacedAllocator outOfMemory(&ReplacedAllocator::Throwing);
  InputFileStream stream(path, &RecordedReports::Reporter, 4096);
  const Report expected{"", u"Unable to alloc enought memory. Try to use 64-bit Orlenta.", 0};
  EXPECT_EQ(std::vector{expected}, *reports);
  EXPECT_EQ(-1, stream.GetChar());
  EXPECT_FALSE(stream.Refill());
  EXPECT_EQ(0, stream.Position());
}

TEST(InputFileStream, ANullFromTheAllocatorIsReportedInOtherWords) {
  TemporaryFolder folder;
  const auto path = folder.Write("a.ifc", "0123456789");
  RecordedReports reports;
  ReplacedAllocator outOfMemory(&ReplacedAllocator::GivingNull);
  InputFileStream stream(path, &RecordedReports::Reporter, 4096);
  EXPECT_EQ((std::vector<Report>{{"", u"Memory allocation error", 0}}), *reports);
  EXPECT_EQ(-1, stream.GetChar());
}

TEST(InputFileStream, PositionsBeyondFourGibibytesAreTold) {
  TemporaryFolder folder;
  folder.Write("large.ifc", "");
  constexpr std::int64_t kFar = (std::int64_t{4} << 30) + 5;
  std::filesystem::resize_file(folder.Native("large.ifc"), kFar + 1);
  InputFileStream stream(folder.Path("large.ifc"), nullptr, 1 << 20);
  EXPECT_EQ(kFar + 1, stream.TotalSize());
  while (stream.Position() < kFar - (1 << 20) && stream.Refill()) {
    stream.SetCursor(stream.WindowEnd());
    stream.ClearStatementText();
  }
  while (stream.Position() < kFar && stream.GetChar() != -1) continue;
  EXPECT_EQ(kFar, stream.Position());
  EXPECT_EQ(0, stream.GetChar());
  EXPECT_EQ(kFar + 1, stream.Position());
  EXPECT_EQ(-1, stream.GetChar());
}

#ifndef _WIN32
TEST(InputFileStream, AReadErrorIsReportedOnceAndEndsTheData) {
  RecordedReports reports;  // nothing is mapped at address 0
  InputFileStream stream(u"/proc/self/mem", &RecordedReports::Reporter, 16);
  EXPECT_EQ(-1, stream.GetChar());
  EXPECT_TRUE(stream.IsEof());
  EXPECT_EQ(-1, stream.GetChar());
  EXPECT_EQ((std::vector<Report>{{"", u"Could not read from file: /proc/self/mem", 0}}), *reports);
}
#endif

}  // namespace
}  // namespace FileStream
