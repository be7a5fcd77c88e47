// What all input streams share: names out of the path, the window and the statement text.
#include "step/streams/input_stream.h"

#include <gtest/gtest.h>

#include "step/streams/input_text_stream.h"
#include "support/memory_streams.h"

#ifndef _WIN32
#include "support/posix_faults.h"
#endif

namespace FileStream {
namespace {

using corvel::test::MemoryInputStream;
using corvel::test::TakeByChar;

// Takes `count` bytes through the window, refilling when it is used up.
std::string TakeByWindow(InputStream& stream, std::size_t count) {
  std::string taken;
  while (taken.size() < count && (stream.Cursor() != stream.WindowEnd() || stream.Refill())) {
    taken.push_back(*stream.Cursor());
    stream.SetCursor(stream.Cursor() + 1);
  }
  return taken;
}

TEST(InputStream, ThePathIsSplitAtTheFirstBar) {
  const MemoryInputStream entry("", 1, u"D:\\a.olf|sub/model.ifc");
  EXPECT_EQ(u"D:\\a.olf", entry.ContainerPath());
  EXPECT_EQ(u".olf", entry.Extension());
  const MemoryInputStream plain("", 1, u"D:\\a.ifc");
  EXPECT_EQ(u"D:\\a.ifc", plain.ContainerPath());
  EXPECT_EQ(u"", plain.EntryName());
}

TEST(InputStream, CharactersAndWindowMoveOnePosition) {
  MemoryInputStream stream("abcdefghij", 3);
  EXPECT_EQ("ab", TakeByChar(stream, 2));
  EXPECT_EQ("cd", TakeByWindow(stream, 2));
  EXPECT_EQ('e', stream.PeekChar());
  EXPECT_EQ("efg", TakeByChar(stream, 3));
  EXPECT_EQ(7, stream.Position());
  EXPECT_EQ("hij", TakeByWindow(stream, 99));
  EXPECT_EQ(-1, stream.GetChar());
}

TEST(InputStream, BytesFrom128AreNegative) {
  MemoryInputStream stream("\x80\xFE\xFF");
  EXPECT_EQ(-128, stream.GetChar());
  EXPECT_EQ(-2, stream.PeekChar());
  EXPECT_EQ(-2, stream.GetChar());
  EXPECT_EQ(-1, stream.GetChar()) << "a byte of 255 looks like the end";
  EXPECT_EQ(3, stream.Position());
}

TEST(InputStream, RewoundBytesComeOnceMoreWhateverTheWindows) {
  const std::string text = "#1=IFCWALL($);\n#2=IFCDOOR();";
  for (std::size_t window = 1; window <= text.size() + 1; ++window) {
    for (std::size_t taken = 0; taken <= text.size(); ++taken) {
      for (std::size_t kept = 0; kept <= taken; ++kept) {
        MemoryInputStream stream(text, window);
        TakeByWindow(stream, taken);
        stream.Rewind(kept);
        ASSERT_EQ(text.substr(0, kept), stream.StatementText());
        ASSERT_EQ(static_cast<std::int64_t>(kept), stream.Position());
        ASSERT_EQ(text.substr(kept), TakeByWindow(stream, text.size()));
        ASSERT_EQ(text, stream.StatementView());
      }
    }
  }
}

TEST(InputStream, WhatIsRewoundTwiceComesTwice) {
  MemoryInputStream stream("abcdefghij", 3);
  TakeByWindow(stream, 8);
  stream.Rewind(2);
  EXPECT_EQ("cde", TakeByWindow(stream, 3));
  stream.Rewind(1);
  EXPECT_EQ("bcdefghi", TakeByWindow(stream, 8));
  stream.Rewind(0);
  EXPECT_EQ("abcdefghij", TakeByWindow(stream, 99));
  EXPECT_EQ(10, stream.Position());
}

TEST(InputStream, AReplacementComesInThePlaceOfWhatWasTaken) {
  for (std::size_t window = 1; window <= 12; ++window) {
    MemoryInputStream stream("abcdefghij", window);
    TakeByWindow(stream, 5);
    stream.Replace(2, "12345");
    EXPECT_EQ("ab", stream.StatementText());
    EXPECT_EQ("123", TakeByWindow(stream, 3));
    stream.Replace(1, "xy");
    EXPECT_EQ("xy45f", TakeByWindow(stream, 5));
    EXPECT_EQ("axy45f", stream.StatementView());
    EXPECT_EQ(6, stream.Position());
    stream.Rewind(1);
    EXPECT_EQ("xy45fghij", TakeByWindow(stream, 99));
    EXPECT_EQ(10, stream.Position());
  }
}

TEST(InputStream, ATextIsOneWindow) {
  InputTextStream stream("#1=IFCWALL();");
  EXPECT_EQ(13, stream.TotalSize());
  EXPECT_EQ("#1", TakeByWindow(stream, 2));
  EXPECT_EQ(2, stream.Position());
  EXPECT_EQ('=', stream.PeekChar());
  char bytes[20] = {};
  EXPECT_EQ(11u, stream.Read(bytes, sizeof bytes));
  EXPECT_STREQ("=IFCWALL();", bytes);
  EXPECT_TRUE(stream.IsEof());
  EXPECT_EQ(-1, stream.GetChar());
  stream.Close();
  EXPECT_EQ(-1, stream.Position());
}

TEST(StatementText, ItHoldsAllDeliveredBytesWhateverTheWindows) {
  const std::string text = "#1=IFCWALL($);\n#2=IFCDOOR();";
  for (std::size_t window = 1; window <= text.size() + 1; ++window) {
    for (std::size_t byWindow = 0; byWindow <= text.size(); ++byWindow) {
      MemoryInputStream stream(text, window);
      TakeByWindow(stream, byWindow);
      TakeByChar(stream, text.size() - byWindow);
      ASSERT_EQ(text, stream.StatementText()) << window << " " << byWindow;
      ASSERT_EQ(text, stream.StatementView()) << window << " " << byWindow;
    }
  }
}

TEST(StatementText, ClearingStartsItAnewAtTheCursor) {
  for (std::size_t window = 1; window <= 12; ++window) {
    MemoryInputStream stream("first;second;", window);
    TakeByWindow(stream, 6);
    stream.ClearStatementText();
    EXPECT_EQ("", stream.StatementText());
    TakeByChar(stream, 7);
    EXPECT_EQ("second;", stream.StatementText()) << window;
  }
}

TEST(StatementText, PeekingAddsNothing) {
  MemoryInputStream stream("ab", 1);
  stream.PeekChar();
  stream.GetChar();
  stream.PeekChar();
  EXPECT_EQ("a", stream.StatementText());
}

TEST(StatementText, BytesOfReadStayOutOfIt) {
  for (std::size_t window = 1; window <= 9; ++window) {
    MemoryInputStream stream("ab--cd--", window);
    char skipped[2];
    TakeByWindow(stream, 2);
    EXPECT_EQ(2u, stream.Read(skipped, 2));
    TakeByChar(stream, 2);
    EXPECT_EQ(2u, stream.Read(skipped, 2));
    EXPECT_EQ("abcd", stream.StatementText()) << window;
    EXPECT_EQ(8, stream.Position());
  }
}

TEST(StatementText, ItOutlivesTheStreamsEnd) {
  MemoryInputStream stream("abc", 2);
  TakeByWindow(stream, 3);
  EXPECT_FALSE(stream.Refill());
  EXPECT_EQ("abc", stream.StatementText());
  stream.Close();
  EXPECT_EQ("abc", stream.StatementText());
}

#if !defined(_WIN32) && !defined(__SANITIZE_ADDRESS__)
// A destructor closes too, and must not throw.
TEST(StatementText, IsGivenUpByCloseWhenThereIsNoMemoryForIt) {
  constexpr std::size_t kSize = std::size_t{256} << 20;
  MemoryInputStream stream(std::string(kSize, ' '));
  ASSERT_TRUE(stream.Refill());
  stream.SetCursor(stream.WindowEnd());
  {
    const corvel::test::MemoryLimit limit(kSize / 2);
    EXPECT_EQ(0, stream.Close());
  }
  EXPECT_EQ("", stream.StatementText());
}
#endif

TEST(StatementView, ItLiesInTheWindowAsLongAsNoRefillCameBetween) {
  MemoryInputStream stream("abcdef", 4);
  TakeByWindow(stream, 3);
  EXPECT_EQ(stream.Cursor(), stream.StatementView().end());
  TakeByWindow(stream, 2);
  EXPECT_EQ("abcde", stream.StatementView());
  EXPECT_EQ("abcde", stream.StatementView()) << "asking changes nothing";
  TakeByWindow(stream, 1);
  EXPECT_EQ("abcdef", stream.StatementText());
}

TEST(LastWasSemicolon, OnlyTheLastDeliveredByteCounts) {
  for (std::size_t window = 1; window <= 5; ++window) {
    MemoryInputStream stream("a;b;", window);
    EXPECT_FALSE(stream.LastWasSemicolon());
    TakeByChar(stream, 2);
    EXPECT_TRUE(stream.LastWasSemicolon());
    stream.PeekChar();
    stream.ClearStatementText();
    EXPECT_TRUE(stream.LastWasSemicolon());
    TakeByWindow(stream, 1);
    EXPECT_FALSE(stream.LastWasSemicolon());
    TakeByWindow(stream, 1);
    EXPECT_TRUE(stream.LastWasSemicolon());
    EXPECT_FALSE(stream.Refill());
    EXPECT_TRUE(stream.LastWasSemicolon()) << "the end of the data is no byte";
  }
}

TEST(LastWasSemicolon, BytesOfReadDoNotCount) {
  for (std::size_t window = 1; window <= 5; ++window) {
    MemoryInputStream stream("a;;b", window);
    char skipped;
    TakeByChar(stream, 1);
    stream.Read(&skipped, 1);
    EXPECT_FALSE(stream.LastWasSemicolon());
    TakeByChar(stream, 1);
    stream.Read(&skipped, 1);
    EXPECT_TRUE(stream.LastWasSemicolon());
  }
}

}  // namespace
}  // namespace FileStream
