#include "core/cancellation.h"

#include <gtest/gtest.h>

#include "support/test_platform.h"

namespace corvel {
namespace {

using test::TestPlatform;

TEST(CancelQuestion, ItIsAYesNoBoxWithPromptCaptionAndQuestionIcon) {
  TestPlatform system;
  Cancellation cancellation;
  cancellation.texts = {u"unused", u"Stop now?", u"Stop"};
  cancellation.Ask();
  const TestPlatform::Box expected{u"Stop", u"Stop now?", platform::Buttons::kYesNo,
                                   platform::Icon::kQuestion};
  EXPECT_EQ(std::vector{expected}, system.boxes);
}

TEST(CancelQuestion, OnlyYesMeansStop) {
  TestPlatform system;
  system.answers = {platform::Answer::kYes, platform::Answer::kNo, platform::Answer::kCancel};
  EXPECT_TRUE(Cancellation().Ask());
  EXPECT_FALSE(Cancellation().Ask());
  EXPECT_FALSE(Cancellation().Ask());
}

TEST(CancelQuestion, TheSharedTextsStartInEnglish) {
  EXPECT_EQ(u"", Cancellation::OfProcess().texts.question);
  EXPECT_EQ(u"Are you sure you want to cancel?", Cancellation::OfProcess().texts.prompt);
  EXPECT_EQ(u"Cancel", Cancellation::OfProcess().texts.caption);
}

TEST(CancelQuestion, AYesIsRememberedUntilItIsForgotten) {
  TestPlatform system;
  system.answers = {platform::Answer::kNo, platform::Answer::kYes, platform::Answer::kNo};
  Cancellation cancellation;
  cancellation.Ask();
  EXPECT_FALSE(cancellation.WasConfirmed());
  cancellation.Ask();
  cancellation.Ask();
  EXPECT_TRUE(cancellation.WasConfirmed());
  cancellation.ForgetAnswer();
  EXPECT_FALSE(cancellation.WasConfirmed());
}

TEST(CancelQuestion, WhatIsToEndIsNotAskedAbout) {
  TestPlatform system;
  system.answers = {platform::Answer::kNo, platform::Answer::kNo};
  Cancellation cancellation;
  EXPECT_FALSE(cancellation.AskUnlessEnding());
  cancellation.mode = CancelMode::kHoldBackBoxes;
  EXPECT_FALSE(cancellation.AskUnlessEnding());
  cancellation.mode = CancelMode::kEndUnasked;
  EXPECT_TRUE(cancellation.AskUnlessEnding());
  EXPECT_FALSE(cancellation.WasConfirmed()) << "nobody has said Yes";
  EXPECT_EQ(2u, system.boxes.size());
}

TEST(CancelQuestion, ThereIsOneForTheProcess) {
  EXPECT_EQ(&Cancellation::OfProcess(), &Cancellation::OfProcess());
}

}  // namespace
}  // namespace corvel
