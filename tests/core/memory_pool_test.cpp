#include "core/memory_pool.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <new>
#include <random>
#include <stdexcept>
#include <string>

namespace corvel {
namespace {

TEST(MemoryPool, TheFirstBlockIsThereFromTheStart) { EXPECT_EQ(1u, MemoryPool(64).BlockCount()); }

TEST(MemoryPool, ARequestOfExactlyTheRemainingSizeTakesANewBlock) {
  MemoryPool pool(64);
  pool.AllocNarrow(64 - 1);
  EXPECT_EQ(2u, pool.BlockCount());
}

TEST(MemoryPool, ARequestOneBelowTheRemainingSizeStaysInTheBlock) {
  MemoryPool pool(64);
  char* const text = pool.AllocNarrow(64 - 2);
  EXPECT_EQ(1u, pool.BlockCount());
  std::memset(text, 'x', 63);
  // One byte is left: no block gets quite full.
  pool.AllocNarrow(0);
  EXPECT_EQ(2u, pool.BlockCount());
}

TEST(MemoryPool, WideTextsFollowTheSameRuleInBytes) {
  MemoryPool exact(64);
  exact.AllocWide(31);
  EXPECT_EQ(2u, exact.BlockCount());
  MemoryPool below(64);
  below.AllocWide(30);
  EXPECT_EQ(1u, below.BlockCount());
}

TEST(MemoryPool, TextsStandOneBehindTheOther) {
  MemoryPool pool(64);
  char* const first = pool.AllocNarrow(3);
  EXPECT_EQ(first + 4, pool.AllocNarrow(1));
  EXPECT_EQ(first + 6, reinterpret_cast<char*>(pool.AllocWide(2)));
  EXPECT_EQ(first + 12, pool.AllocNarrow(0));
}

TEST(MemoryPool, TheRestOfAReplacedBlockIsGivenUp) {
  MemoryPool pool(64);
  pool.AllocNarrow(9);
  char* const second = pool.AllocNarrow(62);
  char* const third = pool.AllocNarrow(9);  // the first block has room for it
  EXPECT_EQ(3u, pool.BlockCount());
  EXPECT_NE(second + 63, third);
}

TEST(MemoryPool, WideTextsAreAlignedWhateverStandsBeforeThem) {
  for (std::uint64_t before = 1; before < 64; ++before) {
    for (std::uint64_t length = 0; length < 40; ++length) {
      MemoryPool pool(64);
      pool.AllocNarrow(before - 1);
      char16_t* const text = pool.AllocWide(length);
      ASSERT_EQ(0u, reinterpret_cast<std::uintptr_t>(text) % alignof(char16_t))
          << before << " bytes before " << length << " units";
      for (std::uint64_t i = 0; i <= length; ++i)
        text[i] = u'x';  // a sanitizer looks at the bounds
    }
  }
}

TEST(MemoryPool, ARequestBeyondTheBlockSizeGetsABlockThatFits) {
  MemoryPool pool(16);
  char* const narrow = pool.AllocNarrow(1000);
  std::memset(narrow, 'x', 1001);
  char16_t* const wide = pool.AllocWide(1000);
  for (int i = 0; i <= 1000; ++i) wide[i] = u'x';
  EXPECT_EQ(3u, pool.BlockCount());
  // What follows has blocks of the usual size again.
  pool.AllocNarrow(14);
  EXPECT_EQ(4u, pool.BlockCount());
  pool.AllocNarrow(1);
  EXPECT_EQ(5u, pool.BlockCount());
}

// What no system has. The address sanitizer ends the program where others throw.
constexpr std::uint64_t kTooMuch = std::uint64_t{1} << 63;
#ifdef __SANITIZE_ADDRESS__
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

const std::string kNoMemory =
    std::string("MemoryBlock error. Unable to allocate memmory: ") + std::bad_alloc().what();

TEST(MemoryPool, NoMemoryIsToldWithTheAllocatorsTextAndThePoolServesOn) {
  if (kSanitized) GTEST_SKIP();
  MemoryPool pool(64);
  char* const before = pool.AllocNarrow(3);
  for (const bool wide : {false, true}) {
    try {
      wide ? static_cast<void>(pool.AllocWide(kTooMuch / 2))
           : static_cast<void>(pool.AllocNarrow(kTooMuch));
      FAIL() << "there is no such memory";
    } catch (const std::runtime_error& error) {
      EXPECT_EQ(kNoMemory, error.what());
    }
  }
  EXPECT_EQ(1u, pool.BlockCount());
  EXPECT_EQ(before + 4, pool.AllocNarrow(3));
}

TEST(MemoryPool, AFirstBlockThatCannotBeHadIsToldAsWell) {
  if (kSanitized) GTEST_SKIP();
  try {
    MemoryPool pool(kTooMuch);
    FAIL() << "there is no such memory";
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(kNoMemory, error.what());
  }
}

TEST(MemoryPool, EqualTextsAreStoredOnce) {
  MemoryPool pool(64);
  const char16_t* const wide = pool.InternWide(u"Basic wall");
  const char* const narrow = pool.InternNarrow("Basic wall");
  EXPECT_EQ(wide, pool.InternWide(WideString(u"Basic ") + u"wall"));
  EXPECT_EQ(narrow, pool.InternNarrow(std::string("Basic ") + "wall"));
  EXPECT_EQ(u"Basic wall", WideView(wide));
  EXPECT_STREQ("Basic wall", narrow);
}

TEST(MemoryPool, TheSameTextAsNarrowAndAsWideIsTwoEntries) {
  MemoryPool pool(64);
  const char* const narrow = pool.InternNarrow("a");
  const char16_t* const wide = pool.InternWide(u"a");
  EXPECT_NE(static_cast<const void*>(narrow), static_cast<const void*>(wide));
  // Even where the bytes agree.
  const std::string_view bytes("a\0", 2);
  EXPECT_NE(static_cast<const void*>(pool.InternNarrow(bytes)), static_cast<const void*>(wide));
}

TEST(MemoryPool, AnInternedEmptyTextIsNotTheAbsentText) {
  MemoryPool pool(64);
  EXPECT_NE(pool.EmptyWide(), pool.InternWide(u""));
  EXPECT_NE(pool.EmptyNarrow(), pool.InternNarrow(""));
  EXPECT_EQ(pool.InternWide(u""), pool.InternWide(u""));
  EXPECT_EQ(pool.InternNarrow(""), pool.InternNarrow(""));
  EXPECT_EQ(u'\0', *pool.EmptyWide());
  EXPECT_EQ('\0', *pool.EmptyNarrow());
  EXPECT_EQ(u'\0', *pool.InternWide(u""));
  EXPECT_EQ('\0', *pool.InternNarrow(""));
}

TEST(MemoryPool, TextsThatDifferBehindAZeroAreDifferent) {
  MemoryPool pool(64);
  const std::string_view first("a\0b", 3);
  const std::string_view second("a\0c", 3);
  EXPECT_NE(pool.InternNarrow(first), pool.InternNarrow(second));
  EXPECT_NE(pool.InternNarrow(first), pool.InternNarrow("a"));
}

TEST(MemoryPool, ManyTextsKeepTheirPointersWhileTheTableGrows) {
  MemoryPool pool(1 << 12);
  std::mt19937 random(5);
  std::map<std::string, const char*> narrow;
  std::map<WideString, const char16_t*> wide;
  for (int i = 0; i < 40000; ++i) {
    std::string text(random() % 20, ' ');
    for (char& c : text) c = static_cast<char>('a' + random() % 3);
    const WideString wideText = Widen(text);
    const auto [atNarrow, newNarrow] = narrow.try_emplace(text, pool.InternNarrow(text));
    const auto [atWide, newWide] = wide.try_emplace(wideText, pool.InternWide(wideText));
    ASSERT_EQ(atNarrow->second, pool.InternNarrow(text));
    ASSERT_EQ(atWide->second, pool.InternWide(wideText));
  }
  for (const auto& [text, stored] : narrow) ASSERT_EQ(text, stored);
  for (const auto& [text, stored] : wide) ASSERT_EQ(text, stored);
}

TEST(MemoryPool, ObjectsAndArraysAreAlignedAndCountedApartFromTexts) {
  struct Point {
    double x = 1, y = 2;
  };
  MemoryPool pool(64);
  pool.NewArray<char>(3);
  const Point* const point = pool.New<Point>();
  EXPECT_EQ(0u, reinterpret_cast<std::uintptr_t>(point) % alignof(Point));
  EXPECT_EQ(2, point->y);
  EXPECT_EQ(1u, pool.BlockCount());
  EXPECT_GE(pool.ObjectBytes(), sizeof(Point) + 3);
}

}  // namespace
}  // namespace corvel
