// Misfits are told by kind and class, each with the first places.
#include "step/reader/tolerance.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/temporary_folder.h"

namespace corvel {
namespace {

std::vector<std::string> TextsOf(Tolerance& tolerance, const WideString& path = u"nowhere.ifc") {
  std::vector<std::string> texts;
  for (const WideString& text : tolerance.TakeTexts(path)) texts.push_back(ToUtf8(text));
  return texts;
}

TEST(Misfits, ARecordCountsOnceAKindAndClass) {
  Tolerance tolerance;
  tolerance.Note(Misfit::kUnknownClass, "IFCNEW", "", 3);
  tolerance.Note(Misfit::kUnknownClass, "IFCNEW", "", 3);
  tolerance.Note(Misfit::kUnknownClass, "IFCNEW", "", 5);
  tolerance.Note(Misfit::kUnknownClass, "IFCNEWER", "", 3);
  EXPECT_EQ((std::vector<std::string>{
                "The release has no such class, carried as it stands: IFCNEW. Records: 2, the "
                "first: #3, #5.",
                "The release has no such class, carried as it stands: IFCNEWER. Records: 1, the "
                "first: #3."}),
            TextsOf(tolerance));
  EXPECT_TRUE(tolerance.IsClean()) << "telling forgets";
}

TEST(Misfits, ThreePlacesAreToldWithTheirLines) {
  const test::TemporaryFolder folder;
  const WideString path = folder.Write("m.ifc", "one\ntwo\nthree\nfour\n");
  Tolerance tolerance;
  for (std::uint32_t number = 1; number <= 5; ++number) {
    tolerance.Note(Misfit::kUnknownEnumValue, "IFCWALL", ".X.", number,
                   static_cast<std::int64_t>(number) * 4);
  }
  EXPECT_EQ((std::vector<std::string>{
                "Unknown enumeration value, kept as it stands: IFCWALL. Records: 5, the first: #1 "
                "in line 2 (.X.), #2 in line 3 (.X.), #3 in line 3 (.X.)."}),
            TextsOf(tolerance, path));
}

TEST(Misfits, BeyondFortyClassesOfAKindTheOthersAreCountedTogether) {
  Tolerance tolerance;
  for (std::uint32_t i = 0; i < 100; ++i) {
    tolerance.Note(Misfit::kUnknownClass, "IFC" + std::to_string(100 + i), "", i + 1);
  }
  const std::vector<std::string> texts = TextsOf(tolerance);
  ASSERT_EQ(Tolerance::kClassesKept + 1, texts.size());
  EXPECT_EQ(
      "The release has no such class, carried as it stands: other classes. Records: 60, the first: "
      "#41, #42, #43.",
      texts.back());
}

TEST(Misfits, WhatIsToldOfTheFileComesFirst) {
  Tolerance tolerance;
  EXPECT_TRUE(tolerance.IsClean());
  tolerance.Note(Misfit::kNumberlessRecord, "", "", 0, 5);
  tolerance.Tell(u"A draft.");
  EXPECT_FALSE(tolerance.IsClean());
  EXPECT_EQ((std::vector<std::string>{
                "A draft.",
                "A record without a number, which has got one. Records: 1, the first: byte 5."}),
            TextsOf(tolerance));
}

}  // namespace
}  // namespace corvel
