#include "step/log/ifc_log.h"

#include <gtest/gtest.h>

#include "support/temporary_folder.h"
#include "support/test_platform.h"
#ifndef _WIN32
#include "support/posix_faults.h"
#endif

namespace corvel {
namespace {

using test::LogfileErrorBox;
using test::TemporaryFolder;
using test::TestPlatform;

// Goes out ahead of the text that follows each commit.
const std::string kMargin = std::string(199, ' ') + "\n";
// The first line, and the margin that follows it.
const std::string kStart = "[07-03-2024    09:05:00]\r\n" + kMargin;

TestPlatform::Box ErrorBox(const WideString& title, const WideString& text) {
  return {title, text, platform::Buttons::kOk, platform::Icon::kError};
}

class Log : public testing::Test {
 protected:
  std::string OnDisk() const { return folder_.Read("a_IFC_LOG.txt"); }
  void Open() { log_.Open(folder_.Path("a.ifc")); }
  // What the file holds behind the first line and its margin, when the log is closed.
  std::string Logged() {
    log_.Close();
    const std::string text = OnDisk();
    EXPECT_EQ(kStart, text.substr(0, kStart.size()));
    return text.substr(std::min(kStart.size(), text.size()));
  }

  TestPlatform system_;
  TemporaryFolder folder_;
  IfcLog log_;
};

TEST(LogPath, TheExtensionGivesWay) {
  EXPECT_EQ(u"D:\\m\\a_IFC_LOG.txt", LogPathOf(u"D:\\m\\a.ifc"));
  EXPECT_EQ(u"/m/a.b_IFC_LOG.txt", LogPathOf(u"/m/a.b.ifczip"));
}

TEST(LogPath, ANameWithoutADotIsAppendedTo) {
  EXPECT_EQ(u"D:\\m\\model_IFC_LOG.txt", LogPathOf(u"D:\\m\\model"));
  EXPECT_EQ(u"/m.x/model_IFC_LOG.txt", LogPathOf(u"/m.x/model"));
  EXPECT_EQ(u"_IFC_LOG.txt", LogPathOf(u""));
}

TEST(LogPath, TheLogOfAContainerEntryLiesBesideTheContainer) {
  EXPECT_EQ(u"D:\\m\\model_IFC_LOG.txt", LogPathOf(u"D:\\m\\a.olf|sub/model.ifc"));
  EXPECT_EQ(u"/m/model_IFC_LOG.txt", LogPathOf(u"/m/a.olf|sub\\..\\model.ifc"));
  EXPECT_EQ(u"model_IFC_LOG.txt", LogPathOf(u"a.olf|model.ifc"));
}

TEST_F(Log, OpeningWritesTheDateLineToTheDisk) {
  Open();
  EXPECT_TRUE(log_.HasStream());
  EXPECT_EQ(folder_.Path("a_IFC_LOG.txt"), log_.Path());
  EXPECT_EQ("[07-03-2024    09:05:00]\r\n", OnDisk());
}

TEST_F(Log, DateAndTimeHaveTwoDigitsAndTheYearAll) {
  system_.localTime = {987, 12, 31, 23, 59, 58};
  Open();
  EXPECT_EQ("[31-12-987    23:59:58]\r\n", OnDisk());
}

TEST_F(Log, AnOldLogIsReplaced) {
  folder_.Write("a_IFC_LOG.txt", "old");
  Open();
  EXPECT_EQ("[07-03-2024    09:05:00]\r\n", OnDisk());
}

TEST_F(Log, TwoTextsStandOnOneLine) {
  Open();
  log_.LogText(u"a");
  log_.LogText(u"b");
  EXPECT_EQ("ab", Logged());
}

TEST_F(Log, ALineEndsInCarriageReturnAndLineFeed) {
  Open();
  log_.LogText(u"Reading ");
  log_.LogLine(u"done.");
  log_.LogLine(u"");
  EXPECT_EQ("Reading done.\r\n\r\n", Logged());
}

TEST_F(Log, TextIsUtf8) {
  Open();
  log_.LogText(u"B\u0142\u0105d \U0001F3E0");
  EXPECT_EQ(
      "B\xC5\x82\xC4\x85"
      "d \xF0\x9F\x8F\xA0",
      Logged());
}

TEST_F(Log, ABlockIsIndentedByATabInFrontOfEveryText) {
  Open();
  log_.LogLine(u"outer", true);
  log_.LogLine(u"middle", true);
  log_.LogText(u"x");
  log_.LogText(u"y");
  log_.EndBlock();
  log_.LogLine(u"middle");
  log_.EndBlock();
  log_.LogLine(u"outer");
  EXPECT_EQ("outer\r\n\tmiddle\r\n\t\tx\t\ty\tmiddle\r\nouter\r\n", Logged());
}

TEST_F(Log, EndingABlockThatIsNotThereChangesNothing) {
  Open();
  log_.EndBlock();
  log_.LogLine(u"a", true);
  log_.EndBlock();
  log_.EndBlock();
  log_.LogLine(u"b");
  EXPECT_EQ("a\r\nb\r\n", Logged());
}

TEST_F(Log, WithoutAnOpenLogNothingHappens) {
  log_.LogLine(u"lost", true);
  log_.LogText(u"lost");
  log_.LogReadingEntity(1);
  log_.Flush();
  log_.Close();
  EXPECT_TRUE(folder_.Names().empty());
  Open();
  log_.LogText(u"x");
  EXPECT_EQ("x", Logged()) << "a line that was not written opens no block";
  EXPECT_TRUE(system_.boxes.empty());
}

TEST_F(Log, MutedCallsAreDroppedAltogether) {
  Open();
  log_.LogText(u"a");
  log_.SetMuted(true);
  log_.LogText(u"b");
  log_.LogLine(u"c", true);
  log_.Flush();
  log_.SetMuted(false);
  log_.LogText(u"d");
  EXPECT_EQ("ad", Logged());
}

TEST_F(Log, OpeningUnmutes) {
  log_.SetMuted(true);
  Open();
  EXPECT_FALSE(log_.IsMuted());
  log_.LogText(u"a");
  log_.SetMuted(true);
  Open();
  log_.LogText(u"b");
  EXPECT_EQ("ab", Logged());
}

TEST_F(Log, LogUnmutedPassesTheMutingAndThenPutsItBack) {
  Open();
  log_.SetMuted(true);
  {
    LogUnmuted unmuted(log_);
    log_.LogText(u"Parsing CANCELED");
  }
  EXPECT_TRUE(log_.IsMuted());
  log_.SetMuted(false);
  { LogUnmuted unmuted(log_); }
  EXPECT_FALSE(log_.IsMuted());
  EXPECT_EQ("Parsing CANCELED", Logged());
}

TEST_F(Log, OpeningAnOpenLogGoesOnWithTheFileOfTheFirstModel) {
  Open();
  log_.LogText(u"a");
  log_.Open(folder_.Path("b.ifc"));
  log_.LogText(u"b");
  EXPECT_EQ("ab", Logged());
  EXPECT_FALSE(folder_.Has("b_IFC_LOG.txt"));
}

TEST_F(Log, AfterClosingTheNextModelGetsALogOfItsOwn) {
  Open();
  log_.LogText(u"a");
  log_.Close();
  EXPECT_FALSE(log_.HasStream());
  EXPECT_EQ(folder_.Path("a_IFC_LOG.txt"), log_.Path()) << "for those who show or delete it";
  log_.LogText(u"lost");
  log_.Open(folder_.Path("b.ifc"));
  log_.LogText(u"b");
  log_.Close();
  EXPECT_EQ(kStart + "a", OnDisk());
  EXPECT_EQ(kStart + "b", folder_.Read("b_IFC_LOG.txt"));
}

TEST_F(Log, DestructionWritesWhatIsStillInTheBuffer) {
  {
    IfcLog log;
    log.Open(folder_.Path("a.ifc"));
    log.LogText(u"a");
  }
  EXPECT_EQ(kStart + "a", OnDisk());
}

TEST_F(Log, TextReachesTheDiskOnlyWithAFlush) {
  Open();
  log_.LogText(u"a");
  EXPECT_EQ("[07-03-2024    09:05:00]\r\n", OnDisk());
  log_.Flush();
  EXPECT_EQ(kStart + "a", OnDisk());
}

TEST_F(Log, WithFlushEveryLineEachCommitWritesALineOfBlanksAheadOfTheNewText) {
  Open();
  log_.SetFlushEveryLine(true);
  EXPECT_TRUE(log_.FlushesEveryLine());
  log_.LogLine(u"one");
  EXPECT_EQ(kStart + "one\r\n", OnDisk());
  log_.LogText(u"two");
  log_.LogLine(u"three", true);
  EXPECT_EQ(kStart + "one\r\n" + kMargin + "two" + kMargin + "three\r\n", OnDisk());
  log_.SetFlushEveryLine(false);
  log_.LogText(u"four");
  EXPECT_EQ(kStart + "one\r\n" + kMargin + "two" + kMargin + "three\r\n", OnDisk());
}

TEST_F(Log, OneCallIn101WritesTheEntityBeingRead) {
  Open();
  log_.LogLine(u"block", true);
  for (std::uint32_t marker = 1; marker <= 202; ++marker) log_.LogReadingEntity(marker);
  EXPECT_EQ("block\r\nReading entity: #101Reading entity: #202", Logged()) << "no indent, no end";
}

TEST_F(Log, TheMarkerBeingReadIsRememberedUntilTheNextText) {
  Open();
  for (std::uint32_t call = 1; call <= 101; ++call) log_.LogReadingEntity(4294967279u);
  EXPECT_EQ(u"4294967279", log_.LastMarkerText());
  for (std::uint32_t call = 1; call <= 100; ++call) log_.LogReadingEntity(7);
  EXPECT_EQ(u"4294967279", log_.LastMarkerText());
  log_.LogText(u"x");
  EXPECT_EQ(u"", log_.LastMarkerText());
  log_.LogReadingEntity(8);
  EXPECT_EQ(u"8", log_.LastMarkerText());
  log_.LogLine(u"x");
  EXPECT_EQ(u"", log_.LastMarkerText());
}

TEST_F(Log, MutedCallsDoNotCount) {
  Open();
  for (std::uint32_t marker = 1; marker <= 100; ++marker) log_.LogReadingEntity(marker);
  log_.SetMuted(true);
  for (std::uint32_t marker = 1; marker <= 100; ++marker) log_.LogReadingEntity(marker);
  log_.SetMuted(false);
  EXPECT_EQ(u"", log_.LastMarkerText());
  log_.LogReadingEntity(5);
  EXPECT_EQ("Reading entity: #5", Logged());
}

TEST_F(Log, ReadingEntitiesAreFlushedToo) {
  Open();
  log_.SetFlushEveryLine(true);
  for (std::uint32_t marker = 1; marker <= 101; ++marker) log_.LogReadingEntity(marker);
  EXPECT_EQ(kStart + "Reading entity: #101", OnDisk());
}

TEST_F(Log, AFileThatCannotBeMadeIsToldAndTheRunGoesOnWithoutALog) {
  log_.Open(folder_.Path("none/a.ifc"));
  const WideString path = folder_.Path("none/a_IFC_LOG.txt");
  EXPECT_EQ((std::vector{LogfileErrorBox(u"File path: " + path),
                         ErrorBox(u"Log file error", u"Could not create log file: " + path)}),
            system_.boxes);
  EXPECT_FALSE(log_.HasStream());
  log_.LogLine(u"x", true);
  log_.LogReadingEntity(1);
  log_.EndBlock();
  EXPECT_EQ(2u, system_.boxes.size());
}

TEST_F(Log, TheProcessHasOneLog) { EXPECT_EQ(&IfcLog::Instance(), &IfcLog::Instance()); }

#ifndef _WIN32

class LogOnAFullDisk : public Log {
 protected:
  // Leaves the log with a stream that a failed write has closed.
  void FailAWrite() {
    test::FileSizeLimit limit(OnDisk().size());
    log_.LogText(WideString(2000, u'x'));
  }
};

TEST_F(LogOnAFullDisk, AFailedWriteIsToldInABoxAndNeverThrown) {
  Open();
  FailAWrite();
  EXPECT_EQ(std::vector{LogfileErrorBox(u"Could not write to file")}, system_.boxes);
}

TEST_F(LogOnAFullDisk, AWriteThatFindsTheLogClosedEndsTheLogging) {
  Open();
  FailAWrite();
  log_.LogText(u"a");
  log_.LogText(u"b");
  EXPECT_EQ((std::vector{LogfileErrorBox(u"Could not write to file"),
                         ErrorBox(u"IFC lib", u"LogFile is closed.")}),
            system_.boxes);
  EXPECT_FALSE(log_.HasStream());
}

TEST_F(LogOnAFullDisk, ReadingEntitiesFindTheClosedLogToo) {
  Open();
  for (std::uint32_t marker = 1; marker <= 100; ++marker) log_.LogReadingEntity(marker);
  FailAWrite();
  log_.LogReadingEntity(101);
  EXPECT_EQ(ErrorBox(u"IFC lib", u"LogFile is closed."), system_.boxes.back());
  EXPECT_FALSE(log_.HasStream());
}

TEST_F(LogOnAFullDisk, OpeningBringsAClosedLogBack) {
  Open();
  FailAWrite();
  Open();
  log_.LogText(u"y");
  // Of the text that failed there is what the buffer held.
  EXPECT_EQ(std::string(1024, 'x') + "y", Logged());
}

TEST_F(LogOnAFullDisk, ACommitThatComesShortIsToldOnceAndLoggingGoesOn) {
  Open();
  log_.SetFlushEveryLine(true);
  {
    test::FileSizeLimit limit(OnDisk().size());
    log_.LogLine(u"lost");
    log_.LogLine(u"lost too");
  }
  EXPECT_EQ(std::vector{LogfileErrorBox(u"Could not write to file")}, system_.boxes);
  log_.LogText(u"kept");
  EXPECT_EQ("[07-03-2024    09:05:00]\r\n" + kMargin + "kept", OnDisk());
}

#endif

}  // namespace
}  // namespace corvel
