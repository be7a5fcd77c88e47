// The options window under the hands of a user: a second thread that acts while Show waits.
#pragma once

#include <windows.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "plugin/options_window.h"

namespace corvel::plugin {

// A window of another in the thread that shows: runs there what others hand in. As posted messages
// keep their order, all that was posted before has been served by then.
class ThreadDoor {
 public:
  ThreadDoor();
  ~ThreadDoor();
  ThreadDoor(const ThreadDoor&) = delete;
  ThreadDoor& operator=(const ThreadDoor&) = delete;

  // Runs `task` in the thread of the door and waits for its end; fails the test after ten seconds.
  void Run(const std::function<void()>& task) const;
  HWND Handle() const { return window_; }

 private:
  HWND window_;
};

// In the order in which they were made.
enum Child : std::size_t { kGroup, kGenerate, kSkip, kUnits, kEnums, kRemember, kButton };

// What was asked for each window and control of this thread while this object lives, in order.
class CreationLog {
 public:
  struct Entry {
    std::wstring className;
    std::wstring text;
    DWORD style = 0;
    DWORD extendedStyle = 0;
    RECT place{};  // left, top, width, height
    bool hasParent = false;
  };

  CreationLog();
  ~CreationLog();
  CreationLog(const CreationLog&) = delete;
  CreationLog& operator=(const CreationLog&) = delete;

  std::vector<Entry> entries;
  // Lets those for which it gives true not come into being.
  std::function<bool(const Entry&)> refuses;

 private:
  static LRESULT CALLBACK Note(int code, WPARAM wParam, LPARAM lParam);

  HHOOK hook_;
};

// What a script of the second thread gets.
class ShownWindow {
 public:
  ShownWindow(HWND window, const ThreadDoor& door);

  HWND Handle() const { return window_; }
  HWND operator[](Child child) const { return children_.at(child); }
  const std::vector<HWND>& Children() const { return children_; }

  // Runs `task` in the window's thread, behind all that was posted before.
  void Run(const std::function<void()>& task) const { door_.Run(task); }
  void Post(HWND window, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;
  // Both posted at the same point, as the mouse does it.
  void Click(Child child) const;
  // A key pressed and let go on a control.
  void Type(Child child, WPARAM key) const;
  bool IsMarked(Child child) const;
  bool IsOpen() const { return ::IsWindow(window_) != 0; }
  // Asks in the window's thread until the answer is true; false after ten seconds.
  bool Await(const std::function<bool()>& condition) const;

 private:
  HWND window_;
  const ThreadDoor& door_;
  std::vector<HWND> children_;
};

using Script = std::function<void(const ShownWindow&)>;

// Shows the window, runs `script` in a second thread once the window is on the screen, closes what
// is still open then, and gives what Show gave. Fails the test if no window came and Show went on.
bool ShowAndDo(OptionsWindow& options, bool shortForm, const Script& script = {});

// Every window of the class that this process has, shown or not.
std::vector<HWND> WindowsOnScreen();

// The exit code of a quit message that waits for this thread, which is taken.
std::optional<int> TakeQuit();

// The texts of a language file that the product ships ("en").
OptionsTexts TextsOf(const std::string& language);

}  // namespace corvel::plugin
