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
  const ModelText text = pool.InternText(u"Basic wall");
  const ModelText wide = pool.InternText(u"\u5EFA");
  const char* const guid = pool.InternNarrow("Basic wall");
  EXPECT_EQ(text.Address(), pool.InternText(WideString(u"Basic ") + u"wall").Address());
  EXPECT_EQ(text.Address(), pool.InternText("Basic wall").Address());
  EXPECT_EQ(wide.Address(), pool.InternText(WideString(1, u'\u5EFA')).Address());
  EXPECT_EQ(guid, pool.InternNarrow(std::string("Basic ") + "wall"));
  EXPECT_EQ(u"Basic wall", text.ToWide());
  EXPECT_EQ(u"\u5EFA", wide.ToWide());
  EXPECT_STREQ("Basic wall", guid);
}

TEST(MemoryPool, TheSameTextAsGuidAndAsTextIsTwoEntries) {
  MemoryPool pool(64);
  const void* const guid = pool.InternNarrow("a");
  EXPECT_NE(guid, pool.InternText(u"a").Address());
  EXPECT_NE(guid, pool.InternText("a").Address());
}

TEST(MemoryPool, ATextTakesOneByteAUnitUnlessAUnitNeedsTwo) {
  MemoryPool pool(64);
  const WideString latin = {u'a', u'\u00E9', u'\u00FF', 1};
  const ModelText plain = pool.InternText(latin);
  EXPECT_TRUE(plain.IsPlain());
  EXPECT_EQ("a\xE9\xFF\x01", plain.Plain());
  EXPECT_EQ(plain.Address(), pool.InternText("a\xE9\xFF\x01").Address());
  const ModelText wide = pool.InternText(u"a\u0100");
  EXPECT_FALSE(wide.IsPlain());
  EXPECT_EQ(u"a\u0100", wide.Units());
  EXPECT_FALSE(pool.InternText(WideString(1, kRawByteBase + 0xE9)).IsPlain());
}

TEST(MemoryPool, PlainTextsAreToldByTheirAddressWhateverStandsBeforeThem) {
  for (std::uint64_t before = 1; before < 64; ++before) {
    for (std::size_t length = 0; length < 70; ++length) {
      MemoryPool pool(64);
      pool.AllocNarrow(before - 1);
      const std::string text(length, 'x');
      const ModelText plain = pool.InternText(text);  // a sanitizer looks at the bounds
      const ModelText wide = pool.InternText(WideString(length, u'\u0100') + u'\u0101');
      ASSERT_TRUE(plain.IsPlain()) << before << " bytes before " << length;
      ASSERT_EQ(text, plain.Plain());
      ASSERT_FALSE(wide.IsPlain()) << before << " bytes before " << length;
      ASSERT_EQ(length + 1, wide.Units().size());
      ASSERT_EQ(plain.Address(), pool.InternText(text).Address());
    }
  }
}

TEST(MemoryPool, ALongTextThatNeedsNoUnitsIsPlainToo) {
  MemoryPool pool(64);
  const WideString text(1'000'000, u'\u00E9');
  const ModelText plain = pool.InternText(text);
  EXPECT_TRUE(plain.IsPlain());
  EXPECT_EQ(text, plain.ToWide());
  EXPECT_EQ(plain.Address(), pool.InternText(text).Address());
}

TEST(MemoryPool, AnInternedEmptyTextIsNotTheAbsentText) {
  MemoryPool pool(64);
  EXPECT_NE(pool.EmptyWide().Address(), pool.InternText(u"").Address());
  EXPECT_NE(pool.EmptyNarrow(), pool.InternNarrow(""));
  EXPECT_EQ(pool.InternText(u"").Address(), pool.InternText(u"").Address());
  EXPECT_EQ(pool.InternNarrow(""), pool.InternNarrow(""));
  EXPECT_EQ(u"", pool.EmptyWide().ToWide());
  EXPECT_STREQ("", pool.EmptyNarrow());
  EXPECT_EQ(u"", pool.InternText(u"").ToWide());
  EXPECT_STREQ("", pool.InternNarrow(""));
}

TEST(MemoryPool, AZeroEndsATextAndWhatStandsBehindItMakesADifference) {
  MemoryPool pool(64);
  const std::string_view first("a\0b", 3);
  const std::string_view second("a\0c", 3);
  const char* const stored = pool.InternNarrow(first);
  EXPECT_STREQ("a", stored);
  EXPECT_NE(stored, pool.InternNarrow(second));
  EXPECT_NE(stored, pool.InternNarrow("a"));
  pool.InternText("a");
  pool.InternText("b");
  EXPECT_EQ(u"a", pool.InternText(first).ToWide());
  EXPECT_NE(pool.InternText(first).Address(), pool.InternText("a").Address());
}

TEST(MemoryPool, ManyTextsKeepTheirPointersWhileTheIndexGrows) {
  MemoryPool pool(1 << 12);
  std::mt19937 random(5);
  std::map<std::string, const char*> guids;
  std::map<WideString, const void*> texts;
  for (int i = 0; i < 40000; ++i) {
    std::string guid(random() % 20, ' ');
    for (char& c : guid) c = static_cast<char>('a' + random() % 3);
    WideString text = Widen(guid);
    for (char16_t& unit : text) {
      if (random() % 50 == 0) unit = static_cast<char16_t>(0xFE + random() % 4);
    }
    const auto [atGuid, newGuid] = guids.try_emplace(guid, pool.InternNarrow(guid));
    const auto [atText, newText] = texts.try_emplace(text, pool.InternText(text).Address());
    ASSERT_EQ(atGuid->second, pool.InternNarrow(guid));
    const ModelText stored = pool.InternText(text);
    ASSERT_EQ(atText->second, stored.Address());
    ASSERT_EQ(text, stored.ToWide());
  }
  for (const auto& [guid, stored] : guids) ASSERT_EQ(guid, stored);
  EXPECT_LT(pool.BlockCount(), 512u);
}

TEST(MemoryPool, BehindTheLastPlaceOnlyWhatIsKnownIsFoundAgain) {
  MemoryPool pool(16);
  std::map<int, const void*> stored;
  for (int i = 0; i < 600; ++i) {
    stored[i] = pool.InternText("text " + std::to_string(1000 + i)).Address();  // a block each
  }
  for (int i = 0; i < 600; ++i) {
    const std::string text = "text " + std::to_string(1000 + i);
    const ModelText again = pool.InternText(text);
    ASSERT_EQ(i < 512, again.Address() == stored[i]) << i;
    ASSERT_EQ(text, again.Plain());
  }
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
