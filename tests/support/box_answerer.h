// Stands in for the person in front of a message box of the system. Windows only.
#pragma once

#include <windows.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace corvel::test {

// From its construction on, a thread waits for a visible box with this title, notes what it shows
// and clicks one of its buttons. Read what it saw after the box is closed and Join.
class BoxAnswerer {
 public:
  BoxAnswerer(const wchar_t* title, int button)
      : title_(title), thread_([this, button] { Answer(button); }) {}
  ~BoxAnswerer() { Join(); }
  BoxAnswerer(const BoxAnswerer&) = delete;
  BoxAnswerer& operator=(const BoxAnswerer&) = delete;

  void Join() {
    boxIsClosed_ = true;
    if (thread_.joinable()) thread_.join();
  }

  bool sawABox = false;
  std::wstring text;
  std::vector<int> buttons;  // IDOK, IDYES and so on, as they stand in the box
  HANDLE icon = nullptr;

 private:
  // Ends without an answer when the test goes on: there was no box then.
  void Answer(int button) {
    constexpr auto kBetweenLooks = std::chrono::milliseconds(5);
    HWND box = nullptr;
    while (!boxIsClosed_ && box == nullptr) {
      std::this_thread::sleep_for(kBetweenLooks);
      box = ::FindWindowW(L"#32770", title_.c_str());
      if (box != nullptr && !::IsWindowVisible(box)) box = nullptr;
    }
    if (box == nullptr) return;
    sawABox = true;
    ::EnumChildWindows(box, Note, reinterpret_cast<LPARAM>(this));
    ::PostMessageW(box, WM_COMMAND, static_cast<WPARAM>(button), 0);
  }

  static BOOL CALLBACK Note(HWND control, LPARAM self) {
    reinterpret_cast<BoxAnswerer*>(self)->Note(control);
    return TRUE;
  }

  void Note(HWND control) {
    wchar_t name[16] = {};
    ::GetClassNameW(control, name, static_cast<int>(std::size(name)));
    const std::wstring kind = name;
    const bool visible = (::GetWindowLongW(control, GWL_STYLE) & WS_VISIBLE) != 0;
    if (!visible) return;
    if (kind == L"Button") buttons.push_back(::GetDlgCtrlID(control));
    if (kind != L"Static") return;
    const bool isIcon = (::GetWindowLongW(control, GWL_STYLE) & SS_TYPEMASK) == SS_ICON;
    if (isIcon) {
      icon = reinterpret_cast<HANDLE>(::SendMessageW(control, STM_GETICON, 0, 0));
    } else {
      text = TextOf(control);
    }
  }

  static std::wstring TextOf(HWND control) {
    const auto length = static_cast<std::size_t>(::SendMessageW(control, WM_GETTEXTLENGTH, 0, 0));
    std::wstring text(length + 1, L'\0');
    ::SendMessageW(control, WM_GETTEXT, length + 1, reinterpret_cast<LPARAM>(text.data()));
    text.resize(length);
    return text;
  }

  const std::wstring title_;
  std::atomic<bool> boxIsClosed_{false};
  std::thread thread_;
};

}  // namespace corvel::test
