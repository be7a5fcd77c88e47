// What the options window does with what users, keyboards and the viewer do to it.
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "plugin/config_file.h"
#include "plugin/win32/shown_window.h"
#include "support/temporary_folder.h"
#include "support/test_platform.h"

namespace corvel::plugin {

namespace {

const OptionsTexts kTexts{u"Title",    u"Group", u"Generate", u"Skip",
                          u"Remember", u"Units", u"Enums",    u"Ok"};

// The marks in the order of Fields, with the second radio button behind.
std::string MarksOf(const ShownWindow& shown) {
  std::string marks;
  for (const Child child : {kGenerate, kRemember, kUnits, kEnums, kSkip}) {
    marks.push_back(shown.IsMarked(child) ? '1' : '0');
  }
  return marks;
}

class OptionsWindowTest : public testing::Test {
 protected:
  void TearDown() override {
    EXPECT_TRUE(WindowsOnScreen().empty());
    EXPECT_FALSE(TakeQuit().has_value()) << "a quit message would end the viewer";
  }

  // generate, remember, units, enumerations
  std::string Fields() const {
    std::string text;
    for (const bool field : {options->options.generateGuid, options->options.remember,
                             options->options.ignoreUnits, options->options.ignoreEnumErrors}) {
      text.push_back(field ? '1' : '0');
    }
    return text;
  }
  void Set(bool generate, bool remember, bool units, bool enums) const {
    options->options.generateGuid = generate;
    options->options.remember = remember;
    options->options.ignoreUnits = units;
    options->options.ignoreEnumErrors = enums;
  }

  // Both the fields and the marks are these.
  void ExpectAlike(const std::string& wanted, const ShownWindow& shown) const {
    shown.Run([&] { EXPECT_EQ(wanted, Fields()); });
    EXPECT_EQ(wanted + (wanted[0] == '1' ? "0" : "1"), MarksOf(shown));
  }

  test::TestPlatform platform;
  std::unique_ptr<OptionsWindow> options = std::make_unique<OptionsWindow>(kTexts);
};

// Moves a window as a user does, and has its content drawn again as most systems do.
void MoveTo(const ShownWindow& shown, int x, int y) {
  shown.Run([&] {
    ::SetWindowPos(shown.Handle(), nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    ::InvalidateRect(shown.Handle(), nullptr, TRUE);
  });
}

// A hundred rounds that lose one object each would be far above what the system makes and frees for
// itself meanwhile.
constexpr unsigned kGdiObjectsOfTheSystem = 20;

unsigned CountOfGdiObjects() {
  const DWORD count = ::GetGuiResources(::GetCurrentProcess(), GR_GDIOBJECTS);
  if (count != 0) return count;
  // Wine does not count. There the lower half of a handle is enough to ask for its object.
  unsigned found = 0;
  for (UINT_PTR handle = 1; handle <= 0xFFFF; ++handle) {
    if (::GetObjectType(reinterpret_cast<HGDIOBJ>(handle)) != 0) ++found;
  }
  return found;
}

}  // namespace

TEST_F(OptionsWindowTest, NewOneHasTheDefaults) {
  EXPECT_EQ("1000", Fields());
  EXPECT_EQ(0, options->position.x);
  EXPECT_EQ(0, options->position.y);
  EXPECT_TRUE(WindowsOnScreen().empty());
  EXPECT_TRUE(platform.boxes.empty());
}

TEST_F(OptionsWindowTest, MarksShowTheFields) {
  for (const bool generate : {false, true}) {
    for (const bool remember : {false, true}) {
      Set(generate, remember, !remember, generate);
      const std::string fields = Fields();
      ShowAndDo(*options, false, [&](const ShownWindow& shown) {
        EXPECT_EQ(fields + (generate ? "0" : "1"), MarksOf(shown));
      });
    }
  }
}

TEST_F(OptionsWindowTest, MousePressOnEachControlSetsItsField) {
  struct Case {
    Child child;
    const char* before;
    const char* after;
  };
  for (const Case& each :
       {Case{kGenerate, "0000", "1000"}, Case{kGenerate, "1000", "1000"},
        Case{kSkip, "1000", "0000"}, Case{kSkip, "0000", "0000"}, Case{kRemember, "1000", "1100"},
        Case{kRemember, "1111", "1011"}, Case{kUnits, "1000", "1010"}, Case{kUnits, "1111", "1101"},
        Case{kEnums, "1000", "1001"}, Case{kEnums, "1111", "1110"}, Case{kGroup, "1010", "1010"},
        Case{kButton, "0101", "0101"}}) {
    SCOPED_TRACE(testing::Message() << each.child << " from " << each.before);
    Set(each.before[0] == '1', each.before[1] == '1', each.before[2] == '1', each.before[3] == '1');
    const bool result = ShowAndDo(*options, false, [&](const ShownWindow& shown) {
      shown.Click(each.child);
      if (each.child == kButton) return;
      EXPECT_EQ(std::string(each.after) + (each.after[0] == '1' ? "0" : "1"), MarksOf(shown));
    });
    EXPECT_EQ(each.after, Fields());
    EXPECT_EQ(each.after[0] == '1', result);
  }
}

TEST_F(OptionsWindowTest, FieldChangesWithTheMarkWhenTheMouseIsLetGo) {
  ShowAndDo(*options, false, [&](const ShownWindow& shown) {
    shown.Post(shown[kUnits], WM_LBUTTONUP, 0, MAKELPARAM(6, 6));
    ExpectAlike("1000", shown);
    shown.Post(shown[kUnits], WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(6, 6));
    ExpectAlike("1000", shown);
    shown.Post(shown[kUnits], WM_LBUTTONUP, 0, MAKELPARAM(6, 6));
    ExpectAlike("1010", shown);
  });
  EXPECT_EQ("1010", Fields());
}

TEST_F(OptionsWindowTest, DoubleClickChangesAMarkTwiceAndItsFieldToo) {
  ShowAndDo(*options, false, [&](const ShownWindow& shown) {
    for (const Child child : {kUnits, kEnums, kRemember}) {
      shown.Click(child);
      shown.Post(shown[child], WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(6, 6));
      shown.Post(shown[child], WM_LBUTTONUP, 0, MAKELPARAM(6, 6));
      ExpectAlike("1000", shown);
    }
    shown.Post(shown[kSkip], WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(6, 6));
    shown.Post(shown[kSkip], WM_LBUTTONUP, 0, MAKELPARAM(6, 6));
    ExpectAlike("0000", shown);
  });
  EXPECT_EQ("0000", Fields());
}

TEST_F(OptionsWindowTest, PressThatIsDraggedOffChangesNeitherMarkNorField) {
  ShowAndDo(*options, false, [&](const ShownWindow& shown) {
    for (const Child child : {kSkip, kUnits, kEnums, kRemember}) {
      shown.Post(shown[child], WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(6, 6));
      shown.Post(shown[child], WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(6, 90));
      shown.Post(shown[child], WM_LBUTTONUP, 0, MAKELPARAM(6, 90));
      ExpectAlike("1000", shown);
    }
  });
  EXPECT_EQ("1000", Fields());
}

TEST_F(OptionsWindowTest, KeyboardMovesTheMarkAndTheField) {
  ShowAndDo(*options, false, [&](const ShownWindow& shown) {
    for (const Child child : {kRemember, kUnits, kEnums, kSkip}) shown.Type(child, VK_SPACE);
    ExpectAlike("0111", shown);
    for (const WPARAM arrow : {VK_DOWN, VK_UP, VK_LEFT, VK_RIGHT}) {
      shown.Type(kGenerate, arrow);
      shown.Type(kSkip, arrow);
    }
    ExpectAlike("0111", shown);
    shown.Type(kUnits, VK_SPACE);
    ExpectAlike("0101", shown);
  });
  EXPECT_EQ("0101", Fields());
}

TEST_F(OptionsWindowTest, ClickMessageOfAnotherProgramMovesTheMarkAndTheField) {
  ShowAndDo(*options, false, [&](const ShownWindow& shown) {
    for (const Child child : {kSkip, kUnits, kEnums, kRemember}) {
      shown.Run([&] { ::SendMessageW(shown[child], BM_CLICK, 0, 0); });
    }
    ExpectAlike("0111", shown);
  });
  EXPECT_EQ("0111", Fields());
}

// Nobody is told of a mark that another program has set.
TEST_F(OptionsWindowTest, MarksAreTakenWhenTheWindowCloses) {
  const bool result = ShowAndDo(*options, false, [&](const ShownWindow& shown) {
    shown.Run([&] {
      ::SendMessageW(shown[kGenerate], BM_SETCHECK, BST_UNCHECKED, 0);
      ::SendMessageW(shown[kSkip], BM_SETCHECK, BST_CHECKED, 0);
      ::SendMessageW(shown[kEnums], BM_SETCHECK, BST_CHECKED, 0);
    });
    shown.Click(kButton);
  });
  EXPECT_FALSE(result);
  EXPECT_EQ("0001", Fields());
}

TEST_F(OptionsWindowTest, MarksAreTakenWhenTheViewerEnds) {
  ShowAndDo(*options, false, [&](const ShownWindow& shown) {
    shown.Run([&] {
      ::SendMessageW(shown[kUnits], BM_SETCHECK, BST_CHECKED, 0);
      ::PostQuitMessage(7);
    });
    for (int i = 0; i < 1000 && shown.IsOpen(); ++i) ::Sleep(5);
  });
  EXPECT_EQ(7, TakeQuit());
  EXPECT_EQ("1010", Fields());
}

TEST_F(OptionsWindowTest, ShortFormKeepsTheChoicesThatItDoesNotShow) {
  Set(true, false, true, true);
  ShowAndDo(*options, true, [&](const ShownWindow& shown) { shown.Click(kSkip); });
  EXPECT_EQ("0011", Fields());
}

TEST_F(OptionsWindowTest, MousePressOnAnothersWindowChangesNothing) {
  ShowAndDo(*options, false, [&](const ShownWindow& shown) {
    shown.Post(shown.Handle(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(400, 150));
    shown.Run([&] { ::PostThreadMessageW(::GetCurrentThreadId(), WM_LBUTTONDOWN, MK_LBUTTON, 0); });
    shown.Post(shown[kUnits], WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(6, 6));
    shown.Run([&] { EXPECT_EQ("1000", Fields()); });
    EXPECT_TRUE(shown.IsOpen());
  });
}

TEST_F(OptionsWindowTest, PressOnTheButtonClosesBeforeTheRelease) {
  ShowAndDo(*options, false, [](const ShownWindow& shown) {
    shown.Post(shown[kButton], WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(6, 6));
    for (int i = 0; i < 1000 && shown.IsOpen(); ++i) ::Sleep(5);
    EXPECT_FALSE(shown.IsOpen());
  });
}

TEST_F(OptionsWindowTest, CloseCommandAltF4AndCloseMessageEndTheLoop) {
  struct Case {
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
  };
  for (const Case& each : {Case{WM_CLOSE, 0, 0}, Case{WM_SYSCOMMAND, SC_CLOSE, 0},
                           Case{WM_SYSKEYDOWN, VK_F4, 0x203E0001}}) {
    SCOPED_TRACE(each.message);
    Set(false, true, true, true);
    const bool result = ShowAndDo(*options, false, [&](const ShownWindow& shown) {
      shown.Post(shown.Handle(), each.message, each.wParam, each.lParam);
      for (int i = 0; i < 1000 && shown.IsOpen(); ++i) ::Sleep(5);
      EXPECT_FALSE(shown.IsOpen());
    });
    EXPECT_FALSE(result);
    EXPECT_EQ("0111", Fields());
  }
}

TEST_F(OptionsWindowTest, CloseMessageSentByAnotherThreadEndsTheLoop) {
  ShowAndDo(*options, false, [](const ShownWindow& shown) {
    ::SendMessageW(shown.Handle(), WM_CLOSE, 0, 0);
    EXPECT_FALSE(shown.IsOpen());
  });
}

TEST_F(OptionsWindowTest, NextSaveWritesWhereTheWindowWasMoved) {
  const test::TemporaryFolder folder;
  ShowAndDo(*options, false, [&](const ShownWindow& shown) {
    MoveTo(shown, 123, 45);
    EXPECT_TRUE(shown.Await([&] { return options->position.x == 123; }));
    shown.Click(kButton);
  });
  EXPECT_EQ(123, options->position.x);
  EXPECT_EQ(45, options->position.y);
  WriteConfig(folder.Path("config.txt"), {options->options, options->position});
  EXPECT_EQ("true\r\nfalse\r\nfalse\r\nfalse\r\n123\r\n45\r\nfalse\r\n", folder.Read("config.txt"));
  ShowAndDo(*options, true, [](const ShownWindow& shown) {
    RECT place{};
    ::GetWindowRect(shown.Handle(), &place);
    EXPECT_EQ(123, place.left);
    EXPECT_EQ(45, place.top);
  });
}

// No message says that this window was moved: nothing is drawn anew.
TEST_F(OptionsWindowTest, PlaceIsTakenWhenTheWindowCloses) {
  ShowAndDo(*options, false, [&](const ShownWindow& shown) {
    shown.Run([&] {
      ::SetWindowPos(shown.Handle(), nullptr, 61, 62, 0, 0,
                     SWP_NOSIZE | SWP_NOZORDER | SWP_NOREDRAW);
      ::DestroyWindow(shown.Handle());
    });
  });
  EXPECT_EQ(61, options->position.x);
  EXPECT_EQ(62, options->position.y);
}

TEST_F(OptionsWindowTest, MinimisedWindowKeepsItsPlace) {
  options->position = {30, 40};
  ShowAndDo(*options, false, [&](const ShownWindow& shown) {
    shown.Post(shown.Handle(), WM_SYSCOMMAND, SC_MINIMIZE);
    EXPECT_TRUE(shown.Await([&] { return ::IsIconic(shown.Handle()) != 0; }));
    shown.Post(shown.Handle(), WM_PAINT);
    shown.Run([&] {
      EXPECT_EQ(30, options->position.x);
      EXPECT_EQ(40, options->position.y);
    });
  });
  EXPECT_EQ(30, options->position.x) << "nor when it closes";
  EXPECT_EQ(40, options->position.y);
}

TEST_F(OptionsWindowTest, ShowOfAnOpenWindowRaisesIt) {
  Set(false, false, false, false);
  ShowAndDo(*options, false, [&](const ShownWindow& shown) {
    shown.Run([&] { ::ShowWindow(shown.Handle(), SW_MINIMIZE); });
    shown.Run([&] {
      EXPECT_TRUE(::IsIconic(shown.Handle()));
      EXPECT_FALSE(options->Show(true));
      EXPECT_FALSE(::IsIconic(shown.Handle()));
      EXPECT_EQ(1U, WindowsOnScreen().size()) << "no second window";
    });
    shown.Run([&] {
      options->Hide();
      EXPECT_FALSE(::IsWindowVisible(shown.Handle()));
      EXPECT_FALSE(options->Show(false));
      EXPECT_TRUE(::IsWindowVisible(shown.Handle()));
      EXPECT_TRUE(::GetWindowLongW(shown.Handle(), GWL_EXSTYLE) & WS_EX_TOPMOST);
    });
    EXPECT_TRUE(::IsWindowVisible(shown[kUnits])) << "the form stays as it was";
  });
}

TEST_F(OptionsWindowTest, HiddenWindowStaysOpen) {
  ShowAndDo(*options, false, [&](const ShownWindow& shown) {
    shown.Run([&] { options->Hide(); });
    EXPECT_FALSE(::IsWindowVisible(shown.Handle()));
    EXPECT_TRUE(shown.IsOpen());
  });
}

TEST_F(OptionsWindowTest, ApplyStateMovesTheMarksOfAnOpenWindow) {
  options->ApplyState();
  ShowAndDo(*options, false, [&](const ShownWindow& shown) {
    EXPECT_EQ("10000", MarksOf(shown));
    shown.Run([&] { Set(false, true, true, true); });
    EXPECT_EQ("10000", MarksOf(shown));
    shown.Run([&] { options->ApplyState(); });
    EXPECT_EQ("01111", MarksOf(shown));
  });
  options->ApplyState();
  options->Hide();
}

TEST_F(OptionsWindowTest, QuitMessageOfTheViewerOutlivesTheWindow) {
  ShowAndDo(*options, false, [](const ShownWindow& shown) {
    shown.Run([] { ::PostQuitMessage(7); });
    for (int i = 0; i < 1000 && shown.IsOpen(); ++i) ::Sleep(5);
    EXPECT_FALSE(shown.IsOpen()) << "nothing would close it";
  });
  EXPECT_EQ(7, TakeQuit());
  EXPECT_FALSE(TakeQuit().has_value());
}

// The queue keeps one quit message only, so that the second one would hide the first.
TEST_F(OptionsWindowTest, QuitMessageOfTheViewerIsNotLostInThatOfTheWindow) {
  ShowAndDo(*options, false, [](const ShownWindow& shown) {
    shown.Run([&] {
      ::PostQuitMessage(7);
      ::DestroyWindow(shown.Handle());
    });
  });
  EXPECT_EQ(7, TakeQuit());
  ShowAndDo(*options, false, [](const ShownWindow& shown) {
    shown.Run([&] {
      ::DestroyWindow(shown.Handle());
      ::PostQuitMessage(8);
    });
  });
  EXPECT_EQ(8, TakeQuit());
  ShowAndDo(*options, false, [](const ShownWindow& shown) {
    shown.Run([&] {
      ::PostThreadMessageW(::GetCurrentThreadId(), WM_QUIT, 9, 0);
      ::DestroyWindow(shown.Handle());
    });
  });
  EXPECT_EQ(9, TakeQuit());
}

TEST_F(OptionsWindowTest, LoopWithinThatUsesUpTheQuitMessageLeavesNoneWaiting) {
  ShowAndDo(*options, false, [](const ShownWindow& shown) {
    shown.Run([&] {
      ::DestroyWindow(shown.Handle());
      EXPECT_EQ(0, TakeQuit());
    });
  });
}

TEST_F(OptionsWindowTest, WindowOpenedWhileAnotherIsClosingStays) {
  ShowAndDo(*options, false, [&](const ShownWindow& shown) {
    bool secondWasOpen = false;
    shown.Run([&] {
      ::DestroyWindow(shown.Handle());
      secondWasOpen = ShowAndDo(*options, true, [](const ShownWindow& second) {
        ::Sleep(50);
        EXPECT_TRUE(second.IsOpen());
        second.Click(kSkip);
      });
    });
    EXPECT_FALSE(secondWasOpen) << "the choice of the second window";
  });
  EXPECT_EQ("0000", Fields());
}

TEST_F(OptionsWindowTest, WindowsOfTheViewerGetTheirMessagesMeanwhile) {
  int served = 0;
  ShowAndDo(*options, false, [&](const ShownWindow& shown) {
    for (int i = 0; i < 10; ++i) shown.Run([&] { ++served; });
  });
  EXPECT_EQ(10, served);
}

TEST_F(OptionsWindowTest, ShowComesBackWhenTheObjectIsDestroyedMeanwhile) {
  Set(false, true, true, true);
  const bool result = ShowAndDo(*options, false, [&](const ShownWindow& shown) {
    shown.Run([&] { options.reset(); });
    EXPECT_FALSE(shown.IsOpen());
  });
  EXPECT_FALSE(result) << "the last choice";
}

TEST_F(OptionsWindowTest, ClassThatCannotBeRegisteredIsTold) {
  OptionsWindow second(kTexts);
  ASSERT_EQ(1U, platform.boxes.size());
  EXPECT_EQ((test::TestPlatform::Box{u"Error!", u"Option Window Registration Failed!",
                                     platform::Buttons::kOk, platform::Icon::kWarning}),
            platform.boxes[0]);
  second.options.generateGuid = false;
  EXPECT_FALSE(second.Show(false));
  ASSERT_EQ(2U, platform.boxes.size());
  EXPECT_EQ(u"Options Window Creation Failed!", platform.boxes[1].text);
}

TEST_F(OptionsWindowTest, OneThatHasNoClassLeavesThatOfAnotherAlone) {
  { const OptionsWindow second(kTexts); }
  ShowAndDo(*options, false);
  EXPECT_EQ(1U, platform.boxes.size());
}

TEST_F(OptionsWindowTest, ExceptionDuringRegistrationIsTold) {
  class NoDesktop : public test::TestPlatform {
   public:
    ::platform::Answer ShowMessageBox(std::u16string_view title, std::u16string_view text,
                                      ::platform::Buttons buttons, ::platform::Icon icon) override {
      TestPlatform::ShowMessageBox(title, text, buttons, icon);
      if (boxes.size() == 1) throw std::runtime_error("no desktop");
      return ::platform::Answer::kOk;
    }
  };
  NoDesktop noDesktop;
  const OptionsWindow second(kTexts);
  ASSERT_EQ(2U, noDesktop.boxes.size());
  EXPECT_EQ((test::TestPlatform::Box{
                u"Error!", u"Option Window Registration Failed!\nError message: no desktop",
                ::platform::Buttons::kOk, ::platform::Icon::kWarning}),
            noDesktop.boxes[1]);
}

TEST_F(OptionsWindowTest, WindowThatCannotBeMadeIsToldAndTheChoiceGiven) {
  CreationLog log;
  log.refuses = [](const CreationLog::Entry&) { return true; };
  for (const bool choice : {false, true}) {
    platform.boxes.clear();
    options->options.generateGuid = choice;
    EXPECT_EQ(choice, options->Show(false));
    EXPECT_EQ((std::vector{test::TestPlatform::Box{u"Error!", u"Options Window Creation Failed!",
                                                   ::platform::Buttons::kOk,
                                                   ::platform::Icon::kWarning}}),
              platform.boxes);
  }
  log.refuses = {};
  ShowAndDo(*options, false);
}

// Messages to the thread itself are for no window, like a control that is not there.
TEST_F(OptionsWindowTest, ControlThatCannotBeMadeIsNotPressed) {
  CreationLog log;
  log.refuses = [](const CreationLog::Entry& asked) { return asked.text == L"Skip"; };
  ShowAndDo(*options, false, [&](const ShownWindow& shown) {
    EXPECT_EQ(6U, shown.Children().size());
    shown.Run([&] { ::PostThreadMessageW(::GetCurrentThreadId(), WM_LBUTTONDOWN, MK_LBUTTON, 0); });
    shown.Run([&] { EXPECT_EQ("1000", Fields()); });
  });
}

TEST_F(OptionsWindowTest, ChoicesWithoutAControlStay) {
  Set(false, true, true, true);
  CreationLog log;
  log.refuses = [](const CreationLog::Entry& asked) {
    return asked.className == L"Button" && asked.text != L"Enums";
  };
  ShowAndDo(*options, false, [&](const ShownWindow& shown) {
    ASSERT_EQ(1U, shown.Children().size());
    shown.Run([&] { ::SendMessageW(shown.Children()[0], BM_CLICK, 0, 0); });
    shown.Run([&] { EXPECT_EQ("0110", Fields()); });
  });
  EXPECT_EQ("0110", Fields());
}

TEST_F(OptionsWindowTest, HundredOpeningsLeaveNothingBehind) {
  // The first ones fill the caches of the system.
  for (int i = 0; i < 3; ++i) ShowAndDo(*options, i == 0);
  const unsigned before = CountOfGdiObjects();
  ASSERT_GT(before, 0U) << "neither way of counting works here";
  for (int i = 0; i < 100; ++i) ShowAndDo(*options, i % 2 == 0);
  EXPECT_LT(CountOfGdiObjects(), before + kGdiObjectsOfTheSystem);
}

TEST_F(OptionsWindowTest, HundredLivesLeaveNothingBehind) {
  ShowAndDo(*options, false);
  options.reset();
  const unsigned before = CountOfGdiObjects();
  for (int i = 0; i < 100; ++i) {
    options = std::make_unique<OptionsWindow>(kTexts);
    ShowAndDo(*options, false);
    options.reset();
  }
  EXPECT_LT(CountOfGdiObjects(), before + kGdiObjectsOfTheSystem);
  EXPECT_TRUE(platform.boxes.empty()) << "each can register its class";
  WNDCLASSEXW record{};
  record.cbSize = sizeof record;
  EXPECT_FALSE(::GetClassInfoExW(::GetModuleHandleW(nullptr), L"OptionsWindowClass", &record));
}

}  // namespace corvel::plugin
