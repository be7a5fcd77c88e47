// What goes wrong while writing, brought about through the system.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/file.h"
#include "step/streams/outpout_file_stream.h"
#include "support/recorded_reports.h"
#include "support/replaced_allocator.h"
#include "support/temporary_folder.h"
#ifndef _WIN32
#include "support/posix_faults.h"
#endif

namespace FileStream {
namespace {

using corvel::test::RecordedReports;
using corvel::test::ReplacedAllocator;
using corvel::test::Report;
using corvel::test::TemporaryFolder;
using Reports = std::vector<Report>;

const Report kWriteFailed{"", u"Could not write to file", 0};

class FailingOutpout : public testing::Test {
 protected:
  OutpoutFileStream Open(std::uint64_t blockSize = 8, std::uint64_t keepBack = 4) {
    return OutpoutFileStream(path_, &RecordedReports::Reporter, blockSize, keepBack);
  }

  TemporaryFolder folder_;
  corvel::WideString path_ = folder_.Path("out.ifc");
  RecordedReports reports_;
};

std::string MessageOf(const std::function<void()>& call) {
  try {
    call();
  } catch (const std::runtime_error& failure) {
    return failure.what();
  }
  return "nothing thrown";
}

TEST_F(FailingOutpout, AFileThatCannotBeOpenedIsReportedWithItsPath) {
  path_ = folder_.Path("none/out.ifc");
  OutpoutFileStream stream = Open();
  EXPECT_FALSE(stream.IsOpen());
  EXPECT_EQ((Reports{{"could_not_open_file", u". File path: " + path_, 0}}), *reports_);
  EXPECT_FALSE(stream.Close());
  EXPECT_FALSE(stream.Commit());
  EXPECT_EQ(1u, reports_->size());
}

TEST_F(FailingOutpout, WithoutAReporterAFailedOpeningIsSilent) {
  OutpoutFileStream stream(folder_.Path("none/out.ifc"), nullptr, 8, 4);
  EXPECT_FALSE(stream.IsOpen());
}

TEST_F(FailingOutpout, AStreamThatNeverOpenedTakesNothing) {
  path_ = folder_.Path("none/out.ifc");
  OutpoutFileStream stream = Open();
  EXPECT_EQ("Unable to write to file", MessageOf([&] { stream.WriteNarrowText("a"); }));
  EXPECT_EQ("Unable to write to file", MessageOf([&] { stream.WriteWideString(u"a"); }));
  EXPECT_EQ("Unable to write to file", MessageOf([&] { stream.Reserve(1); }));
  EXPECT_EQ("nothing thrown", MessageOf([&] { stream.FlushIfFull(); }));
  EXPECT_EQ("nothing thrown", MessageOf([&] { stream.WriteNarrowText(""); }));
}

TEST_F(FailingOutpout, ABufferThatCannotBeHadIsReportedAndTakesNothing) {
  for (const BufferAllocator allocator :
       {&ReplacedAllocator::Throwing, &ReplacedAllocator::GivingNull}) {
    RecordedReports reports;
    ReplacedAllocator outOfMemory(allocator);
    OutpoutFileStream stream = Open();
    const Report expected{"", u"Unable to alloc enought memory. Try to use 64-bit Orlenta.", 0};
    EXPECT_EQ(Reports{expected}, *reports);
    EXPECT_EQ("Unable to write to file", MessageOf([&] { stream.WriteNarrowText("a"); }));
    EXPECT_FALSE(stream.IsOpen());
    EXPECT_FALSE(stream.Close());
    EXPECT_EQ(Reports{expected}, *reports);
  }
}

TEST_F(FailingOutpout, APositionMovedBeyondTheBufferFailsInsteadOfReadingThere) {
  OutpoutFileStream stream = Open();
  stream.MovePosition(1 << 20);
  EXPECT_EQ("Unable to write to file", MessageOf([&] { stream.WriteNarrowText("a"); }));
  OutpoutFileStream committed = Open();
  committed.MovePosition(1 << 20);
  EXPECT_FALSE(committed.Commit());
  EXPECT_EQ(Reports{kWriteFailed}, *reports_);
  EXPECT_EQ("", folder_.Read("out.ifc"));
}

#ifndef _WIN32

using corvel::test::FileSizeLimit;

TEST_F(FailingOutpout, AFlushThatComesShortThrowsAndClosesTheStream) {
  FileSizeLimit limit(5);
  OutpoutFileStream stream = Open();
  EXPECT_EQ("Unable to write to file", MessageOf([&] { stream.WriteNarrowText("0123456789AB"); }));
  EXPECT_FALSE(stream.IsOpen());
  EXPECT_EQ(1u, stream.FailedWrites());
  EXPECT_TRUE(reports_->empty()) << "the exception tells";
}

TEST_F(FailingOutpout, EveryStoreThrowsWhenItsFlushComesShort) {
  const std::function<void(OutpoutFileStream&)> stores[] = {
      [](OutpoutFileStream& stream) { stream.WriteNarrowString("0123456789AB"); },
      [](OutpoutFileStream& stream) { stream.WriteWideString(u"0123456789AB"); },
      [](OutpoutFileStream& stream) { stream.WriteWideText(u"0123456789AB"); },
      [](OutpoutFileStream& stream) { stream.WriteNarrowText("0123456789AB"); },
      [](OutpoutFileStream& stream) { stream.Append(std::string(2000, 'x')); },
  };
  FileSizeLimit limit(5);
  for (const auto& store : stores) {
    OutpoutFileStream stream = Open();
    EXPECT_EQ("Unable to write to file", MessageOf([&] { store(stream); }));
  }
}

TEST_F(FailingOutpout, AfterAFailedFlushCloseClosesTheFileAndReportsNothingMore) {
  corvel::test::LinkToFullDevice(path_);
  OutpoutFileStream stream = Open();
  EXPECT_EQ("Unable to write to file", MessageOf([&] { stream.WriteNarrowText("0123456789AB"); }));
  EXPECT_FALSE(stream.Close());
  EXPECT_TRUE(reports_->empty());
  EXPECT_FALSE(corvel::test::StealDescriptor(path_)) << "the file was left open";
}

TEST_F(FailingOutpout, AfterAFailedFlushFurtherStoresFailToo) {
  corvel::test::LinkToFullDevice(path_);
  OutpoutFileStream stream = Open();
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ("Unable to write to file",
              MessageOf([&] { stream.WriteNarrowString(std::string(3000, 'x')); }));
  }
  EXPECT_EQ(3u, stream.FailedWrites());
}

TEST_F(FailingOutpout, AfterAFailedFlushNothingIsWrittenBeforeReopen) {
  OutpoutFileStream stream = Open();
  {
    FileSizeLimit limit(0);
    EXPECT_EQ("Unable to write to file",
              MessageOf([&] { stream.WriteNarrowText("0123456789AB"); }));
  }
  EXPECT_EQ("Unable to write to file", MessageOf([&] { stream.WriteNarrowText("C"); }));
  EXPECT_FALSE(stream.Close());
  EXPECT_EQ("", folder_.Read("out.ifc"));
}

TEST_F(FailingOutpout, CloseThatWritesShortIsReported) {
  corvel::test::LinkToFullDevice(path_);
  OutpoutFileStream stream = Open();
  stream.WriteNarrowText("abcdef");
  EXPECT_FALSE(stream.Close());
  EXPECT_FALSE(stream.IsOpen());
  EXPECT_EQ(Reports{kWriteFailed}, *reports_);
}

TEST_F(FailingOutpout, CommitThatWritesShortIsReportedAndTheStreamGoesOn) {
  corvel::test::LinkToFullDevice(path_);
  OutpoutFileStream stream = Open();
  stream.WriteNarrowText("abcdef");
  EXPECT_FALSE(stream.Commit());
  EXPECT_TRUE(stream.IsOpen());
  EXPECT_EQ("nothing thrown", MessageOf([&] { stream.WriteNarrowText("g"); }));
  EXPECT_EQ(Reports{kWriteFailed}, *reports_);
}

TEST_F(FailingOutpout, WriteThatComesShortIsReportedAndTheStreamGoesOn) {
  corvel::test::LinkToFullDevice(path_);
  OutpoutFileStream stream = Open();
  stream.Write("abcdef", 6);
  EXPECT_TRUE(stream.IsOpen());
  EXPECT_EQ(Reports{kWriteFailed}, *reports_);
}

TEST_F(FailingOutpout, AFailureIsReportedOnceUntilTheStreamIsOpenedAgain) {
  corvel::test::LinkToFullDevice(path_);
  OutpoutFileStream stream = Open();
  stream.Write("abcdef", 6);
  EXPECT_FALSE(stream.Commit());
  stream.WriteNarrowText("g");
  EXPECT_FALSE(stream.Close());
  EXPECT_EQ(Reports{kWriteFailed}, *reports_);
  ASSERT_TRUE(stream.Reopen());
  stream.Write("abcdef", 6);
  EXPECT_EQ((Reports{kWriteFailed, kWriteFailed}), *reports_);
}

TEST_F(FailingOutpout, ADiskThatRefusesTheCommitIsReported) {
  OutpoutFileStream stream = Open();
  ASSERT_TRUE(corvel::test::StealDescriptor(path_));
  EXPECT_FALSE(stream.Commit());  // with nothing to write, only the handing over fails
  EXPECT_EQ(Reports{kWriteFailed}, *reports_);
}

TEST_F(FailingOutpout, AnErrorThatTheSystemTellsOnClosingIsReported) {
  OutpoutFileStream stream = Open();
  stream.WriteNarrowText("abcdef");
  ASSERT_TRUE(stream.Commit());
  ASSERT_TRUE(corvel::test::StealDescriptor(path_));
  EXPECT_FALSE(stream.Close());
  EXPECT_EQ(Reports{kWriteFailed}, *reports_);
}

TEST_F(FailingOutpout, TheDestructorReportsWhatItsCloseMeets) {
  corvel::test::LinkToFullDevice(path_);
  {
    OutpoutFileStream stream = Open();
    stream.WriteNarrowText("abcdef");
  }
  EXPECT_EQ(Reports{kWriteFailed}, *reports_);
}

TEST_F(FailingOutpout, AReadOnlyFolderTakesNoOutput) {
  std::filesystem::permissions(folder_.Native("."), std::filesystem::perms::owner_read |
                                                        std::filesystem::perms::owner_exec |
                                                        std::filesystem::perms::others_read |
                                                        std::filesystem::perms::others_exec);
  {
    corvel::test::OrdinaryUser user;
    EXPECT_FALSE(Open().IsOpen());
  }
  std::filesystem::permissions(folder_.Native("."), std::filesystem::perms::owner_all);
  EXPECT_EQ((Reports{{"could_not_open_file", u". File path: " + path_, 0}}), *reports_);
}

TEST_F(FailingOutpout, ReopenBringsAFailedStreamBackWithItsBuffer) {
  OutpoutFileStream stream = Open();
  {
    FileSizeLimit limit(0);
    EXPECT_EQ("Unable to write to file",
              MessageOf([&] { stream.WriteNarrowText("0123456789AB"); }));
  }
  ASSERT_TRUE(stream.Reopen());
  stream.WriteNarrowText("C");
  EXPECT_TRUE(stream.Commit());
  EXPECT_EQ("0123456789ABC", folder_.Read("out.ifc"));
  EXPECT_EQ(1u, stream.FailedWrites());
}

TEST_F(FailingOutpout, ReopenThatFailsIsReported) {
  TemporaryFolder other;
  platform::MakeFolder(other.Path("sub"));
  OutpoutFileStream stream(other.Path("sub/out.ifc"), &RecordedReports::Reporter, 8, 4);
  stream.Close();
  std::filesystem::remove_all(other.Native("sub"));
  EXPECT_FALSE(stream.Reopen());
  EXPECT_FALSE(stream.IsOpen());
  EXPECT_EQ((Reports{{"", u"Reopen failed.", 0}}), *reports_);
}

// A disk that is full at byte n, for every n: no failure is missed and nothing wrong is written.
TEST_F(FailingOutpout, WhereverTheDiskIsFullTheSaveFailsAndTellsItOnce) {
  const std::string text = "#1=IFCWALL($,$,$);\n#2=IFCDOOR($);\n";
  for (std::size_t capacity = 0; capacity <= text.size(); ++capacity) {
    RecordedReports reports;
    FileSizeLimit limit(capacity);
    OutpoutFileStream stream = Open();
    const std::string thrown = MessageOf([&] {
      for (const char byte : text) stream.WriteNarrowString(std::string(1, byte));
    });
    const bool committed = thrown == "nothing thrown" && stream.Commit();
    const bool closed = stream.Close();
    const bool told = thrown == "Unable to write to file" || *reports == Reports{kWriteFailed};
    ASSERT_EQ(capacity == text.size(), committed && closed) << capacity;
    ASSERT_EQ(capacity != text.size(), told) << capacity;
    ASSERT_LE(reports->size(), thrown == "nothing thrown" ? 1u : 0u);
    ASSERT_EQ(text.substr(0, capacity), folder_.Read("out.ifc"));
  }
}

#endif

}  // namespace
}  // namespace FileStream
