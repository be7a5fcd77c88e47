#include "core/reporting.h"

#include <gtest/gtest.h>

#include "support/test_platform.h"

namespace corvel {
namespace {

using test::TestPlatform;

TEST(CancelQuestion, ItIsAYesNoBoxWithPromptCaptionAndQuestionIcon) {
  TestPlatform system;
  AskCancelQuestion({u"unused", u"Stop now?", u"Stop"});
  const TestPlatform::Box expected{u"Stop", u"Stop now?", platform::Buttons::kYesNo,
                                   platform::Icon::kQuestion};
  EXPECT_EQ(std::vector{expected}, system.boxes);
}

TEST(CancelQuestion, OnlyYesMeansStop) {
  TestPlatform system;
  system.answers = {platform::Answer::kYes, platform::Answer::kNo, platform::Answer::kCancel};
  EXPECT_TRUE(AskCancelQuestion({}));
  EXPECT_FALSE(AskCancelQuestion({}));
  EXPECT_FALSE(AskCancelQuestion({}));
}

TEST(CancelQuestion, TheSharedTextsStartInEnglish) {
  EXPECT_EQ(u"", SharedCancelTexts().question);
  EXPECT_EQ(u"Are you sure you want to cancel?", SharedCancelTexts().prompt);
  EXPECT_EQ(u"Cancel", SharedCancelTexts().caption);
}

TEST(CancelMode, ItIsOneWordForTheWholeProcess) {
  CancelMode() = 2;
  EXPECT_EQ(2, CancelMode());
  CancelMode() = 0;
  EXPECT_EQ(0, CancelMode());
}

}  // namespace
}  // namespace corvel
