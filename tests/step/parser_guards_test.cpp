// The watch over the machine's resources while a file is read, and what the log tells of it.
#include <gtest/gtest.h>

#include "core/cancellation.h"
#include "step/log/ifc_log.h"
#include "support/read_model.h"

namespace corvel {
namespace {

using namespace std::string_literals;
using Model = test::ReadModel;
using test::Person;
using test::Report;
using test::TemporaryFolder;
using test::TestPlatform;

constexpr std::uint64_t kGiB = std::uint64_t{1} << 30;

// Counts how often somebody looks at the disk.
class WatchedDisk final : public TestPlatform {
 public:
  std::uint64_t FreeSystemDiskBytes() override {
    ++looks;
    if (looks == failAt) freeDiskBytes.reset();
    return TestPlatform::FreeSystemDiskBytes();
  }

  int looks = 0;
  int failAt = -1;
};

std::string Forward(unsigned number, unsigned to) { return test::PlacementRelativeTo(to, number); }

class DiskGuard : public test::ReadTest {
 protected:
  void ExpectOutOfSpaceBox() {
    ASSERT_EQ(1u, disk_.boxes.size());
    EXPECT_EQ(test::LogfileErrorBox(
                  u"Out of disk space. \nFree less then 5 GB. Parsing will be terminate.\n"),
              disk_.boxes[0]);
  }

  WatchedDisk disk_;
};

TEST_F(DiskGuard, OtherNumbersInDependencyOrderAreNeverChecked) {
  disk_.freeDiskBytes = 0;
  Model model(Person(1) + Person(499'999) + Person(500'001));
  EXPECT_TRUE(model.IsRead());
  EXPECT_EQ(0, disk_.looks);
}

TEST_F(DiskGuard, EveryMultipleOfHalfAMillionIsChecked) {
  Model model(Person(500'000) + Person(1'000'000) + Person(1'000'001) + Person(4'294'500'000));
  EXPECT_TRUE(model.IsRead());
  EXPECT_EQ(2 * 3, disk_.looks) << "once for the log and once for the check";
}

TEST_F(DiskGuard, LessThanFiveGibibytesEndTheFirstPass) {
  disk_.freeDiskBytes = 5 * kGiB - 1;
  Model model(Person(1) + Forward(500'000, 7) + Person(7));
  EXPECT_FALSE(model.IsRead());
  ExpectOutOfSpaceBox();
  EXPECT_EQ(CancelMode::kEndUnasked, Cancellation::OfProcess().mode);
  EXPECT_EQ(ParserState::kNotFinished, model.GetParser().state);
  EXPECT_TRUE(model.Document().IsCancelled());
  EXPECT_TRUE(reports_->empty());
  EXPECT_EQ(nullptr, model[7]);
  EXPECT_EQ((std::vector<std::string>{"model.ifc"}), model.Folder().Names());
}

TEST_F(DiskGuard, FiveGibibytesAreEnough) {
  disk_.freeDiskBytes = 5 * kGiB;
  Model model(Person(500'000) + Forward(1, 2) + Person(2));
  EXPECT_TRUE(model.IsRead());
  EXPECT_TRUE(disk_.boxes.empty());
}

TEST_F(DiskGuard, TheSecondPassChecksAtEachHundredthOfTheNumbers) {
  std::string records;
  for (unsigned number = 1; number <= 200; ++number) records += Forward(number, number + 1);
  Model model(records + Person(201));
  EXPECT_TRUE(model.IsRead());
  // Hundredths of 201 are 3, 5, 7 ... 199 and then 201, which is not read again.
  EXPECT_EQ(99, disk_.looks);
}

TEST_F(DiskGuard, AHundredthThatIsNoWholeNumberIsRoundedUp) {
  Model model(Forward(1, 2) + Person(2) + Person(150));
  EXPECT_TRUE(model.IsRead());
  EXPECT_EQ(0, disk_.looks) << "the first hundredth of 150 is 2";
}

TEST_F(DiskGuard, ALastRecordOfTheHighestNumberPassesAllHundredthsAtOnce) {
  Model model(Forward(100, 100));
  EXPECT_TRUE(model.IsRead());
  EXPECT_EQ(100, disk_.looks);
}

TEST_F(DiskGuard, LessThanFiveGibibytesEndTheSecondPass) {
  disk_.freeDiskBytes = 4 * kGiB;
  Model model(Forward(1, 2) + Person(2));
  EXPECT_FALSE(model.IsRead());
  ExpectOutOfSpaceBox();
  EXPECT_EQ(1, disk_.looks);
  EXPECT_EQ(CancelMode::kEndUnasked, Cancellation::OfProcess().mode);
  EXPECT_EQ(ParserState::kCancelled, model.GetParser().state);
  EXPECT_TRUE(reports_->empty());
  EXPECT_TRUE(model.Folder().Has("model_TEMP.ifc"));
}

// --- When the disk cannot be asked ---------------------------------------------------------------

constexpr const char16_t* kNoSuchDevice = u"filesystem error: space: No such device";

TEST_F(DiskGuard, ADiskThatCannotBeAskedFailsTheFirstPass) {
  disk_.failAt = 1;
  Model model(Person(500'000));
  EXPECT_FALSE(model.IsRead());
  EXPECT_EQ((std::vector<Report>{{"", kNoSuchDevice, 0}}), *reports_);
  EXPECT_EQ(ParserState::kFailed, model.GetParser().state);
  EXPECT_EQ((std::vector<std::string>{"model.ifc"}), model.Folder().Names());
  EXPECT_FALSE(IfcLog::Instance().IsMuted());
}

TEST_F(DiskGuard, ADiskThatCannotBeAskedFailsTheSecondPass) {
  disk_.failAt = 1;
  Model model(Forward(1, 2) + Person(2));
  EXPECT_FALSE(model.IsRead());
  EXPECT_EQ((std::vector<Report>{{"", kNoSuchDevice, 0}}), *reports_);
  EXPECT_EQ(ParserState::kFailed, model.GetParser().state);
  EXPECT_EQ(nullptr, model.GetParser().scanner);
  EXPECT_EQ((std::vector<std::string>{"model.ifc"}), model.Folder().Names());
  EXPECT_FALSE(IfcLog::Instance().IsMuted());
}

// --- The log -------------------------------------------------------------------------------------

class ReadLog : public test::ReadTest {
 protected:
  ReadLog() {
    platform_.memory =
        platform::MemoryFigures{1 << 20, 2 << 20, 3 << 20, 4 << 20, 5 << 20, 6 << 20};
    IfcLog::Instance().Open(folder_.Path("run.ifc"));
  }
  ~ReadLog() override {
    IfcLog::Instance().Close();
    IfcLog::Instance().SetFlushEveryLine(false);
  }
  // All that was logged, without the date line and the blank margins of each flush.
  std::string Logged() {
    IfcLog::Instance().SetMuted(false);
    IfcLog::Instance().Flush();
    std::string text = folder_.Read("run_IFC_LOG.txt");
    const std::string margin = std::string(199, ' ') + "\n";
    for (std::size_t at; (at = text.find(margin)) != std::string::npos;) {
      text.erase(at, margin.size());
    }
    return text.substr(text.find("\r\n") + 2);
  }

  const std::string memory_ =
      "Total virtual memory area: 3 MBAvailable virtual memory area: 4 MB"
      "Physical memory access: 2 MB\r\n";
  const std::string begin_ = "[readSchemaIdentifier][End readSchemaIdentifier]" + memory_ +
                             "Parsing file...Reading first part of file...";
  TemporaryFolder folder_;
};

TEST_F(ReadLog, OfAReadHoldsItsStages) {
  Model model(Person(1));
  EXPECT_EQ(begin_ + "Done.\n", Logged()) << "the first pass and what follows it is muted";
  EXPECT_FALSE(IfcLog::Instance().IsMuted());
}

TEST_F(ReadLog, OfACancelledReadSaysSo) {
  platform_.nanosecondsPerCall = 60'000'000;
  progress_.CancelAt(0);
  Model model(Person(1) + Person(2));
  EXPECT_EQ(begin_ + "Parsing CANCELED", Logged());
  EXPECT_FALSE(IfcLog::Instance().IsMuted());
}

TEST_F(ReadLog, AtANumberOfHalfAMillionTellsOfMemoryAndDisk) {
  Model model(Person(500'000) + Person(1));
  EXPECT_EQ(begin_ + memory_ + "System disk free space (GB): 100" + "Done.\n", Logged());
}

TEST_F(ReadLog, TheSecondPassTellsOfAHundredRecordsOfWhichTheLogTakesOneInAHundredAndOne) {
  IfcLog& log = IfcLog::Instance();
  while (log.LastMarkerText().empty()) log.LogReadingEntity(1);  // the count begins anew
  const std::string before = Logged();
  std::string records;
  for (unsigned number = 1; number <= 300; ++number) records += Forward(number, number + 1);
  Model model(records);
  EXPECT_EQ(before + begin_ + "Done.\n", Logged());
  log.LogReadingEntity(7);
  EXPECT_EQ(before + begin_ + "Done.\nReading entity: #7", Logged());
}

TEST_F(ReadLog, OfAWrongValueIsAnEmptyLineAndEndsABlock) {
  IfcLog& log = IfcLog::Instance();
  log.LogLine(u"block", true);
  Parser parser(false, test::RecordedReports::Reporter, nullptr);
  parser.ExpectedArgumentError(u"IfcReal", u"DataToken", 2);
  log.LogText(u"after");
  EXPECT_EQ("block\r\n\t\r\nafter", Logged());
}

}  // namespace
}  // namespace corvel
