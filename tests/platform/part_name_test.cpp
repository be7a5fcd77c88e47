#include "platform/part_name.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/utf8.h"

namespace platform {
namespace {

std::size_t Units(std::u16string_view name) { return name.size(); }
std::size_t Bytes(std::u16string_view name) { return ToUtf8(name).size(); }

const std::u16string kStem = u".out.ifc.corvel-";

TEST(PartName, HasADotInFrontAndNoEndingOfAModel) {
  EXPECT_EQ(kStem, PartStem(u"out.ifc", 255, Units));
  const std::u16string name = PartName(kStem, 4711, PartKind::kPart);
  EXPECT_TRUE(name.starts_with(u".out.ifc.corvel-4711-")) << ToUtf8(name);
  EXPECT_TRUE(name.ends_with(u".part")) << ToUtf8(name);
}

TEST(PartName, IsNotGivenTwice) {
  EXPECT_NE(PartName(kStem, 1, PartKind::kPart), PartName(kStem, 1, PartKind::kPart));
}

TEST(PartName, TellsWhoseFileItIs) {
  for (const std::uint32_t process : {0u, 1u, 4'294'967'295u}) {
    const auto part = OwnerOfPart(PartName(kStem, process, PartKind::kPart), kStem);
    ASSERT_TRUE(part.has_value());
    EXPECT_EQ(process, part->process);
    EXPECT_EQ(PartKind::kPart, part->kind);
    const auto backup = OwnerOfPart(PartName(kStem, process, PartKind::kBackup), kStem);
    ASSERT_TRUE(backup.has_value());
    EXPECT_EQ(PartKind::kBackup, backup->kind);
  }
}

TEST(PartName, OfAnotherMakerOrTargetIsNotOurs) {
  for (const char16_t* const name :
       {u"out.ifc", u".out.ifc", u".out.ifc.corvel-", u".out.ifc.corvel-1",
        u".out.ifc.corvel--0123456789abcdef.part", u".out.ifc.corvel-1-0123456789abcdef",
        u".out.ifc.corvel-1-0123456789abcdef.parts", u".out.ifc.corvel-1-0123456789ABCDEF.part",
        u".out.ifc.corvel-1-0123456789abcde.part", u".out.ifc.corvel-1-0123456789abcdef0.part",
        u".out.ifc.corvel-4294967296-0123456789abcdef.part",
        u".out.ifc.corvel-1x0123456789abcdef.part", u".in.ifc.corvel-1-0123456789abcdef.part",
        u"out.ifc.corvel-1-0123456789abcdef.complete"}) {
    EXPECT_FALSE(OwnerOfPart(name, kStem).has_value()) << ToUtf8(name);
  }
}

TEST(PartName, OfACompleteFileIsVisibleAndNotTakenAway) {
  const std::u16string kept = KeptName(u".out.ifc.corvel-1-0123456789abcdef.part");
  EXPECT_EQ(u"out.ifc.corvel-1-0123456789abcdef.complete", kept);
  EXPECT_FALSE(OwnerOfPart(kept, kStem).has_value());
}

TEST(PartName, NeverGrowsBeyondWhatTheFileSystemTakes) {
  for (const char16_t* const unit : {u"n", u"\u00FC", u"\u5EFA", u"\U0001F3E0"}) {
    std::u16string name;
    while (Bytes(name) < 250) name += unit;
    const std::u16string stem = PartStem(name, 255, Bytes);
    const std::u16string part = PartName(stem, 4'294'967'295u, PartKind::kPart);
    EXPECT_LE(Bytes(part), 255u);
    EXPECT_LE(Bytes(KeptName(part)), 255u);
    EXPECT_GT(Bytes(part), 235u) << "no more is cut than has to be";
    EXPECT_TRUE(OwnerOfPart(FromUtf8(ToUtf8(part)), stem).has_value()) << "cut within a character";
  }
}

TEST(PartName, OfATargetOfOneByteFits) {
  EXPECT_EQ(u".a.corvel-", PartStem(u"a", 255, Units));
  EXPECT_EQ(u"..corvel-", PartStem(u"abc", 10, Units));
}

}  // namespace
}  // namespace platform
