#ifdef _WIN32

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <thread>

#include "platform/platform.h"
#include "support/box_answerer.h"
#include "support/temporary_folder.h"

namespace platform {
namespace {

using corvel::test::BoxAnswerer;
using corvel::test::TemporaryFolder;
using Ids = std::vector<int>;

Answer Show(Buttons buttons, Icon icon = Icon::kNone) {
  return System().ShowMessageBox(u"Corvel test", u"Stop now?", buttons, icon);
}

Answer Clicked(int button, Buttons buttons) {
  BoxAnswerer person(L"Corvel test", button);
  const Answer answer = Show(buttons);
  person.Join();
  EXPECT_TRUE(person.sawABox);
  return answer;
}

// --- Boxes in windows ----------------------------------------------------------------------------

TEST(WindowsBox, TheAnswerIsTheButtonThatWasClicked) {
  EXPECT_EQ(Answer::kYes, Clicked(IDYES, Buttons::kYesNo));
  EXPECT_EQ(Answer::kNo, Clicked(IDNO, Buttons::kYesNo));
  EXPECT_EQ(Answer::kOk, Clicked(IDOK, Buttons::kOk));
  EXPECT_EQ(Answer::kOk, Clicked(IDOK, Buttons::kOkCancel));
  EXPECT_EQ(Answer::kCancel, Clicked(IDCANCEL, Buttons::kOkCancel));
}

TEST(WindowsBox, TitleAndTextAreShownAsTheyAre) {
  BoxAnswerer person(L"B\u0142\u0105d \u2013 \U0001F3E0", IDOK);
  System().ShowMessageBox(u"B\u0142\u0105d \u2013 \U0001F3E0", u"Zeile \u00E4\nund && %s \u0436.",
                          Buttons::kOk, Icon::kError);
  person.Join();
  ASSERT_TRUE(person.sawABox);
  EXPECT_EQ(L"Zeile \u00E4\nund && %s \u0436.", person.text);
}

TEST(WindowsBox, EachKindHasItsButtons) {
  const std::pair<Buttons, Ids> kinds[] = {{Buttons::kOk, {IDOK}},
                                           {Buttons::kOkCancel, {IDOK, IDCANCEL}},
                                           {Buttons::kYesNo, {IDYES, IDNO}}};
  for (const auto& [buttons, ids] : kinds) {
    BoxAnswerer person(L"Corvel test", ids.front());
    Show(buttons);
    person.Join();
    EXPECT_EQ(ids, person.buttons);
  }
}

TEST(WindowsBox, EachIconIsTheSystems) {
  const std::pair<Icon, const wchar_t*> icons[] = {{Icon::kError, IDI_ERROR},
                                                   {Icon::kQuestion, IDI_QUESTION},
                                                   {Icon::kWarning, IDI_WARNING},
                                                   {Icon::kInformation, IDI_INFORMATION}};
  for (const auto& [icon, name] : icons) {
    BoxAnswerer person(L"Corvel test", IDOK);
    Show(Buttons::kOk, icon);
    person.Join();
    EXPECT_NE(nullptr, person.icon);
    EXPECT_EQ(::LoadIconW(nullptr, name), person.icon) << static_cast<int>(icon);
  }
}

TEST(WindowsBox, WithoutAnIconNoneIsShown) {
  BoxAnswerer person(L"Corvel test", IDOK);
  Show(Buttons::kOk);
  person.Join();
  ASSERT_TRUE(person.sawABox);
  EXPECT_EQ(nullptr, person.icon);
}

// --- Boxes on the terminal -----------------------------------------------------------------------

// While it lives, boxes go to the terminal and questions are answered like that.
class OnTheTerminal {
 public:
  explicit OnTheTerminal(std::optional<Answer> policy) {
    SetDialogs(Dialogs::kTerminal);
    SetAnswerPolicy(policy);
  }
  ~OnTheTerminal() {
    SetAnswerPolicy({});
    SetDialogs(Dialogs::kWindows);
  }
  OnTheTerminal(const OnTheTerminal&) = delete;
  OnTheTerminal& operator=(const OnTheTerminal&) = delete;
};

TEST(WindowsBox, OnTheTerminalItIsALineOfUtf8AndNoWindow) {
  const OnTheTerminal terminal(Answer::kNo);
  BoxAnswerer person(L"B\u0142\u0105d", IDYES);
  testing::internal::CaptureStderr();
  const Answer answer =
      System().ShowMessageBox(u"B\u0142\u0105d", u"Stop now?", Buttons::kYesNo, Icon::kQuestion);
  EXPECT_EQ(
      "B\xC5\x82\xC4\x85"
      "d: Stop now?\n",
      testing::internal::GetCapturedStderr());
  person.Join();
  EXPECT_FALSE(person.sawABox);
  EXPECT_EQ(Answer::kNo, answer);
}

TEST(WindowsBox, OnlyAClickIsAPersonsAnswer) {
  Clicked(IDNO, Buttons::kYesNo);
  EXPECT_TRUE(System().LastAnswerWasAPersons());
  {
    const OnTheTerminal terminal(Answer::kYes);
    testing::internal::CaptureStderr();
    EXPECT_EQ(Answer::kYes, Show(Buttons::kYesNo));
    testing::internal::GetCapturedStderr();
  }
  EXPECT_FALSE(System().LastAnswerWasAPersons());
  Clicked(IDOK, Buttons::kOk);
  EXPECT_FALSE(System().LastAnswerWasAPersons()) << "nothing was asked";
}

// --- Programs ------------------------------------------------------------------------------------

bool Eventually(const std::function<bool()>& condition) {
  for (int i = 0; i < 500 && !condition(); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return condition();
}

std::u16string CommandInterpreter() {
  wchar_t folder[MAX_PATH] = {};
  ::GetSystemDirectoryW(folder, MAX_PATH);
  return std::filesystem::path(std::wstring(folder) + L"\\cmd.exe").u16string();
}

TEST(WindowsShellOpen, AProgramIsStartedWithItsParameter) {
  TemporaryFolder folder;
  const std::u16string made = folder.Path("made by it.txt");
  EXPECT_TRUE(System().ShellOpen(CommandInterpreter(), u"/c mkdir \"" + made + u"\""));
  EXPECT_TRUE(Eventually([&] { return folder.Has("made by it.txt"); }));
}

// The show command of a program that writes it down, started with this parameter.
std::string ShowCommandWith(const std::u16string& parameter) {
  TemporaryFolder folder;
  const std::filesystem::path told = folder.Native("told.txt");
  ::SetEnvironmentVariableW(L"CORVEL_SHOW_COMMAND_FILE", told.c_str());
  const auto program =
      std::filesystem::path(System().ExecutablePath()).replace_filename("corvel_show_command.exe");
  EXPECT_TRUE(System().ShellOpen(program.u16string(), parameter));
  const auto isComplete = [&] {
    return folder.Has("told.txt") && folder.Read("told.txt").ends_with('.');
  };
  EXPECT_TRUE(Eventually(isComplete));
  return isComplete() ? folder.Read("told.txt") : "";
}

TEST(WindowsShellOpen, ADocumentIsShownAndAProgramWithAParameterIsRestored) {
  EXPECT_EQ("5.", ShowCommandWith(u""));
  EXPECT_EQ("9.", ShowCommandWith(u"\"C:\\models\\a.ifc\""));
}

TEST(WindowsShellOpen, WhatIsNotThereIsRefused) {
  TemporaryFolder folder;
  EXPECT_FALSE(System().ShellOpen(folder.Path("none.exe"), u"\"x\""));
  EXPECT_FALSE(System().ShellOpen(folder.Path("none.txt"), u""));
}

// --- Code pages ----------------------------------------------------------------------------------

TEST(WindowsCodePages, ZeroIsTheSystemsOwn) {
  for (unsigned byte = 128; byte < 256; ++byte) {
    const auto of = [byte](unsigned page) {
      return System().DecodeByte(page, static_cast<std::uint8_t>(byte));
    };
    EXPECT_EQ(of(::GetACP()), of(0)) << byte;
  }
}

TEST(WindowsCodePages, AByteThatOnlyBeginsACharacterIsNothing) {
  EXPECT_FALSE(System().DecodeByte(932, 0x82));
  EXPECT_FALSE(System().DecodeByte(CP_UTF8, 0xC3));
  EXPECT_EQ(u'\uFF71', System().DecodeByte(932, 0xB1)) << "one of the single bytes of that page";
}

}  // namespace
}  // namespace platform

#endif
