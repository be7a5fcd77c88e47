#include "plugin/win32/shown_window.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <thread>

#include "host/language_file.h"

namespace corvel::plugin {

namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 10s;
// The first window of a desktop starts programs of the system.
constexpr auto kPatienceForWindow = 60s;
constexpr auto kPause = 5ms;
constexpr wchar_t kDoorClass[] = L"CorvelTestDoor";
constexpr UINT kTask = WM_APP;

struct Task {
  std::function<void()> run;
  std::promise<void> done;
};

LRESULT CALLBACK DoorProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message != kTask) return ::DefWindowProcW(window, message, wParam, lParam);
  // Shared with the one who waits, and who may have lost patience.
  const std::unique_ptr<std::shared_ptr<Task>> task(
      reinterpret_cast<std::shared_ptr<Task>*>(lParam));
  (*task)->run();
  (*task)->done.set_value();
  return 0;
}

BOOL CALLBACK CollectOfClass(HWND window, LPARAM list) {
  std::array<wchar_t, 64> name{};
  ::GetClassNameW(window, name.data(), static_cast<int>(name.size()));
  DWORD process = 0;
  ::GetWindowThreadProcessId(window, &process);
  if (process == ::GetCurrentProcessId() && std::wstring(name.data()) == L"OptionsWindowClass") {
    reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
  }
  return TRUE;
}

// The window once it is visible; null when `ended` says that none will come.
HWND AwaitWindow(const std::atomic<bool>& ended) {
  const auto deadline = std::chrono::steady_clock::now() + kPatienceForWindow;
  while (!ended && std::chrono::steady_clock::now() < deadline) {
    for (const HWND window : WindowsOnScreen()) {
      if (::IsWindowVisible(window) != 0) return window;
    }
    std::this_thread::sleep_for(kPause);
  }
  return nullptr;
}

CreationLog* activeLog = nullptr;

LPARAM Point(int x, int y) { return MAKELPARAM(x, y); }

}  // namespace

ThreadDoor::ThreadDoor() {
  const HINSTANCE module = ::GetModuleHandleW(nullptr);
  WNDCLASSW record{};
  record.lpfnWndProc = &DoorProcedure;
  record.hInstance = module;
  record.lpszClassName = kDoorClass;
  ::RegisterClassW(&record);
  window_ = ::CreateWindowExW(0, kDoorClass, L"", WS_OVERLAPPEDWINDOW, 0, 0, 100, 100, nullptr,
                              nullptr, module, nullptr);
}

ThreadDoor::~ThreadDoor() {
  ::DestroyWindow(window_);
  ::UnregisterClassW(kDoorClass, ::GetModuleHandleW(nullptr));
}

void ThreadDoor::Run(const std::function<void()>& task) const {
  const auto shared = std::make_shared<Task>();
  shared->run = task;
  auto done = shared->done.get_future();
  auto handed = std::make_unique<std::shared_ptr<Task>>(shared);
  if (::PostMessageW(window_, kTask, 0, reinterpret_cast<LPARAM>(handed.get())) == 0) {
    ADD_FAILURE() << "nothing can be posted to the door";
    return;
  }
  handed.release();
  if (done.wait_for(kPatience) != std::future_status::ready) {
    ADD_FAILURE() << "the thread of the window serves no messages";
  }
}

CreationLog::CreationLog()
    : hook_(::SetWindowsHookExW(WH_CBT, &Note, nullptr, ::GetCurrentThreadId())) {
  activeLog = this;
}

CreationLog::~CreationLog() {
  activeLog = nullptr;
  ::UnhookWindowsHookEx(hook_);
}

LRESULT CALLBACK CreationLog::Note(int code, WPARAM wParam, LPARAM lParam) {
  if (code != HCBT_CREATEWND) return ::CallNextHookEx(nullptr, code, wParam, lParam);
  const CREATESTRUCTW& asked = *reinterpret_cast<const CBT_CREATEWNDW*>(lParam)->lpcs;
  std::array<wchar_t, 64> name{};
  ::GetClassNameW(reinterpret_cast<HWND>(wParam), name.data(), static_cast<int>(name.size()));
  // Windows of the system's own, for input methods, are none of ours.
  const std::wstring className = name.data();
  if (className != L"OptionsWindowClass" && className != L"Button") return 0;
  Entry entry{className, asked.lpszName, static_cast<DWORD>(asked.style), asked.dwExStyle,
              {},        false};
  entry.place = {asked.x, asked.y, asked.cx, asked.cy};
  entry.hasParent = asked.hwndParent != nullptr;
  activeLog->entries.push_back(entry);
  return activeLog->refuses && activeLog->refuses(entry) ? 1 : 0;
}

ShownWindow::ShownWindow(HWND window, const ThreadDoor& door) : window_(window), door_(door) {
  for (HWND child = ::GetWindow(window, GW_CHILD); child != nullptr;
       child = ::GetWindow(child, GW_HWNDNEXT)) {
    children_.push_back(child);
  }
}

void ShownWindow::Post(HWND window, UINT message, WPARAM wParam, LPARAM lParam) const {
  EXPECT_NE(0, ::PostMessageW(window, message, wParam, lParam));
}

void ShownWindow::Click(Child child) const {
  Post((*this)[child], WM_LBUTTONDOWN, MK_LBUTTON, Point(6, 6));
  // The window may be gone before this one.
  ::PostMessageW((*this)[child], WM_LBUTTONUP, 0, Point(6, 6));
}

void ShownWindow::Type(Child child, WPARAM key) const {
  const LPARAM scan =
      static_cast<LPARAM>(::MapVirtualKeyW(static_cast<UINT>(key), MAPVK_VK_TO_VSC) << 16);
  constexpr LPARAM kOnce = 1;
  constexpr LPARAM kLetGo = 0xC0000001;
  Post((*this)[child], WM_KEYDOWN, key, scan | kOnce);
  Post((*this)[child], WM_KEYUP, key, scan | kLetGo);
}

bool ShownWindow::IsMarked(Child child) const {
  bool marked = false;
  Run([&] { marked = ::SendMessageW((*this)[child], BM_GETCHECK, 0, 0) == BST_CHECKED; });
  return marked;
}

bool ShownWindow::Await(const std::function<bool()>& condition) const {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  bool met = false;
  while (!met && std::chrono::steady_clock::now() < deadline) {
    Run([&] { met = condition(); });
    if (!met) std::this_thread::sleep_for(kPause);
  }
  return met;
}

bool ShowAndDo(OptionsWindow& options, bool shortForm, const Script& script) {
  const ThreadDoor door;
  std::atomic<bool> ended = false;
  bool appeared = false;
  std::thread user([&] {
    const HWND window = AwaitWindow(ended);
    appeared = window != nullptr;
    if (appeared && script) script(ShownWindow(window, door));
    // A window that comes late has to be closed as well.
    while (!ended) {
      for (const HWND left : WindowsOnScreen()) ::PostMessageW(left, WM_CLOSE, 0, 0);
      std::this_thread::sleep_for(kPause);
    }
  });
  const bool result = options.Show(shortForm);
  ended = true;
  user.join();
  EXPECT_TRUE(appeared) << "no window came onto the screen";
  return result;
}

std::vector<HWND> WindowsOnScreen() {
  std::vector<HWND> found;
  ::EnumWindows(&CollectOfClass, reinterpret_cast<LPARAM>(&found));
  return found;
}

std::optional<int> TakeQuit() {
  MSG message{};
  if (::PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE) == 0) return {};
  return static_cast<int>(message.wParam);
}

OptionsTexts TextsOf(const std::string& language) {
  host::LanguageFile file;
  EXPECT_TRUE(file.Load(Widen(CORVEL_DATA_DIR "/lang." + language)));
  OptionsTexts texts;
  std::size_t next = 0;
  for (const char* const key : {"options_window_name", "option_guid_duplication_group_name",
                                "option_guid_duplication_generate", "option_guid_duplication_skip",
                                "option_guid_duplication_remember", "option_ignore_units",
                                "option_ignore_enume_errors", "btn_ok"}) {
    const WideString* const text = file.Find(key);
    EXPECT_NE(nullptr, text) << key;
    if (text != nullptr) texts[next] = *text;
    ++next;
  }
  return texts;
}

}  // namespace corvel::plugin
