// What the options window looks like.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "platform/win32/wide.h"
#include "plugin/win32/options_form.h"
#include "plugin/win32/shown_window.h"
#include "support/temporary_folder.h"
#include "support/test_platform.h"

namespace corvel::plugin {

namespace {

class OptionsFormTest : public testing::Test {
 protected:
  test::TestPlatform platform;
  OptionsTexts texts{u"Title",    u"Group", u"Generate", u"Skip",
                     u"Remember", u"Units", u"Enums",    u"Ok"};
  OptionsWindow options{texts};
};

struct Wanted {
  const wchar_t* text;
  DWORD style;
  LONG x;
  LONG y;
  LONG width;
  LONG height;
};

void ExpectAsked(const std::vector<Wanted>& wanted,
                 const std::vector<CreationLog::Entry>& entries) {
  ASSERT_EQ(wanted.size() + 1, entries.size());
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    SCOPED_TRACE(i);
    const CreationLog::Entry& asked = entries[i + 1];
    EXPECT_EQ(L"Button", asked.className);
    EXPECT_EQ(wanted[i].text, asked.text);
    EXPECT_EQ(wanted[i].style, asked.style);
    EXPECT_TRUE(asked.hasParent);
    EXPECT_EQ(wanted[i].x, asked.place.left);
    EXPECT_EQ(wanted[i].y, asked.place.top);
    EXPECT_EQ(wanted[i].width, asked.place.right);
    EXPECT_EQ(wanted[i].height, asked.place.bottom);
  }
}

std::wstring TextOf(HWND window) {
  std::wstring text(100, L'\0');
  text.resize(static_cast<std::size_t>(::GetWindowTextW(window, text.data(), 100)));
  return text;
}

SIZE SizeOf(HWND window) {
  RECT place{};
  ::GetWindowRect(window, &place);
  return {place.right - place.left, place.bottom - place.top};
}

std::set<LRESULT> FontsOf(const ShownWindow& shown) {
  std::set<LRESULT> fonts;
  shown.Run([&] {
    for (const HWND child : shown.Children()) {
      fonts.insert(::SendMessageW(child, WM_GETFONT, 0, 0));
    }
  });
  return fonts;
}

// Left, top, width and height in the client area of the parent.
std::vector<LONG> PlaceOf(HWND child) {
  RECT place{};
  ::GetWindowRect(child, &place);
  POINT corner{place.left, place.top};
  ::ScreenToClient(::GetParent(child), &corner);
  return {corner.x, corner.y, place.right - place.left, place.bottom - place.top};
}

// What Windows sends when the window comes to a screen of other dots.
void SendDots(const ShownWindow& shown, int dpi) {
  constexpr UINT kDpiChanged = 0x02E0;
  shown.Run([&] {
    RECT place{13, 17, 500, 500};
    const auto dots = static_cast<WORD>(dpi);
    ::SendMessageW(shown.Handle(), kDpiChanged, MAKEWPARAM(dots, dots),
                   reinterpret_cast<LPARAM>(&place));
  });
}

}  // namespace

TEST_F(OptionsFormTest, FullFormIsMadeOfThese) {
  CreationLog log;
  ShowAndDo(options, false);
  ExpectAsked({{L"Group", 0x50000007, 20, 20, 520, 90},
               {L"Generate", 0x50020009, 40, 50, 480, 20},
               {L"Skip", 0x50000009, 40, 80, 480, 20},
               {L"Units", 0x50000003, 20, 220, 480, 20},
               {L"Enums", 0x50000003, 20, 250, 480, 20},
               {L"Remember", 0x50000003, 20, 300, 480, 20},
               {L"Ok", 0x50000300, 480, 340, 80, 30}},
              log.entries);
}

TEST_F(OptionsFormTest, ShortFormIsMadeOfThese) {
  CreationLog log;
  ShowAndDo(options, true);
  ExpectAsked({{L"Group", 0x50000007, 20, 20, 520, 90},
               {L"Generate", 0x50020009, 40, 50, 480, 20},
               {L"Skip", 0x50000009, 40, 80, 480, 20},
               {L"Units", 0x50000003, 20, 220, 480, 20},
               {L"Enums", 0x50000003, 20, 250, 480, 20},
               {L"Remember", 0x50000003, 20, 240, 480, 20},
               {L"Ok", 0x50000300, 480, 280, 80, 30}},
              log.entries);
}

TEST_F(OptionsFormTest, ControlsStandWhereTheyWereMade) {
  ShowAndDo(options, false, [](const ShownWindow& shown) {
    ASSERT_EQ(7U, shown.Children().size());
    EXPECT_EQ((std::vector<LONG>{20, 20, 520, 90}), PlaceOf(shown[kGroup]));
    EXPECT_EQ((std::vector<LONG>{40, 50, 480, 20}), PlaceOf(shown[kGenerate]));
    EXPECT_EQ((std::vector<LONG>{40, 80, 480, 20}), PlaceOf(shown[kSkip]));
    EXPECT_EQ((std::vector<LONG>{20, 220, 480, 20}), PlaceOf(shown[kUnits]));
    EXPECT_EQ((std::vector<LONG>{20, 250, 480, 20}), PlaceOf(shown[kEnums]));
    EXPECT_EQ((std::vector<LONG>{20, 300, 480, 20}), PlaceOf(shown[kRemember]));
    EXPECT_EQ((std::vector<LONG>{480, 340, 80, 30}), PlaceOf(shown[kButton]));
    EXPECT_EQ(L"Remember", TextOf(shown[kRemember]));
    for (const HWND child : shown.Children()) EXPECT_TRUE(::IsWindowVisible(child));
  });
}

TEST_F(OptionsFormTest, ShortFormHidesUnitsAndEnumerations) {
  ShowAndDo(options, true, [](const ShownWindow& shown) {
    ASSERT_EQ(7U, shown.Children().size());
    for (const Child hidden : {kUnits, kEnums}) EXPECT_FALSE(::IsWindowVisible(shown[hidden]));
    for (const Child seen : {kGroup, kGenerate, kSkip, kRemember, kButton}) {
      EXPECT_TRUE(::IsWindowVisible(shown[seen])) << seen;
    }
    EXPECT_EQ((std::vector<LONG>{20, 240, 480, 20}), PlaceOf(shown[kRemember]));
    EXPECT_EQ((std::vector<LONG>{480, 280, 80, 30}), PlaceOf(shown[kButton]));
  });
}

TEST_F(OptionsFormTest, WindowIsMadeInTheMiddleOfTheDesktop) {
  for (const bool shortForm : {false, true}) {
    SCOPED_TRACE(shortForm);
    CreationLog log;
    ShowAndDo(options, shortForm);
    ASSERT_FALSE(log.entries.empty());
    const CreationLog::Entry& asked = log.entries.front();
    const LONG height = shortForm ? 360 : 420;
    RECT desktop{};
    ASSERT_TRUE(::GetWindowRect(::GetDesktopWindow(), &desktop));
    EXPECT_EQ(L"OptionsWindowClass", asked.className);
    EXPECT_EQ(L"Title", asked.text);
    EXPECT_EQ(desktop.right / 2 - 300, asked.place.left);
    EXPECT_EQ(desktop.bottom / 2 - height / 2, asked.place.top);
    EXPECT_EQ(600, asked.place.right);
    EXPECT_EQ(height, asked.place.bottom);
    EXPECT_FALSE(asked.hasParent);
    EXPECT_EQ(DWORD{0xCA0000}, asked.style & ~DWORD{WS_CLIPSIBLINGS});
    EXPECT_EQ(DWORD{WS_EX_CLIENTEDGE}, asked.extendedStyle & ~DWORD{WS_EX_WINDOWEDGE});
  }
}

TEST_F(OptionsFormTest, WindowIsOnTopWhereItWasLeft) {
  options.position = {37, 41};
  for (const bool shortForm : {false, true}) {
    ShowAndDo(options, shortForm, [&](const ShownWindow& shown) {
      RECT place{};
      ASSERT_TRUE(::GetWindowRect(shown.Handle(), &place));
      EXPECT_EQ(37, place.left);
      EXPECT_EQ(41, place.top);
      EXPECT_EQ(600, SizeOf(shown.Handle()).cx);
      EXPECT_EQ(shortForm ? 360 : 420, SizeOf(shown.Handle()).cy);
      const auto style = static_cast<DWORD>(::GetWindowLongW(shown.Handle(), GWL_STYLE));
      const auto extended = static_cast<DWORD>(::GetWindowLongW(shown.Handle(), GWL_EXSTYLE));
      EXPECT_EQ(DWORD{0xCA0000}, style & 0xFF0000 & ~DWORD{WS_CLIPSIBLINGS});
      EXPECT_TRUE(extended & WS_EX_TOPMOST);
      EXPECT_TRUE(extended & WS_EX_CLIENTEDGE);
      EXPECT_EQ(nullptr, ::GetWindow(shown.Handle(), GW_OWNER));
    });
  }
}

TEST_F(OptionsFormTest, ClassIsThatOfASimpleWindow) {
  ShowAndDo(options, false, [](const ShownWindow& shown) {
    WNDCLASSEXW record{};
    record.cbSize = sizeof record;
    ASSERT_TRUE(::GetClassInfoExW(::GetModuleHandleW(nullptr), L"OptionsWindowClass", &record));
    EXPECT_EQ(0U, record.style);
    EXPECT_EQ(reinterpret_cast<HBRUSH>(INT_PTR{6}), record.hbrBackground);
    EXPECT_EQ(::LoadIconW(nullptr, IDI_APPLICATION), record.hIcon);
    EXPECT_EQ(::LoadIconW(nullptr, IDI_APPLICATION), record.hIconSm);
    EXPECT_EQ(::LoadCursorW(nullptr, IDC_ARROW), record.hCursor);
    EXPECT_EQ(nullptr, record.lpszMenuName);
    EXPECT_EQ(nullptr, ::GetMenu(shown.Handle()));
  });
}

TEST_F(OptionsFormTest, EveryControlHasTheSameTahomaOfHeight15) {
  ShowAndDo(options, false, [](const ShownWindow& shown) {
    const auto fonts = FontsOf(shown);
    ASSERT_EQ(1U, fonts.size());
    LOGFONTW font{};
    ASSERT_NE(0, ::GetObjectW(reinterpret_cast<HFONT>(*fonts.begin()), sizeof font, &font));
    EXPECT_EQ(std::wstring(L"Tahoma"), font.lfFaceName);
    EXPECT_EQ(15, font.lfHeight);
  });
}

TEST_F(OptionsFormTest, StaticControlsAreWhite) {
  ShowAndDo(options, false, [](const ShownWindow& shown) {
    shown.Run([&] {
      const HDC screen = ::GetDC(nullptr);
      ::SetBkColor(screen, RGB(1, 2, 3));
      const auto ask = [&] {
        return ::SendMessageW(shown.Handle(), WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(screen),
                              reinterpret_cast<LPARAM>(shown[kUnits]));
      };
      const LRESULT brush = ask();
      EXPECT_EQ(brush, ask()) << "made once";
      EXPECT_EQ(COLORREF{0xFFFFFF}, ::GetBkColor(screen));
      LOGBRUSH look{};
      ASSERT_NE(0, ::GetObjectW(reinterpret_cast<HBRUSH>(brush), sizeof look, &look));
      EXPECT_EQ(UINT{BS_SOLID}, look.lbStyle);
      EXPECT_EQ(COLORREF{0xFFFFFF}, look.lbColor);
      ::ReleaseDC(nullptr, screen);
    });
  });
}

// The pictures stand in the working folder of the viewer, which is put aside for the test.
TEST_F(OptionsFormTest, IconComesFromTheWorkingFolder) {
  const test::TemporaryFolder viewer;
  const std::filesystem::path before = std::filesystem::current_path();
  const auto data = viewer.Native("plugins") / "corvel_data";
  std::filesystem::create_directories(data);
  std::filesystem::copy_file(CORVEL_DATA_DIR "/options.ico", data / "options.ico");
  std::filesystem::current_path(viewer.Native(""));
  HICON large = nullptr;
  HICON little = nullptr;
  ShowAndDo(options, false, [&](const ShownWindow& shown) {
    shown.Run([&] {
      large = reinterpret_cast<HICON>(::SendMessageW(shown.Handle(), WM_GETICON, ICON_BIG, 0));
      little = reinterpret_cast<HICON>(::SendMessageW(shown.Handle(), WM_GETICON, ICON_SMALL, 0));
    });
    ICONINFO info{};
    ASSERT_TRUE(::GetIconInfo(large, &info));
    BITMAP bitmap{};
    EXPECT_NE(0, ::GetObjectW(info.hbmColor, sizeof bitmap, &bitmap));
    EXPECT_EQ(::GetSystemMetrics(SM_CXICON), bitmap.bmWidth);
    ::DeleteObject(info.hbmColor);
    ::DeleteObject(info.hbmMask);
    ASSERT_TRUE(::GetIconInfo(little, &info));
    EXPECT_NE(0, ::GetObjectW(info.hbmColor, sizeof bitmap, &bitmap));
    EXPECT_EQ(::GetSystemMetrics(SM_CXSMICON), bitmap.bmWidth);
    ::DeleteObject(info.hbmColor);
    ::DeleteObject(info.hbmMask);
  });
  std::filesystem::current_path(before);
  ICONINFO info{};
  EXPECT_FALSE(::GetIconInfo(large, &info)) << "freed with the window";
  EXPECT_FALSE(::GetIconInfo(little, &info)) << "freed with the window";
}

TEST_F(OptionsFormTest, WindowWithoutIconFileOpensAllTheSame) {
  const test::TemporaryFolder viewer;
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(viewer.Native(""));
  LRESULT icon = 1;
  ShowAndDo(options, false, [&](const ShownWindow& shown) {
    shown.Run([&] { icon = ::SendMessageW(shown.Handle(), WM_GETICON, ICON_BIG, 0); });
  });
  std::filesystem::current_path(before);
  EXPECT_EQ(0, icon);
  EXPECT_TRUE(platform.boxes.empty());
}

TEST_F(OptionsFormTest, WindowGrowsWithTheDotsAndKeepsItsNewPlace) {
  for (const bool shortForm : {false, true}) {
    for (const int dpi : {144, 192}) {
      ShowAndDo(options, shortForm, [&](const ShownWindow& shown) {
        SendDots(shown, dpi);
        RECT place{};
        ::GetWindowRect(shown.Handle(), &place);
        EXPECT_EQ(13, place.left);
        EXPECT_EQ(17, place.top);
        // No window is larger than the screen of this test.
        const int height = (shortForm ? 360 : 420) * dpi / 96;
        EXPECT_EQ(std::min(600 * dpi / 96, ::GetSystemMetrics(SM_CXMAXTRACK)),
                  SizeOf(shown.Handle()).cx);
        EXPECT_EQ(std::min(height, ::GetSystemMetrics(SM_CYMAXTRACK)), SizeOf(shown.Handle()).cy);
      });
    }
  }
}

TEST_F(OptionsFormTest, ControlsAndFontAreTwiceAsLargeWithTwiceTheDots) {
  for (const bool shortForm : {false, true}) {
    ShowAndDo(options, shortForm, [&](const ShownWindow& shown) {
      SendDots(shown, 192);
      EXPECT_EQ((std::vector<LONG>{40, 40, 1040, 180}), PlaceOf(shown[kGroup]));
      EXPECT_EQ((std::vector<LONG>{80, 100, 960, 40}), PlaceOf(shown[kGenerate]));
      EXPECT_EQ((std::vector<LONG>{80, 160, 960, 40}), PlaceOf(shown[kSkip]));
      EXPECT_EQ((std::vector<LONG>{40, 440, 960, 40}), PlaceOf(shown[kUnits]));
      EXPECT_EQ((std::vector<LONG>{40, 500, 960, 40}), PlaceOf(shown[kEnums]));
      EXPECT_EQ((std::vector<LONG>{40, shortForm ? 480 : 600, 960, 40}), PlaceOf(shown[kRemember]));
      EXPECT_EQ((std::vector<LONG>{960, shortForm ? 560 : 680, 160, 60}), PlaceOf(shown[kButton]));
      EXPECT_EQ(!shortForm, ::IsWindowVisible(shown[kUnits]) != 0);
      const auto fonts = FontsOf(shown);
      ASSERT_EQ(1U, fonts.size());
      LOGFONTW font{};
      ASSERT_NE(0, ::GetObjectW(reinterpret_cast<HFONT>(*fonts.begin()), sizeof font, &font));
      EXPECT_EQ(30, font.lfHeight);
      SendDots(shown, 96);
      EXPECT_EQ((std::vector<LONG>{480, shortForm ? 280 : 340, 80, 30}), PlaceOf(shown[kButton]));
    });
  }
}

TEST_F(OptionsFormTest, FormIsNeverSmallerThanWith96Dots) {
  EXPECT_EQ(96, DpiOf(nullptr)) << "of this test's screen";
  for (const int dpi : {96, 120, 144, 168, 192, 288}) {
    for (const bool shortForm : {false, true}) {
      EXPECT_EQ(600 * dpi / 96, SizeOfForm(shortForm, dpi).width) << dpi;
      EXPECT_EQ((shortForm ? 360 : 420) * dpi / 96, SizeOfForm(shortForm, dpi).height) << dpi;
    }
  }
  OptionsForm form;
  form.Scale(72);
  EXPECT_EQ(600, form.Size().width);
}

// Room for the mark in front of a text: what the system draws is 13 pixels and a gap.
TEST_F(OptionsFormTest, TextsOfEveryLanguageHaveRoom) {
  constexpr LONG kMark = 20;
  constexpr LONG kRow = 480;
  const HFONT font =
      ::CreateFontW(15, 0, 0, 0, FW_DONTCARE, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                    OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, 0, L"Tahoma");
  const HDC device = ::CreateCompatibleDC(nullptr);
  const HGDIOBJ before = ::SelectObject(device, font);
  const auto widthOf = [&](const WideString& text) {
    SIZE size{};
    EXPECT_TRUE(::GetTextExtentPoint32W(device, platform::ToNative(text).c_str(),
                                        static_cast<int>(text.size()), &size));
    EXPECT_GT(size.cx, 0);
    EXPECT_LE(size.cy, 20) << "a row is 20 high";
    return size.cx;
  };
  for (const char* const language : {"en", "pl", "de", "fr", "es"}) {
    SCOPED_TRACE(language);
    const OptionsTexts shown = TextsOf(language);
    EXPECT_LT(widthOf(shown[kGroupTitle]), 520 - kMark);
    EXPECT_LT(widthOf(shown[kWindowTitle]), 400);
    EXPECT_LT(widthOf(shown[kButtonText]), 80 - 10);
    for (const OptionsText row :
         {kGenerateText, kSkipText, kRememberText, kIgnoreUnitsText, kIgnoreEnumsText}) {
      EXPECT_LT(widthOf(shown[row]), kRow - kMark) << row;
    }
  }
  ::SelectObject(device, before);
  ::DeleteDC(device);
  ::DeleteObject(font);
}

}  // namespace corvel::plugin
