// The system's own implementation, and the seam in front of it.
#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <filesystem>
#include <map>
#include <set>

#include "platform/file.h"
#include "platform/platform.h"
#include "support/test_platform.h"

namespace platform {
namespace {

TEST(Seam, AReplacementStandsInUntilItGoes) {
  EXPECT_EQ(&System(), &Get());
  {
    corvel::test::TestPlatform outer;
    EXPECT_EQ(&outer, &Get());
    {
      corvel::test::TestPlatform inner;
      EXPECT_EQ(&inner, &Get());
    }
    EXPECT_EQ(&outer, &Get());
  }
  EXPECT_EQ(&System(), &Get());
}

TEST(SystemGuid, ItIsRandomButForVersionAndVariant) {
  std::set<std::uint32_t> firstFields;
  Guid all;
  for (int i = 0; i < 200; ++i) {
    const Guid guid = System().NewGuid();
    EXPECT_EQ(4, guid.data3 >> 12);
    EXPECT_EQ(0x80, guid.data4[0] & 0xC0);
    firstFields.insert(guid.data1);
    all.data1 |= guid.data1;
    all.data2 = static_cast<std::uint16_t>(all.data2 | guid.data2);
    all.data3 = static_cast<std::uint16_t>(all.data3 | guid.data3);
    for (std::size_t b = 0; b < 8; ++b) {
      all.data4[b] = static_cast<std::uint8_t>(all.data4[b] | guid.data4[b]);
    }
  }
  EXPECT_GT(firstFields.size(), 195u);
  // Every other bit turns up: none is lost on the way.
  EXPECT_EQ(0xFFFFFFFFu, all.data1);
  EXPECT_EQ(0xFFFF, all.data2);
  EXPECT_EQ(0x4FFF, all.data3);
  EXPECT_EQ(0xBF, all.data4[0]);
  for (std::size_t b = 1; b < 8; ++b) EXPECT_EQ(0xFF, all.data4[b]);
}

TEST(SystemClock, ItNeverGoesBackAndCountsNanoseconds) {
  const auto start = std::chrono::steady_clock::now();
  const std::int64_t first = System().MonotonicNanoseconds();
  std::int64_t last = first;
  while (last - first < 2'000'000) {
    const std::int64_t now = System().MonotonicNanoseconds();
    ASSERT_GE(now, last);
    last = now;
  }
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::nanoseconds(last - first));
}

TEST(SystemClock, NowIsTheLocalTime) {
  const LocalTime now = System().Now();
  std::tm fields{};
  fields.tm_year = now.year - 1900;
  fields.tm_mon = now.month - 1;
  fields.tm_mday = now.day;
  fields.tm_hour = now.hour;
  fields.tm_min = now.minute;
  fields.tm_sec = now.second;
  fields.tm_isdst = -1;
  EXPECT_NEAR(static_cast<double>(std::time(nullptr)), static_cast<double>(std::mktime(&fields)),
              5.0);
}

TEST(SystemMemory, TheFiguresFitTogether) {
  const auto figures = System().QueryMemory();
  ASSERT_TRUE(figures);
  EXPECT_GT(figures->availablePhysical, 0u);
  EXPECT_LT(figures->availablePhysical, figures->totalPhysical);
  EXPECT_GE(figures->totalPageFile, figures->totalPhysical);
  EXPECT_LE(figures->availablePageFile, figures->totalPageFile);
  EXPECT_GT(figures->availableAddressSpace, 0u);
  EXPECT_LT(figures->availableAddressSpace, figures->totalAddressSpace);
}

TEST(SystemDisk, FreeBytesAreThoseOfTheSystemDisk) {
#ifdef _WIN32
  const auto space = std::filesystem::space("C:\\");
#else
  const auto space = std::filesystem::space("/");
#endif
  const auto free = System().FreeSystemDiskBytes();
  EXPECT_LE(free, space.capacity);
  // Others write to the disk meanwhile.
  EXPECT_NEAR(static_cast<double>(space.available), static_cast<double>(free), 2e9);
}

TEST(SystemProgram, ThePathOfTheRunningProgramLeadsToIt) {
  const std::u16string path = System().ExecutablePath();
  EXPECT_TRUE(FileExists(path));
  const auto name = std::filesystem::path(path).stem().string();
  EXPECT_NE(std::string::npos, testing::internal::GetArgvs().front().find(name));
}

// --- Code pages ----------------------------------------------------------------------------------

std::optional<char16_t> Decoded(unsigned codePage, unsigned byte) {
  return System().DecodeByte(codePage, static_cast<std::uint8_t>(byte));
}

TEST(CodePages, TheDefaultIsWesternWindows) {
  for (const unsigned page : {0u, 1252u}) {
    EXPECT_EQ(u'\u20AC', Decoded(page, 0x80));
    EXPECT_EQ(u'\u2019', Decoded(page, 0x92));
    EXPECT_EQ(u'\u00E4', Decoded(page, 0xE4));
    EXPECT_EQ(u'\u00FF', Decoded(page, 0xFF));
  }
}

TEST(CodePages, IsoPagesAreThoseOfTheirNumber) {
  const std::map<unsigned, char16_t> atE6 = {
      {28591, u'\u00E6'}, {28592, u'\u0107'}, {28593, u'\u0109'},
      {28594, u'\u00E6'}, {28595, u'\u0446'}, {28596, u'\u0646'},
      {28597, u'\u03B6'}, {28598, u'\u05D6'}, {28599, u'\u00E6'},
  };
  for (const auto& [page, unit] : atE6) EXPECT_EQ(unit, Decoded(page, 0xE6)) << page;
}

TEST(CodePages, OtherWindowsPagesAreKnown) {
  EXPECT_EQ(u'\u0159', Decoded(1250, 0xF8));
  EXPECT_EQ(u'\u0436', Decoded(1251, 0xE6));
}

TEST(CodePages, BytesBelow128AreThemselves) {
  EXPECT_EQ(u'A', Decoded(0, 'A'));
  EXPECT_EQ(u'A', Decoded(12345, 'A'));
}

TEST(CodePages, LatinOneIsTheFirst256Characters) {
  for (unsigned byte = 0xA0; byte < 0x100; ++byte) {
    EXPECT_EQ(static_cast<char16_t>(byte), Decoded(28591, byte));
  }
}

TEST(CodePages, TheGreekAndTheHebrewPageAreOfTheEditionsThatWindowsHas) {
  EXPECT_EQ(u'\u02BD', Decoded(28597, 0xA1));
  EXPECT_EQ(u'\u02BC', Decoded(28597, 0xA2));
  for (const unsigned byte : {0xA4u, 0xA5u, 0xAAu}) EXPECT_FALSE(Decoded(28597, byte)) << byte;
  EXPECT_EQ(u'\u203E', Decoded(28598, 0xAF));
  for (const unsigned byte : {0xFDu, 0xFEu}) EXPECT_FALSE(Decoded(28598, byte)) << byte;
}

TEST(CodePages, ThePartsOfTheStandardAreThoseThatWindowsHas) {
  for (unsigned page = 28580; page < 28620; ++page) {
    const bool known = (page >= 28591 && page <= 28599) || page == 28603 || page == 28605;
    EXPECT_EQ(known, Decoded(page, 0xE6).has_value()) << page;
  }
}

TEST(CodePages, WhatAPageDoesNotHoldIsNothing) {
  EXPECT_FALSE(Decoded(28597, 0xFF));
  EXPECT_FALSE(Decoded(28598, 0xC0));
  EXPECT_FALSE(Decoded(28590, 0xE4));
  EXPECT_FALSE(Decoded(4711, 0xE4));
}

}  // namespace
}  // namespace platform
