#include "core/text.h"

#include <gtest/gtest.h>

#include <random>

namespace corvel {
namespace {

std::string Bytes(std::initializer_list<int> values) {
  std::string bytes;
  for (const int value : values) bytes.push_back(static_cast<char>(value));
  return bytes;
}

// The plain definition, by code point.
std::string EncodedLiterally(char32_t code) {
  const auto byte = [](char32_t value) { return static_cast<char>(value); };
  if (code < 0x80) return {byte(code)};
  if (code < 0x800) return {byte(0xC0 + code / 64), byte(0x80 + code % 64)};
  if (code < 0x10000) {
    return {byte(0xE0 + code / 4096), byte(0x80 + code / 64 % 64), byte(0x80 + code % 64)};
  }
  return {byte(0xF0 + code / 262144), byte(0x80 + code / 4096 % 64), byte(0x80 + code / 64 % 64),
          byte(0x80 + code % 64)};
}

WideString UnitsOf(char32_t code) {
  if (code < 0x10000) return WideString(1, static_cast<char16_t>(code));
  return {static_cast<char16_t>(0xD800 + (code - 0x10000) / 1024),
          static_cast<char16_t>(0xDC00 + (code - 0x10000) % 1024)};
}

TEST(Utf8, EveryCodePointGoesThereAndBack) {
  for (char32_t code = 0; code <= 0x10FFFF; ++code) {
    if (code >= 0xD800 && code <= 0xDFFF) continue;
    const std::string bytes = EncodedLiterally(code);
    ASSERT_EQ(UnitsOf(code), FromUtf8(bytes)) << static_cast<std::uint32_t>(code);
    ASSERT_EQ(bytes, ToUtf8(UnitsOf(code))) << static_cast<std::uint32_t>(code);
  }
}

TEST(Utf8, EachByteThatIsNoUtf8BecomesARawByteUnit) {
  EXPECT_EQ(u"a\xDC80z", FromUtf8(Bytes({'a', 0x80, 'z'})));
  // A sequence cut short, in the middle and at the end.
  EXPECT_EQ(u"\xDCE2\xDC82z", FromUtf8(Bytes({0xE2, 0x82, 'z'})));
  EXPECT_EQ(u"\xDCF0\xDC9F\xDC98", FromUtf8(Bytes({0xF0, 0x9F, 0x98})));
  // Overlong forms of "/" and of NUL.
  EXPECT_EQ(u"\xDCC0\xDCAF", FromUtf8(Bytes({0xC0, 0xAF})));
  EXPECT_EQ(u"\xDCE0\xDC80\xDC80", FromUtf8(Bytes({0xE0, 0x80, 0x80})));
  EXPECT_EQ(u"\xDCF0\xDC80\xDC80\xDCAF", FromUtf8(Bytes({0xF0, 0x80, 0x80, 0xAF})));
  // A surrogate, and a code point beyond the last.
  EXPECT_EQ(u"\xDCED\xDCA0\xDC80", FromUtf8(Bytes({0xED, 0xA0, 0x80})));
  EXPECT_EQ(u"\xDCF4\xDC90\xDC80\xDC80", FromUtf8(Bytes({0xF4, 0x90, 0x80, 0x80})));
  EXPECT_EQ(u"\xDCFE\xDCFF", FromUtf8(Bytes({0xFE, 0xFF})));
}

TEST(Utf8, AValidSequenceBehindABadByteIsStillDecoded) {
  EXPECT_EQ(u"\xDCC3\u00E4", FromUtf8(Bytes({0xC3, 0xC3, 0xA4})));
}

TEST(Utf8, ALoneSurrogateThatStandsForNoByteBecomesTheReplacementCharacter) {
  EXPECT_EQ("\xEF\xBF\xBD", ToUtf8(WideString{0xD83D}));
  EXPECT_EQ("\xEF\xBF\xBDx", ToUtf8(WideString{0xD83D, u'x'}));
  EXPECT_EQ("\xEF\xBF\xBD", ToUtf8(WideString{0xDC00}));
  EXPECT_EQ("\xEF\xBF\xBD", ToUtf8(WideString{0xDFFF}));
  // A raw byte is one of 128..255 only.
  EXPECT_EQ("\xEF\xBF\xBD", ToUtf8(WideString{0xDC7F}));
  EXPECT_EQ("\xEF\xBF\xBD", ToUtf8(WideString{0xDD00}));
}

TEST(Utf8, RawByteUnitsBecomeTheirBytes) {
  EXPECT_EQ("\x80\xFF", ToUtf8(WideString{0xDC80, 0xDCFF}));
}

TEST(Utf8, ALowSurrogateOfAPairIsNoRawByte) {
  EXPECT_EQ("\xF0\x9F\x92\x80", ToUtf8(WideString{0xD83D, 0xDC80}));
}

TEST(Utf8, AnyBytesComeBackAsTheyWere) {
  std::mt19937 random(20240307);
  // Bytes that matter in sequences come up more often than an even choice would bring them.
  const std::string likely =
      Bytes({'a', 0x80, 0xBF, 0xC2, 0xC3, 0xE0, 0xE2, 0xED, 0xF0, 0xF4, 0x9F, 0xA0, 0x90, 0x8F});
  for (int round = 0; round < 20000; ++round) {
    std::string bytes(random() % 12, '\0');
    for (char& byte : bytes) {
      byte =
          random() % 4 == 0 ? static_cast<char>(random() & 0xFF) : likely[random() % likely.size()];
    }
    ASSERT_EQ(bytes, ToUtf8(FromUtf8(bytes)));
  }
}

TEST(Utf8, AnyUnitsGiveBytesThatDecodeToTheSameBytes) {
  std::mt19937 random(7);
  const char16_t likely[] = {0xD800, 0xDBFF, 0xDC00, 0xDC7F, 0xDC80, 0xDCC3, 0xDCA4,
                             0xDCFF, 0xDD00, 0xDFFF, u'a',   0xE000, 0x7FF,  0x800};
  for (int round = 0; round < 20000; ++round) {
    WideString wide(random() % 8, u'\0');
    for (char16_t& unit : wide) {
      unit = random() % 4 == 0 ? static_cast<char16_t>(random() & 0xFFFF)
                               : likely[random() % std::size(likely)];
    }
    const std::string bytes = ToUtf8(wide);
    ASSERT_EQ(bytes, ToUtf8(FromUtf8(bytes)));
  }
}

TEST(Text, AppendUtf8KeepsWhatStoodThere) {
  std::string bytes = "a";
  AppendUtf8(u"\u0142", bytes);
  EXPECT_EQ("a\xC5\x82", bytes);
}

TEST(Text, WidenAndNarrowMoveTheLowByteOnly) {
  EXPECT_EQ((WideString{u'a', 0xE4, 0xFF}), Widen("a\xE4\xFF"));
  EXPECT_EQ("A\x23", Narrow(WideString{0x0141, 0x0123}));
}

TEST(Text, ToLowerAsciiChangesAToZAndNothingElse) {
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
    const auto as16 = static_cast<char16_t>(unit);
    const char16_t lower = unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : as16;
    ASSERT_EQ(WideString(1, lower), ToLowerAscii(WideString(1, as16))) << unit;
  }
}

TEST(Text, RawBytesAreTheUnitsOfTheBytesAbove127) {
  int count = 0;
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
    count += IsRawByte(static_cast<char16_t>(unit)) ? 1 : 0;
  }
  EXPECT_EQ(128, count);
  EXPECT_TRUE(IsRawByte(kRawByteBase + 0x80));
  EXPECT_TRUE(IsRawByte(kRawByteBase + 0xFF));
}

TEST(Text, ToWideGivesTheDecimalTextOfUnsignedNumbers) {
  EXPECT_EQ(u"0", ToWide(0));
  EXPECT_EQ(u"4294967295", ToWide(4294967295u));
}

}  // namespace
}  // namespace corvel
