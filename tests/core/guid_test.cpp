#include "core/guid.h"

#include <gtest/gtest.h>

#include <set>
#include <string_view>

#include "support/test_platform.h"

namespace corvel {
namespace {

using test::TestPlatform;

constexpr std::string_view kAlphabet =
    "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_$";

std::string TextOf(const platform::Guid& guid) {
  TestPlatform system;
  system.guids = {guid};
  return CreateGUID();
}

// The 128 bits as one number in base 64, most significant digit first.
std::string DigitsOf(const platform::Guid& guid) {
  std::string bits;
  const auto append = [&bits](std::uint32_t value, int count) {
    for (int bit = count - 1; bit >= 0; --bit) bits.push_back((value >> bit) & 1 ? '1' : '0');
  };
  append(0, 4);  // 22 digits have room for 132 bits
  append(guid.data1, 32);
  append(guid.data2, 16);
  append(guid.data3, 16);
  for (const std::uint8_t byte : guid.data4) append(byte, 8);
  std::string digits;
  for (std::size_t i = 0; i < bits.size(); i += 6) {
    digits.push_back(kAlphabet[std::stoul(bits.substr(i, 6), nullptr, 2)]);
  }
  return digits;
}

TEST(CreateGUID, ItIsTheGuidInBase64) {
  const platform::Guid guid{0x01234567, 0x89AB, 0x4DEF, {0x80, 1, 0x7F, 3, 0xFF, 5, 0xAA, 7}};
  EXPECT_EQ(DigitsOf(guid), TextOf(guid));
  const platform::Guid ones{~0u, 0xFFFF, 0xFFFF, {255, 255, 255, 255, 255, 255, 255, 255}};
  EXPECT_EQ("3$$$$$$$$$$$$$$$$$$$$$", TextOf(ones));
  EXPECT_EQ("0000000000000000000001", TextOf({0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 1}}));
}

TEST(CreateGUID, EveryBitOfTheGuidHasItsPlace) {
  std::set<std::string> texts;
  for (int bit = 0; bit < 128; ++bit) {
    platform::Guid guid;
    if (bit < 32)
      guid.data1 = 1u << bit;
    else if (bit < 48)
      guid.data2 = static_cast<std::uint16_t>(1u << (bit - 32));
    else if (bit < 64)
      guid.data3 = static_cast<std::uint16_t>(1u << (bit - 48));
    else
      guid.data4[static_cast<std::size_t>(bit - 64) / 8] =
          static_cast<std::uint8_t>(1u << (bit % 8));
    EXPECT_EQ(DigitsOf(guid), TextOf(guid)) << bit;
    texts.insert(TextOf(guid));
  }
  EXPECT_EQ(128u, texts.size());
}

TEST(CreateGUID, AHundredOfTheSystemsAreDifferentAndWellFormed) {
  std::set<std::string> texts;
  for (int i = 0; i < 100; ++i) {
    const std::string text = CreateGUID();
    EXPECT_EQ(22u, text.size());
    EXPECT_NE(std::string::npos, std::string_view("0123").find(text.front()));
    EXPECT_EQ(std::string::npos, text.find_first_not_of(kAlphabet));
    texts.insert(text);
  }
  EXPECT_EQ(100u, texts.size());
}

TEST(CreateGUID, AnAllZeroGuidIsToldInABoxAndGivesNoText) {
  TestPlatform system;
  system.guids = {platform::Guid{}};
  EXPECT_EQ("", CreateGUID());
  const TestPlatform::Box expected{u"Utils", u"CreateGUID function returned NULL",
                                   platform::Buttons::kOkCancel, platform::Icon::kNone};
  EXPECT_EQ(std::vector{expected}, system.boxes);
}

TEST(DerivedGuid, IsTheSameForTheSameTwo) {
  EXPECT_EQ(DeriveGuid("2O2Fr$t4X7Zf8NOew3FLOH", 7), DeriveGuid("2O2Fr$t4X7Zf8NOew3FLOH", 7));
}

TEST(DerivedGuid, DiffersWithEachLetterAndNumber) {
  std::set<std::string> met;
  for (std::uint64_t number = 0; number < 1000; ++number) {
    for (const char* const old : {"", "a", "b", "ab", "ba", "2O2Fr$t4X7Zf8NOew3FLOH"}) {
      met.insert(DeriveGuid(old, number));
      met.insert(DeriveGuid(old, number << 32));
    }
  }
  EXPECT_EQ(6u * (2 * 1000 - 1), met.size());
}

TEST(DerivedGuid, Has22DigitsOfWhichTheFirstIsBelow4) {
  for (std::uint64_t number = 0; number < 1000; ++number) {
    const std::string guid = DeriveGuid("old", number);
    EXPECT_EQ(22u, guid.size());
    EXPECT_LT(guid.front(), '4');
    EXPECT_EQ(std::string::npos, guid.find_first_not_of(kAlphabet));
  }
}

}  // namespace
}  // namespace corvel
