#include "step/streams/outpout_file_stream.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "support/recorded_reports.h"
#include "support/temporary_folder.h"

namespace FileStream {
namespace {

using corvel::test::RecordedReports;
using corvel::test::Report;
using corvel::test::TemporaryFolder;

constexpr char kFile[] = "out.ifc";

// A stream on a file of its own, with a block of 8 and a keep-back of 4 unless told otherwise.
class OutpoutFile : public testing::Test {
 protected:
  std::string OnDisk() const { return folder_.Read(kFile); }
  OutpoutFileStream Open(std::uint64_t blockSize = 8, std::uint64_t keepBack = 4) {
    return OutpoutFileStream(folder_.Path(kFile), &RecordedReports::Reporter, blockSize, keepBack);
  }

  TemporaryFolder folder_;
  RecordedReports reports_;
};

TEST_F(OutpoutFile, OpeningEmptiesTheFile) {
  folder_.Write(kFile, "before");
  OutpoutFileStream stream = Open();
  EXPECT_TRUE(stream.IsOpen());
  EXPECT_EQ("", OnDisk());
}

TEST_F(OutpoutFile, NothingIsWrittenBeforeBlockAndKeepBackAreFull) {
  OutpoutFileStream stream = Open();
  stream.WriteNarrowString("0123456789A");
  EXPECT_EQ("", OnDisk());
  stream.WriteNarrowText("B");
  EXPECT_EQ("01234567", OnDisk()) << "a block goes out, the keep-back stays";
}

TEST_F(OutpoutFile, ALongTextGoesOutBlockByBlock) {
  OutpoutFileStream stream = Open();
  stream.WriteNarrowString("0123456789ABCDEFGHIJKLMN");
  EXPECT_EQ("0123456789ABCDEF", OnDisk());
  EXPECT_TRUE(stream.Commit());
  EXPECT_EQ("0123456789ABCDEFGHIJKLMN", OnDisk());
}

TEST_F(OutpoutFile, EveryStoreWritesTheLowByteOfEachCharacter) {
  OutpoutFileStream stream = Open(100, 4);
  stream.WriteWideString({u'a', 0x0141, 0xDCE9, 0xFFC4, 0});
  stream.WriteWideText(u"b\u0142\0not this");
  stream.WriteNarrowString(std::string("c\0\xE9", 3));
  stream.WriteNarrowText("d\xFF\0not this");
  stream.Commit();
  EXPECT_EQ(std::string("a\x41\xE9\xC4\0b\x42"
                        "c\0\xE9"
                        "d\xFF",
                        12),
            OnDisk());
}

TEST_F(OutpoutFile, WriteGoesToTheFileAtOncePastTheBuffer) {
  OutpoutFileStream stream = Open(100, 4);
  stream.WriteNarrowString("buffered");
  stream.Write("direct", 6);
  EXPECT_EQ("direct", OnDisk());
  stream.Commit();
  EXPECT_EQ("directbuffered", OnDisk());
}

TEST_F(OutpoutFile, TheLastCommaIsTakenBack) {
  OutpoutFileStream stream = Open(100, 4);
  stream.WriteNarrowText("(1,2,");
  stream.MovePosition(-1);
  stream.WriteNarrowText(")");
  stream.Commit();
  EXPECT_EQ("(1,2)", OnDisk());
}

TEST_F(OutpoutFile, TheWhenceIsIgnored) {
  OutpoutFileStream stream = Open(100, 4);
  stream.WriteNarrowText("(1,2,");
  stream.MovePosition(-1, 0);
  stream.MovePosition(-1, 2);
  stream.WriteNarrowText(")");
  stream.Commit();
  EXPECT_EQ("(1,)", OnDisk());
}

TEST_F(OutpoutFile, TheLastByteIsTakenBackRightAfterAFlush) {
  OutpoutFileStream stream = Open();
  stream.WriteNarrowText("0123456789A,");
  ASSERT_EQ("01234567", OnDisk());
  stream.MovePosition(-1);
  stream.WriteNarrowText(")");
  stream.Commit();
  EXPECT_EQ("0123456789A)", OnDisk());
}

TEST_F(OutpoutFile, AfterAFlushTheKeepBackIsAsFarAsThePositionGoes) {
  OutpoutFileStream stream = Open();
  stream.WriteNarrowText("0123456789AB");
  EXPECT_THROW(stream.MovePosition(-5), std::runtime_error);
  stream.MovePosition(-4);
  stream.WriteNarrowText("wxyz");
  stream.Commit();
  EXPECT_EQ("01234567wxyz", OnDisk());
}

TEST_F(OutpoutFile, AMoveBelowZeroThrowsAndThePositionStays) {
  OutpoutFileStream stream = Open(100, 4);
  stream.WriteNarrowText("abc");
  try {
    stream.MovePosition(-4);
    FAIL() << "moved below 0";
  } catch (const std::runtime_error& failure) {
    EXPECT_STREQ("Write to file error. Unable to move pointer below 0.", failure.what());
  }
  stream.WriteNarrowText("d");
  stream.Commit();
  EXPECT_EQ("abcd", OnDisk());
  EXPECT_TRUE(stream.IsOpen());
}

TEST_F(OutpoutFile, BytesBehindAMovedPositionStayUntilTheyAreOverwritten) {
  OutpoutFileStream stream = Open(100, 4);
  stream.WriteNarrowText("abcdef");
  stream.MovePosition(-4);
  stream.WriteNarrowText("X");
  stream.MovePosition(2);
  stream.WriteNarrowText("Y");
  stream.Commit();
  EXPECT_EQ("abXdeY", OnDisk());
}

TEST_F(OutpoutFile, ExactlyTheKeepBackAndThenCloseLeaveAnEmptyFile) {
  OutpoutFileStream stream = Open();
  stream.WriteNarrowText("abcd");
  EXPECT_TRUE(stream.Close());
  EXPECT_EQ("", OnDisk());
  EXPECT_FALSE(stream.IsOpen());
}

TEST_F(OutpoutFile, OneByteMoreThanTheKeepBackIsWrittenOnClose) {
  OutpoutFileStream stream = Open();
  stream.WriteNarrowText("abcde");
  stream.Close();
  EXPECT_EQ("abcde", OnDisk());
}

TEST_F(OutpoutFile, TheKeepBackIsLostWhenAFlushCameRightBeforeClose) {
  OutpoutFileStream stream = Open();
  stream.WriteNarrowText("0123456789AB");
  stream.Close();
  EXPECT_EQ("01234567", OnDisk());
}

TEST_F(OutpoutFile, CommitWritesEverythingHoweverLittle) {
  OutpoutFileStream stream = Open();
  stream.WriteNarrowText("ab");
  EXPECT_TRUE(stream.Commit());
  EXPECT_EQ("ab", OnDisk());
  EXPECT_TRUE(stream.Close());
  EXPECT_EQ("ab", OnDisk()) << "nothing follows, so the margin stays in the buffer";
}

TEST_F(OutpoutFile, CommitOnAFreshStreamWritesNothing) {
  OutpoutFileStream stream = Open();
  EXPECT_TRUE(stream.Commit());
  EXPECT_EQ("", OnDisk());
}

TEST_F(OutpoutFile, FromTheSecondCommitOnTheMarginStandsInFrontOfTheText) {
  OutpoutFileStream stream = Open();
  stream.WriteNarrowText("one");
  stream.Commit();
  stream.WriteNarrowText("two");
  stream.Commit();
  EXPECT_EQ("one   \ntwo", OnDisk());
  stream.Commit();
  EXPECT_EQ("one   \ntwo   \n", OnDisk());
}

TEST_F(OutpoutFile, TheMarginMakesRoomForStepsBackAfterCommit) {
  OutpoutFileStream stream = Open();
  stream.WriteNarrowText("one");
  stream.Commit();
  stream.MovePosition(-4);
  stream.WriteNarrowText("12345");
  stream.Close();
  EXPECT_EQ("one12345", OnDisk());
}

TEST_F(OutpoutFile, WithoutAKeepBackThereIsNoMargin) {
  OutpoutFileStream stream = Open(4, 0);
  stream.WriteNarrowText("one");
  stream.Commit();
  stream.WriteNarrowText("two");
  stream.Commit();
  EXPECT_EQ("onetwo", OnDisk());
  EXPECT_THROW(stream.MovePosition(-1), std::runtime_error);
}

TEST_F(OutpoutFile, AKeepBackOfOneHasAMarginOfALineFeed) {
  OutpoutFileStream stream = Open(8, 1);
  stream.WriteNarrowText("one");
  stream.Commit();
  stream.WriteNarrowText("two");
  stream.Commit();
  EXPECT_EQ("one\ntwo", OnDisk());
}

TEST_F(OutpoutFile, TheFirstTextOfAFreshStreamOverwritesTheMargin) {
  OutpoutFileStream stream = Open();
  stream.WriteNarrowText("abcdef");
  stream.Close();
  EXPECT_EQ("abcdef", OnDisk());
}

TEST_F(OutpoutFile, ReopenAppendsBehindWhatWasWritten) {
  OutpoutFileStream stream = Open();
  stream.WriteNarrowText("abcdef");
  stream.Close();
  ASSERT_TRUE(stream.Reopen());
  EXPECT_TRUE(stream.IsOpen());
  stream.WriteNarrowText("gh");
  stream.Close();
  EXPECT_EQ("abcdef   \ngh", OnDisk()) << "closing has put the margin into the buffer";
}

TEST_F(OutpoutFile, ReopenTakesTheBufferAsItStands) {
  OutpoutFileStream stream = Open();
  stream.WriteNarrowText("abc");
  stream.Close();  // writes nothing
  ASSERT_TRUE(stream.Reopen());
  stream.WriteNarrowText("de");
  stream.Close();
  EXPECT_EQ("abcde", OnDisk());
}

TEST_F(OutpoutFile, DestructionClosesAnOpenStream) {
  {
    OutpoutFileStream stream = Open();
    stream.WriteNarrowText("abcdef");
  }
  EXPECT_EQ("abcdef", OnDisk());
  EXPECT_TRUE(reports_->empty());
}

TEST_F(OutpoutFile, ClosingTwiceIsNoFailure) {
  OutpoutFileStream stream = Open();
  stream.WriteNarrowText("abcdef");
  EXPECT_TRUE(stream.Close());
  EXPECT_TRUE(stream.Close());
  EXPECT_EQ("abcdef", OnDisk());
}

TEST_F(OutpoutFile, AWrittenFileIsNeverAtItsEnd) {
  OutpoutFileStream stream = Open();
  stream.WriteNarrowText("abcdef");
  EXPECT_FALSE(stream.IsEof());
  stream.Close();
  EXPECT_FALSE(stream.IsEof());
}

TEST_F(OutpoutFile, TheWindowAndTheStoresShareOnePosition) {
  OutpoutFileStream stream = Open(100, 4);
  stream.WriteNarrowText("#1=");
  std::memcpy(stream.Reserve(8), "IFCWALL(", 8);
  stream.Advance(8);
  stream.WriteNarrowText("$,");
  stream.StepBack(1);
  stream.Append(");");
  stream.Commit();
  EXPECT_EQ("#1=IFCWALL($);", OnDisk());
}

TEST_F(OutpoutFile, NoFlushComesBetweenReserveAndAdvance) {
  OutpoutFileStream stream = Open();
  stream.WriteNarrowText("0123456789A");  // one byte below the flush
  const std::string piece(OutpoutStream::kMaxReserve, 'x');
  std::memcpy(stream.Reserve(piece.size()), piece.data(), piece.size());
  stream.Advance(piece.size());
  EXPECT_EQ("", OnDisk());
  stream.WriteNarrowText("B");
  EXPECT_EQ("0123456789A" + piece.substr(4), OnDisk()) << "all but the keep-back, then the byte";
  stream.Commit();
  EXPECT_EQ("0123456789A" + piece + "B", OnDisk());
}

TEST_F(OutpoutFile, AFullWindowIsFlushedByReserve) {
  OutpoutFileStream stream = Open();
  const std::string piece(OutpoutStream::kMaxReserve, 'x');
  std::string expected;
  for (int i = 0; i < 5; ++i) {
    stream.Append(piece);
    expected += piece;
  }
  const std::string early = OnDisk();
  EXPECT_EQ(expected.substr(0, early.size()), early);
  EXPECT_GE(early.size(), 4 * piece.size() - 12);
  stream.MovePosition(-4);
  stream.WriteNarrowText("wxyz");
  stream.Commit();
  EXPECT_EQ(expected.replace(expected.size() - 4, 4, "wxyz"), OnDisk());
}

TEST_F(OutpoutFile, AppendTakesTextsLongerThanTheWindow) {
  OutpoutFileStream stream = Open();
  std::string text(5000, '\0');
  for (std::size_t i = 0; i < text.size(); ++i) text[i] = static_cast<char>('a' + i % 26);
  stream.Append(text);
  stream.Append("");
  stream.Commit();
  EXPECT_EQ(text, OnDisk());
}

TEST_F(OutpoutFile, AStringThatFitsJustBelowTheFlushStaysInTheBuffer) {
  OutpoutFileStream stream = Open();
  stream.WriteWideString(u"0123456789A");
  EXPECT_EQ("", OnDisk());
  stream.WriteWideString(u"");
  EXPECT_EQ("", OnDisk());
  stream.WriteWideString(u"B");
  EXPECT_EQ("01234567", OnDisk());
}

}  // namespace
}  // namespace FileStream
