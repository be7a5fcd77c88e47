#include "step/log/utilities.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <utility>

#include "core/cancellation.h"
#include "platform/file.h"
#include "step/log/ifc_log.h"
#include "support/recorded_reports.h"
#include "support/temporary_folder.h"
#include "support/test_platform.h"
#ifndef _WIN32
#include "support/posix_faults.h"
#endif

namespace corvel {
namespace {

using test::RecordedReports;
using test::Report;
using test::TemporaryFolder;
using test::TestPlatform;
using Reports = std::vector<Report>;

constexpr std::uint64_t kGibibyte = std::uint64_t{1} << 30;
constexpr std::uint64_t kMiB = std::uint64_t{1} << 20;

// The process-wide log, open on a file of the test's own. Tests before it may have left it flushing
// every line, which would put a margin in front of each.
class SharedLog {
 public:
  SharedLog() {
    IfcLog::Instance().SetFlushEveryLine(false);
    IfcLog::Instance().Open(folder_.Path("a.ifc"));
  }
  ~SharedLog() { IfcLog::Instance().Close(); }
  // All that was logged behind the first line and the margin of 200 bytes.
  std::string Text() {
    IfcLog::Instance().Close();
    return folder_.Read("a_IFC_LOG.txt").substr(26 + 200);
  }

 private:
  TemporaryFolder folder_;
};

std::string RawUnits(const WideString& text) {
  return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(char16_t)};
}

// --- Memory --------------------------------------------------------------------------------------

platform::MemoryFigures SomeFigures() {
  platform::MemoryFigures figures;
  figures.totalPhysical = 16 * kGibibyte;
  figures.availablePhysical = 5 * kMiB - 1;
  figures.totalPageFile = 20 * kGibibyte;
  figures.availablePageFile = 7 * kMiB;
  figures.totalAddressSpace = std::uint64_t{1} << 47;
  figures.availableAddressSpace = 0x12345'89ABCDEFu;
  return figures;
}

constexpr char kLoggedFigures[] =
    "Total virtual memory area: 20480 MBAvailable virtual memory area: 7 MB"
    "Physical memory access: 4 MB\r\n";

TEST(ReportMemory, SixFiguresGoToStandardOutputInMegabytes) {
  TestPlatform system;
  system.memory = SomeFigures();
  testing::internal::CaptureStdout();
  ReportMemory();
  EXPECT_EQ(
      "Całkowita pamięć RAM: 16384 MB\n"
      "Dostępna pamięć RAM: 4 MB\n"
      "Całkowita pamięć wirtualna: 20480 MB\n"
      "Dostępna pamięć wirtualna: 7 MB\n"
      "Całkowity adresowalny obszar pamięci: 134217728 MB\n"
      "Dostępny adresowalny obszar pamięci: 305420442 MB\n",
      testing::internal::GetCapturedStdout());
}

TEST(ReportMemory, ThreeFiguresGoToTheLogOnOneLine) {
  TestPlatform system;
  system.memory = SomeFigures();
  SharedLog log;
  testing::internal::CaptureStdout();
  ReportMemory();
  testing::internal::GetCapturedStdout();
  EXPECT_EQ(kLoggedFigures, log.Text());
}

TEST(ReportMemory, TheResultIsTheLowHalfOfTheFreeAddressSpace) {
  TestPlatform system;
  system.memory = SomeFigures();
  std::FILE* const before = std::exchange(MemoryReportOutput(), nullptr);
  EXPECT_EQ(0x89ABCDEFu, ReportMemory());
  MemoryReportOutput() = before;
}

TEST(ReportMemory, WithoutAnOutputOnlyTheLogIsWritten) {
  TestPlatform system;
  system.memory = SomeFigures();
  SharedLog log;
  std::FILE* const before = std::exchange(MemoryReportOutput(), nullptr);
  testing::internal::CaptureStdout();
  ReportMemory();
  EXPECT_EQ("", testing::internal::GetCapturedStdout());
  MemoryReportOutput() = before;
  EXPECT_EQ(kLoggedFigures, log.Text());
}

TEST(ReportMemory, AFailedQueryIsToldOnStandardErrorAndInTheLog) {
  TestPlatform system;
  system.memory = {};
  SharedLog log;
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  EXPECT_EQ(0u, ReportMemory());
  EXPECT_EQ("Błąd: nie można pobrać informacji o pamięci.\n",
            testing::internal::GetCapturedStderr());
  EXPECT_EQ("", testing::internal::GetCapturedStdout());
  EXPECT_EQ("Błąd: nie można pobrać informacji o pamięci.\n", log.Text());
}

// --- Disk ----------------------------------------------------------------------------------------

TEST(FreeDiskGB, PartsOfAGibibyteDoNotCount) {
  TestPlatform system;
  system.freeDiskBytes = 7 * kGibibyte;
  EXPECT_EQ(7, FreeDiskGB());
  system.freeDiskBytes = 7 * kGibibyte - 1;
  EXPECT_EQ(6, FreeDiskGB());
  system.freeDiskBytes = 0;
  EXPECT_EQ(0, FreeDiskGB());
  system.freeDiskBytes = std::uint64_t{1} << 63;
  EXPECT_EQ(std::int64_t{1} << 33, FreeDiskGB());
}

TEST(FreeDiskGB, AFailedQueryThrowsTheErrorOfTheOperationSpace) {
  TestPlatform system;
  system.freeDiskBytes = {};
  try {
    FreeDiskGB();
    FAIL() << "nothing thrown";
  } catch (const std::filesystem::filesystem_error& failure) {
    EXPECT_STREQ("filesystem error: space: No such device", failure.what());
  }
}

TEST(CheckDiskSpace, FiveGibibytesAreEnough) {
  TestPlatform system;
  system.freeDiskBytes = 5 * kGibibyte;
  EXPECT_TRUE(CheckDiskSpace());
  EXPECT_TRUE(system.boxes.empty());
  EXPECT_EQ(CancelMode::kAsk, Cancellation::OfProcess().mode);
}

TEST(CheckDiskSpace, LessThanFiveGibibytesStopTheParsingUnasked) {
  TestPlatform system;
  system.freeDiskBytes = 5 * kGibibyte - 1;
  EXPECT_FALSE(CheckDiskSpace());
  EXPECT_EQ(CancelMode::kEndUnasked,
            std::exchange(Cancellation::OfProcess().mode, CancelMode::kAsk));
  EXPECT_EQ(std::vector{test::LogfileErrorBox(
                u"Out of disk space. \nFree less then 5 GB. Parsing will be terminate.\n")},
            system.boxes);
}

// --- The last path -------------------------------------------------------------------------------

class LastPath : public testing::Test {
 protected:
  void Save(const WideString& path) {
    SaveLastPath(folder_.Path(), path, &RecordedReports::Reporter);
  }
  void Open() { OpenLastFile(folder_.Path(), &RecordedReports::Reporter); }

  TestPlatform system_;
  TemporaryFolder folder_;
  RecordedReports reports_;
  const Reports openFailed_{{"fail_to_open_last_created_file_message", u"", 0}};
};

TEST_F(LastPath, ItIsSavedAsRawUnitsWithoutMarkOrEnd) {
  Save(u"C:\\m\\Geb\u00E4ude.ifc");
  EXPECT_EQ(RawUnits(u"C:\\m\\Geb\u00E4ude.ifc"), folder_.Read("LastPath.txt"));
  Save(u"b");
  EXPECT_EQ(std::string("b\0", 2), folder_.Read("LastPath.txt"));
  EXPECT_TRUE(reports_->empty());
}

TEST_F(LastPath, AFolderWithASeparatorAtItsEndIsTheSameFolder) {
  SaveLastPath(folder_.Path() + u"/", u"a", &RecordedReports::Reporter);
  EXPECT_EQ(RawUnits(u"a"), folder_.Read("LastPath.txt"));
}

TEST_F(LastPath, MissingFoldersAreMade) {
  SaveLastPath(folder_.Path("x/y"), u"a", &RecordedReports::Reporter);
  EXPECT_EQ(RawUnits(u"a"), folder_.Read("x/y/LastPath.txt"));
}

TEST_F(LastPath, AFileThatCannotBeMadeIsReported) {
  folder_.Write("file", "");
  SaveLastPath(folder_.Path("file"), u"a", &RecordedReports::Reporter);
  const WideString path = platform::JoinPath(folder_.Path("file"), u"LastPath.txt");
  EXPECT_EQ((Reports{{"", u"Unable to open file: " + path, 0}}), *reports_);
}

TEST_F(LastPath, TheRunningProgramIsStartedWithTheQuotedPath) {
  const WideString model = folder_.Write("merged model.ifc", "x");
  Save(model);
  Open();
  EXPECT_EQ((std::vector<TestPlatform::Opened>{{u"/opt/viewer/viewer", u"\"" + model + u"\""}}),
            system_.opened);
  EXPECT_TRUE(reports_->empty());
}

TEST_F(LastPath, WithoutARememberedPathItIsReported) {
  Open();
  EXPECT_EQ(openFailed_, *reports_);
  EXPECT_TRUE(system_.opened.empty());
}

TEST_F(LastPath, AnEmptyFileRemembersNothing) {
  Save(u"");
  Open();
  EXPECT_EQ(openFailed_, *reports_);
}

TEST_F(LastPath, APathWhoseFileIsGoneIsReported) {
  Save(folder_.Path("gone.ifc"));
  Open();
  EXPECT_EQ(openFailed_, *reports_);
  EXPECT_TRUE(system_.opened.empty());
}

TEST_F(LastPath, Only256UnitsAreRead) {
  // Separators make a name of any length that leads to the same file.
  const WideString model = folder_.Write("a.ifc", "x");
  const std::size_t cut = platform::FindLastSeparator(model);
  const auto padded = [&](std::size_t length) {
    return model.substr(0, cut) + WideString(length - model.size(), u'/') + model.substr(cut);
  };
  Save(padded(256));
  Open();
  EXPECT_EQ(1u, system_.opened.size());
  Save(padded(257));
  Open();
  EXPECT_EQ(1u, system_.opened.size());
  EXPECT_EQ(openFailed_, *reports_);
}

TEST_F(LastPath, AHalfUnitAtTheEndIsDropped) {
  const WideString model = folder_.Write("a.ifc", "x");
  folder_.Write("LastPath.txt", RawUnits(model) + "?");
  Open();
  EXPECT_EQ(1u, system_.opened.size());
}

TEST_F(LastPath, OfTheProgramsPath256UnitsAreTaken) {
  Save(folder_.Write("a.ifc", "x"));
  system_.executablePath = u"/" + WideString(300, u'p');
  Open();
  ASSERT_EQ(1u, system_.opened.size());
  EXPECT_EQ(u"/" + WideString(255, u'p'), system_.opened[0].target);
}

// --- Files ---------------------------------------------------------------------------------------

TEST(EnsureFile, ItLeavesAnEmptyFile) {
  TemporaryFolder folder;
  EXPECT_TRUE(EnsureFile(folder.Path("a.txt")));
  EXPECT_EQ("", folder.Read("a.txt"));
}

TEST(EnsureFile, AFileWithContentIsEmptied) {
  TemporaryFolder folder;
  EXPECT_TRUE(EnsureFile(folder.Write("a.txt", "content")));
  EXPECT_EQ("", folder.Read("a.txt"));
}

TEST(EnsureFile, MissingFoldersAreMadeFromTheUppermost) {
  TemporaryFolder folder;
  EXPECT_TRUE(EnsureFile(folder.Path("x/y/z/a.txt")));
  EXPECT_EQ("", folder.Read("x/y/z/a.txt"));
}

TEST(EnsureFile, ARelativePathStartsInTheCurrentFolder) {
  TemporaryFolder folder;
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(folder.Native("."));
  EXPECT_TRUE(EnsureFile(u"x/a.txt"));
  EXPECT_TRUE(EnsureFile(u"b.txt"));
  std::filesystem::current_path(before);
  EXPECT_EQ("", folder.Read("x/a.txt"));
  EXPECT_EQ("", folder.Read("b.txt"));
}

TEST(EnsureFile, WhereAFileStandsInTheWayNothingIsMade) {
  TemporaryFolder folder;
  folder.Write("file", "kept");
  EXPECT_FALSE(EnsureFile(folder.Path("file/x/a.txt")));
  EXPECT_EQ("kept", folder.Read("file"));
  EXPECT_FALSE(EnsureFile(folder.Path()));
  EXPECT_FALSE(EnsureFile(u""));
}

#ifndef _WIN32
TEST(EnsureFile, UnderTheRootNothingCanBeMadeByAnOrdinaryUser) {
  test::OrdinaryUser user;
  EXPECT_FALSE(EnsureFile(u"/corvel_no_such_folder/a.txt"));
  EXPECT_FALSE(std::filesystem::exists("/corvel_no_such_folder"));
}
#endif

// --- Text ----------------------------------------------------------------------------------------

TEST(TrimDots, LeadingPointsAndCommasGo) {
  EXPECT_EQ(u"5.0,0", TrimDots(u".,.5.0,0"));
  EXPECT_EQ(u"5.", TrimDots(u"5."));
  EXPECT_EQ(u" .5", TrimDots(u" .5"));
  EXPECT_EQ(u"", TrimDots(u".,"));
  EXPECT_EQ(u"", TrimDots(u""));
}

}  // namespace
}  // namespace corvel
