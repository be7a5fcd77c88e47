// Disks that don't take an archive. POSIX only: that is where it can be brought about.
#ifndef _WIN32

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "step/streams/output_zip_file_stream.h"
#include "support/failing_writes.h"
#include "support/posix_faults.h"
#include "support/recorded_reports.h"
#include "support/temporary_folder.h"

namespace FileStream {
namespace {

using corvel::WideString;
using corvel::test::FailingWrite;
using corvel::test::FileSizeLimit;
using corvel::test::RecordedReports;
using corvel::test::Report;
using corvel::test::StealDescriptor;
using corvel::test::TemporaryFolder;
using Reports = std::vector<Report>;

const Report kNotWritten{"", u"Could not write to zip file", 0};
const Report kNoEntry{"", u"Could not open file in zip archive", 0};

// More than a block that deflate cannot make small.
const std::string& Noise() {
  static const std::string noise = [] {
    std::mt19937 random(1);
    std::string bytes(1'300'000, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random() % 254 + 1);
    return bytes;
  }();
  return noise;
}

class FailingZipOutput : public testing::Test {
 protected:
  OutputZipFileStream Open() { return {path_, RecordedReports::Reporter}; }
  // The outcome of writing it all.
  bool WriteNoise() {
    OutputZipFileStream stream = Open();
    if (!stream.IsOpen()) return false;
    stream.WriteNarrowString(Noise());
    return stream.CommitAndClose();
  }

  TemporaryFolder folder_;
  const WideString path_ = folder_.Path("out.ifczip");
  RecordedReports reports_;
};

TEST_F(FailingZipOutput, AnEntryThatCannotBeMadeIsToldAndLeavesNoArchive) {
  for (const rlim_t limit : {0, 1, 20, 35}) {
    reports_.Forget();
    const FileSizeLimit full(limit);
    OutputZipFileStream stream = Open();
    EXPECT_FALSE(stream.IsOpen());
    EXPECT_FALSE(stream.Close());
    EXPECT_EQ(Reports{kNoEntry}, *reports_) << limit;
    EXPECT_FALSE(folder_.Has("out.ifczip"));
  }
}

TEST_F(FailingZipOutput, ADiskThatIsFullAnywhereIsToldOnceAndTheStreamGoesOn) {
  ASSERT_TRUE(WriteNoise());
  const std::size_t size = folder_.Read("out.ifczip").size();
  for (std::size_t limit = 100; limit < size; limit += size / 37) {
    reports_.Forget();
    const FileSizeLimit full(limit);
    EXPECT_FALSE(WriteNoise());
    EXPECT_EQ(Reports{kNotWritten}, *reports_) << limit;
  }
  // The last bytes are those of the directory.
  for (std::size_t limit = size - 120; limit < size; ++limit) {
    reports_.Forget();
    const FileSizeLimit full(limit);
    EXPECT_FALSE(WriteNoise());
    EXPECT_EQ(Reports{kNotWritten}, *reports_) << limit;
  }
  reports_.Forget();
  const FileSizeLimit enough(size);
  EXPECT_TRUE(WriteNoise());
  EXPECT_EQ(Reports{}, *reports_);
}

TEST_F(FailingZipOutput, NoWriteFailsUnseen) {
  int writes = 0;
  {
    const FailingWrite none(0);
    ASSERT_TRUE(WriteNoise());
    writes = corvel::test::writesSeen;
  }
  ASSERT_GT(writes, 20);
  for (int number = 1; number <= writes; ++number) {
    reports_.Forget();
    const FailingWrite failing(number);
    EXPECT_FALSE(WriteNoise()) << number;
    ASSERT_EQ(1u, reports_->size()) << number;
    EXPECT_TRUE((*reports_)[0] == kNotWritten || (*reports_)[0] == kNoEntry) << number;
  }
}

TEST_F(FailingZipOutput, AFailedFlushDoesNotThrow) {
  OutputZipFileStream stream = Open();
  {
    const FileSizeLimit full(100);
    EXPECT_NO_THROW(stream.WriteNarrowString(Noise()));
    EXPECT_EQ(Reports{kNotWritten}, *reports_);
  }
  EXPECT_NO_THROW(stream.WriteWideString(u"more"));
  EXPECT_TRUE(stream.IsOpen());
  EXPECT_FALSE(stream.Close()) << "what was lost does not come back";
  EXPECT_EQ(Reports{kNotWritten}, *reports_);
}

TEST_F(FailingZipOutput, WriteThatFailsIsTold) {
  OutputZipFileStream stream = Open();
  const FileSizeLimit full(100);
  stream.Write(Noise().data(), Noise().size());
  EXPECT_EQ(Reports{kNotWritten}, *reports_);
  EXPECT_FALSE(stream.Close());
}

TEST_F(FailingZipOutput, WithoutAReporterFailuresAreSilent) {
  OutputZipFileStream stream(path_, nullptr);
  const FileSizeLimit full(100);
  stream.WriteNarrowString(Noise());
  EXPECT_FALSE(stream.Close());
  const FileSizeLimit fuller(0);
  OutputZipFileStream none(folder_.Path("other.ifczip"), nullptr);
  EXPECT_FALSE(none.IsOpen());
}

TEST_F(FailingZipOutput, ADiskThatRefusesTheArchiveAtItsEndIsTold) {
  OutputZipFileStream stream = Open();
  ASSERT_TRUE(StealDescriptor(path_));
  EXPECT_FALSE(stream.Close());
  EXPECT_EQ(Reports{kNotWritten}, *reports_);
}

TEST_F(FailingZipOutput, AReadOnlyFolderTakesNoArchive) {
  std::filesystem::permissions(folder_.Native("."), std::filesystem::perms(0555));
  {
    const corvel::test::OrdinaryUser user;
    EXPECT_FALSE(Open().IsOpen());
  }
  std::filesystem::permissions(folder_.Native("."), std::filesystem::perms::owner_all);
  EXPECT_EQ((Reports{{"", u"Could not open or create zip archive", 0}}), *reports_);
}

}  // namespace
}  // namespace FileStream

#endif
