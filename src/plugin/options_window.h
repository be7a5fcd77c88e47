// The choices of the user for a merge, and the small window in which they are made.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "core/text.h"
#include "merge/merge_shell.h"

namespace corvel::plugin {

// Where the window was left, in screen pixels.
struct WindowPosition {
  std::int32_t x = 0;
  std::int32_t y = 0;
};

// Indexes into the texts of the window.
enum OptionsText : std::size_t {
  kWindowTitle,
  kGroupTitle,
  kGenerateText,
  kSkipText,
  kRememberText,
  kIgnoreUnitsText,
  kIgnoreEnumsText,
  kButtonText,
  kOptionsTextCount
};
using OptionsTexts = std::array<WideString, kOptionsTextCount>;

// The fields live as long as the plug-in, the window only during Show. Systems without windows of
// their own have the fields alone.
class OptionsWindow {
 public:
  // Makes no window yet.
  explicit OptionsWindow(OptionsTexts texts);
  // Closes an open window, whose Show comes back in its own time.
  ~OptionsWindow();
  OptionsWindow(const OptionsWindow&) = delete;
  OptionsWindow& operator=(const OptionsWindow&) = delete;

  // Opens the window and comes back when the user has closed it, with the choice for GUIDs that are
  // there already: true generates new ones. Meanwhile all windows of the thread get their messages.
  // A window that is open already is raised. The short form leaves out the choices that come too
  // late when a merge asks. Without a window it gives the choice at once.
  bool Show(bool shortForm);
  // Sets the marks of an open window from the fields.
  void ApplyState();
  // Takes an open window off the screen; it stays open.
  void Hide();

  MergeOptions options;
  WindowPosition position;

 private:
  class Window;  // each system's own

  OptionsTexts texts_;
  std::shared_ptr<Window> window_;  // a Show that is under way holds it too
};

}  // namespace corvel::plugin
