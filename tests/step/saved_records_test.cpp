// What is saved comes back byte by byte, or the second pass hears that it did not.
#include "step/reader/saved_records.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>

#include "platform/locked_file.h"
#include "step/reader/block_hash.h"
#include "support/memory_streams.h"
#include "support/recorded_reports.h"
#include "support/temporary_folder.h"

namespace corvel {
namespace {

using test::RecordedReports;
using test::Report;
using Reports = std::vector<Report>;

constexpr std::size_t kBlock = 16;

class SavedRecordsTest : public testing::Test {
 protected:
  WorkFile Open() {
    const test::MemoryInputStream input("", 1, folder_.Path("a.ifc"));
    return OpenWorkFile(folder_.Path("a.ifc"), input, rules_);
  }
  // Saves each of `records` and reads what came back.
  std::string Through(const std::vector<std::string>& records) {
    SavedRecords saved(Open(), RecordedReports::Reporter, kBlock);
    for (const std::string& record : records) saved.Append(record);
    EXPECT_TRUE(saved.Finish());
    const auto stream = saved.ReadAgain();
    std::string back;
    while (stream->Refill()) {
      back.append(stream->Cursor(), stream->WindowEnd());
      stream->SetCursor(stream->WindowEnd());
    }
    EXPECT_TRUE(stream->IsEof());
    EXPECT_FALSE(stream->IsDamaged());
    return back;
  }
  // Saves `bytes`, lets `change` do its work on the file, and gives how many bytes came back before
  // the change was seen.
  template <class Change>
  std::size_t BytesBefore(const std::string& bytes, Change change) {
    SavedRecords saved(Open(), RecordedReports::Reporter, kBlock);
    saved.Append(bytes);
    EXPECT_TRUE(saved.Finish());
    change(folder_.Native("a_TEMP.ifc"));
    const auto stream = saved.ReadAgain();
    std::size_t count = 0;
    try {
      while (stream->Refill()) {
        count += static_cast<std::size_t>(stream->WindowEnd() - stream->Cursor());
        stream->SetCursor(stream->WindowEnd());
      }
      ADD_FAILURE() << "nothing was seen";
    } catch (const std::runtime_error& error) {
      EXPECT_EQ(
          "The work file was changed while it was in use: " + ToUtf8(folder_.Path("a_TEMP.ifc")),
          std::string(error.what()));
    }
    EXPECT_TRUE(saved.IsDamaged());
    EXPECT_THROW(stream->Refill(), std::runtime_error) << "nothing comes behind it";
    return count;
  }

  test::TemporaryFolder folder_;
  RecordedReports reports_;
  WorkFileRules rules_;
};

TEST_F(SavedRecordsTest, ComeBackAsTheyAreWhateverTheBlocks) {
  for (const std::size_t length : {0u, 1u, 15u, 16u, 17u, 31u, 32u, 33u, 100u}) {
    const std::string text = std::string(length, 'x') + '\xFF';
    EXPECT_EQ("#1=A();" + text + "\n#2=B();", Through({"#1=A();", text, "\n#2=B();"}));
    EXPECT_EQ("#1=A();" + text + "\n#2=B();", folder_.Read("a_TEMP.ifc"));
  }
}

TEST_F(SavedRecordsTest, NoneAtAllAreAnEmptyFile) {
  EXPECT_EQ("", Through({}));
  EXPECT_EQ("", folder_.Read("a_TEMP.ifc"));
}

TEST_F(SavedRecordsTest, ComeBackByBytesAndByPiecesToo) {
  SavedRecords saved(Open(), RecordedReports::Reporter, kBlock);
  saved.Append("#1=A();#2=B();#3=C();");
  ASSERT_TRUE(saved.Finish());
  const auto stream = saved.ReadAgain();
  EXPECT_EQ(21, stream->TotalSize());
  EXPECT_EQ('#', stream->PeekChar());
  EXPECT_EQ("#1=A", test::TakeByChar(*stream, 4));
  EXPECT_EQ(4, stream->Position());
  char piece[15] = {};
  EXPECT_EQ(15u, stream->Read(piece, 15));
  EXPECT_EQ("();#2=B();#3=C(", std::string(piece, 15));
  EXPECT_EQ(19, stream->Position());
  EXPECT_EQ(2u, stream->Read(piece, 15));
  EXPECT_EQ(-1, stream->PeekChar());
  EXPECT_EQ(-1, stream->NextEntry());
  EXPECT_EQ(0, stream->Close());
  EXPECT_FALSE(stream->IsOpen());
  EXPECT_EQ(-1, stream->Position());
}

#ifndef _WIN32
TEST_F(SavedRecordsTest, AnyChangedByteIsSeenBeforeItsBlockIsRead) {
  const std::string bytes(40, '7');
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    const auto change = [at](const std::filesystem::path& path) {
      std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
      file.seekp(static_cast<std::streamoff>(at));
      file.put('8');
    };
    EXPECT_EQ(at / kBlock * kBlock, BytesBefore(bytes, change)) << at;
  }
}

TEST_F(SavedRecordsTest, AnyOtherLengthIsSeenBeforeTheFirstByteIsRead) {
  for (std::uintmax_t size = 0; size < 100; ++size) {
    if (size == 40) continue;
    const auto change = [size](const std::filesystem::path& path) {
      std::filesystem::resize_file(path, size);
    };
    EXPECT_EQ(0u, BytesBefore(std::string(40, '7'), change)) << size;
  }
}

TEST_F(SavedRecordsTest, GoOnWithoutTheName) {
  SavedRecords saved(Open(), RecordedReports::Reporter, kBlock);
  saved.Append("#1=A();");
  ASSERT_TRUE(std::filesystem::remove(folder_.Native("a_TEMP.ifc")));
  EXPECT_TRUE(saved.Finish());
  EXPECT_EQ("#1=A();", test::TakeByChar(*saved.ReadAgain(), 7));
}
#endif

TEST_F(SavedRecordsTest, HoldTheLockUntilTheyGo) {
  platform::File other;
  {
    SavedRecords saved(Open(), RecordedReports::Reporter, kBlock);
    const auto locked = [&] {
      return platform::ClaimFile(saved.Path(), other) == platform::Claim::kLocked;
    };
    EXPECT_TRUE(locked());
    saved.Append("#1=A();");
    EXPECT_TRUE(saved.Finish());
    EXPECT_TRUE(locked());
    const auto stream = saved.ReadAgain();
    EXPECT_EQ("#1=A();", test::TakeByChar(*stream, 7));
    EXPECT_TRUE(locked());
  }
  EXPECT_EQ(platform::Claim::kTaken, platform::ClaimFile(folder_.Path("a_TEMP.ifc"), other));
}

TEST_F(SavedRecordsTest, AreCounted) {
  SavedRecords saved(Open(), RecordedReports::Reporter, kBlock);
  saved.Append("#1=A();");
  saved.Append("#2=A();");
  saved.CountReadRecord();
  EXPECT_FALSE(saved.AllRecordsWereRead());
  const WideString path = folder_.Path("a_TEMP.ifc");
  EXPECT_EQ(
      (Reports{{"", u"Not all records were read again from the work file: " + path, kReportShow}}),
      *reports_);
  saved.CountReadRecord();
  EXPECT_TRUE(saved.AllRecordsWereRead());
}

TEST_F(SavedRecordsTest, AreDiscardedInTheFirstPassOnly) {
  SavedRecords saved(Open(), RecordedReports::Reporter, kBlock);
  const auto stream = saved.ReadAgain();
  saved.Discard();
  EXPECT_TRUE(folder_.Has("a_TEMP.ifc"));
  saved.Remove();
  EXPECT_FALSE(folder_.Has("a_TEMP.ifc"));
  EXPECT_FALSE(saved.IsReady());
}

TEST_F(SavedRecordsTest, AfterDiscardTakeNothingMore) {
  SavedRecords saved(Open(), RecordedReports::Reporter, kBlock);
  saved.Discard();
  saved.Append(std::string(100, 'x'));
  EXPECT_TRUE(saved.Finish());
  EXPECT_TRUE(folder_.Names().empty());
  EXPECT_TRUE(reports_->empty());
}

TEST(BlockHash, TellsLengthsPlacesAndEveryBitApart) {
  EXPECT_NE(HashOfBlock(""), HashOfBlock(std::string(1, '\0')));
  EXPECT_NE(HashOfBlock(std::string(8, '\0')), HashOfBlock(std::string(9, '\0')));
  EXPECT_NE(HashOfBlock("12345678abcdefgh"), HashOfBlock("abcdefgh12345678"));
  const std::string text = "any text of twenty-nine bytes";
  for (std::size_t at = 0; at < text.size(); ++at) {
    for (int bit = 0; bit < 8; ++bit) {
      std::string other = text;
      other[at] = static_cast<char>(other[at] ^ (1 << bit));
      EXPECT_NE(HashOfBlock(text), HashOfBlock(other));
    }
  }
}

}  // namespace
}  // namespace corvel
